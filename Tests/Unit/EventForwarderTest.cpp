#include "EventForwarder.h"

#include "OverlayTest.h"

#include <cmath>
#include <limits>
#include <random>

namespace quillon {
namespace {

using simulated::PostedEvent;

constexpr std::int64_t unset = -1;

class EventForwarderTest : public OverlayTest {
protected:
    EventForwarderTest() {
        show();
        desktop.journal().clear();
    }

    void forward(const PanelEvent& event) { EventForwarder::forward(event, *overlay); }
    void click(WindowPoint location) { forward({.type = EventType::leftMouseDown, .locationInWindow = location}); }
    void scroll(double deltaX, double deltaY, bool isPrecise) {
        forward({.type = EventType::scrollWheel,
                 .locationInWindow = {400, 300},
                 .scrollingDeltaX = deltaX,
                 .scrollingDeltaY = deltaY,
                 .hasPreciseScrollingDeltas = isPrecise});
    }
    /// Gives the panel another size or place than the real window.
    void setPanelFrame(const ScreenRect& frame) { panel().setFrame(frame, false); }

    const std::vector<PostedEvent>& posted() { return desktop.syntheticEvents().posted(); }
    std::size_t postedCount() { return posted().size(); }
    const PostedEvent& last() { return posted().at(postedCount() - 1); }
    std::int64_t integer(SystemEventField field) {
        const auto entry = last().integers.find(field);
        return entry != last().integers.end() ? entry->second : unset;
    }
    double fraction(SystemEventField field) { return last().doubles.at(field); }
    Lines takeEvents() { return desktop.journal().take({"syntheticEvents.", "event."}); }
    /// What every event ends with.
    Lines withTarget(Lines lines) {
        for (const auto& line : {"event.setIntegerValueField 40 " + pid, "event.setIntegerValueField 91 " + number,
                                 "event.setIntegerValueField 92 " + number, "event.setIntegerValueField 51 " + number,
                                 std::string("event.setIntegerValueField 58 1"), "event.postToPid " + pid}) {
            lines.push_back(line);
        }
        return lines;
    }

    const std::string pid = std::to_string(app);
};

using EventForwarderEdgeCases = EventForwarderTest;
using EventForwarderDeathTest = EventForwarderTest;

TEST_F(EventForwarderEdgeCases, TheRightAndTopEdgesAreInsideAndAFractionBeyondIsNot) {
    click({800, 300});
    EXPECT_EQ(last().location, (DisplayPoint{900, 350}));
    click({400, 0});
    EXPECT_EQ(last().location, (DisplayPoint{500, 650}));
    click({800, 0});
    EXPECT_EQ(last().location, (DisplayPoint{900, 650}));
    click({0, 600});
    EXPECT_EQ(last().location, (DisplayPoint{100, 50}));
    EXPECT_EQ(postedCount(), 4U);
    for (const WindowPoint beyond :
         {WindowPoint{800.001, 300}, {-0.001, 300}, {400, 600.001}, {400, -0.001}, {1e300, 300}}) {
        click(beyond);
    }
    EXPECT_EQ(postedCount(), 4U);
}

TEST_F(EventForwarderEdgeCases, TheCentreOfAPanelOfHalfTheWidthIsTheCentreOfTheWindow) {
    setPanelFrame({{0, 0}, {400, 600}});
    click({200, 300});
    EXPECT_EQ(last().location, (DisplayPoint{500, 350}));
}

TEST_F(EventForwarderEdgeCases, APreciseScrollOfAFractionPostsOnePixelAndALineScrollRoundsAwayFromZero) {
    scroll(0, 0.3, true);
    EXPECT_EQ(last().unit, ScrollEventUnit::pixel);
    EXPECT_EQ(last().wheel1, 1);
    EXPECT_EQ(last().wheel2, 0);
    EXPECT_EQ(fraction(SystemEventField::scrollWheelEventPointDeltaAxis1), 0.3);
    EXPECT_EQ(fraction(SystemEventField::scrollWheelEventPointDeltaAxis2), 0);
    scroll(0.3, 0.3, true);
    EXPECT_EQ(last().wheel2, 1);
    EXPECT_EQ(fraction(SystemEventField::scrollWheelEventPointDeltaAxis2), 0.3);

    scroll(0, -2.5, false);
    EXPECT_EQ(last().unit, ScrollEventUnit::line);
    EXPECT_EQ(last().wheel1, -3);
    EXPECT_TRUE(last().doubles.empty());
}

TEST_F(EventForwarderEdgeCases, AHorizontalScrollMovesTheSecondWheelAlone) {
    scroll(-4, 0, false);
    EXPECT_EQ(last().wheel1, 0);
    EXPECT_EQ(last().wheel2, -4);
}

TEST_F(EventForwarderEdgeCases, AMovedMouseIsNotForwarded) {
    for (const auto type : {EventType::mouseMoved, EventType::mouseEntered, EventType::mouseExited}) {
        forward({.type = type, .locationInWindow = {400, 300}});
    }
    EXPECT_EQ(takeEvents(), Lines{}) << "nor is an event made";
}

TEST_F(EventForwarderEdgeCases, ADoubleClickKeepsItsCountAndACountOfZeroBecomesOne) {
    for (const auto& [count, state] : {std::pair<std::int64_t, std::int64_t>{2, 2}, {0, 1}, {1, 1}, {3, 3}, {-7, 1}}) {
        forward({.type = EventType::leftMouseDown, .locationInWindow = {400, 300}, .clickCount = count});
        EXPECT_EQ(integer(SystemEventField::mouseEventClickState), state);
    }
}

TEST_F(EventForwarderEdgeCases, WithoutTheRealWindowTheEventIsDropped) {
    desktop.close(windowID);
    click({400, 300});
    scroll(0, 3, true);
    EXPECT_EQ(takeEvents(), Lines{});
}

// The order of steps

TEST_F(EventForwarderTest, AMouseEventIsMadeFilledAndPostedInOrder) {
    forward({.type = EventType::leftMouseDragged,
             .locationInWindow = {200, 450},
             .modifierFlags = modifierFlagShift,
             .clickCount = 1,
             .pressure = 0.5,
             .buttonNumber = 7});
    EXPECT_EQ(takeEvents(), withTarget({"syntheticEvents.makeEventSource 0",
                                        "syntheticEvents.makeMouseEvent source 6 300,200 0", "event.setFlags 0x20000",
                                        "event.setIntegerValueField 1 1", "event.setDoubleValueField 2 0.5"}));
}

TEST_F(EventForwarderTest, AnOtherButtonsNumberFollowsThePressure) {
    forward({.type = EventType::otherMouseUp,
             .locationInWindow = {400, 300},
             .clickCount = 2,
             .pressure = 0,
             .buttonNumber = 4});
    EXPECT_EQ(takeEvents(),
              withTarget({"syntheticEvents.makeEventSource 0", "syntheticEvents.makeMouseEvent source 26 500,350 2",
                          "event.setFlags 0x0", "event.setIntegerValueField 1 2", "event.setDoubleValueField 2 0",
                          "event.setIntegerValueField 3 4"}));
}

TEST_F(EventForwarderTest, APreciseScrollIsMadeFilledPlacedAndPostedInOrder) {
    forward({.type = EventType::scrollWheel,
             .locationInWindow = {400, 300},
             .modifierFlags = modifierFlagCommand,
             .scrollingDeltaX = -1.25,
             .scrollingDeltaY = 2.75,
             .hasPreciseScrollingDeltas = true});
    EXPECT_EQ(
        takeEvents(),
        withTarget({"syntheticEvents.makeEventSource 0", "syntheticEvents.makeScrollWheelEvent source 0 3 -1",
                    "event.setIntegerValueField 88 1", "event.setDoubleValueField 96 2.75",
                    "event.setDoubleValueField 97 -1.25", "event.setFlags 0x100000", "event.setLocation 500,350"}));
}

TEST_F(EventForwarderTest, AScrollByLinesHasNoPointDeltas) {
    scroll(0, 3, false);
    EXPECT_EQ(takeEvents(),
              withTarget({"syntheticEvents.makeEventSource 0", "syntheticEvents.makeScrollWheelEvent source 1 3 0",
                          "event.setFlags 0x0", "event.setLocation 500,350"}));
}

// Kinds of events

TEST_F(EventForwarderTest, EachMouseEventKeepsItsNumberAndGetsItsButton) {
    const std::pair<EventType, MouseButton> kinds[] = {
        {EventType::leftMouseDown, MouseButton::left},      {EventType::leftMouseUp, MouseButton::left},
        {EventType::leftMouseDragged, MouseButton::left},   {EventType::rightMouseDown, MouseButton::right},
        {EventType::rightMouseUp, MouseButton::right},      {EventType::rightMouseDragged, MouseButton::right},
        {EventType::otherMouseDown, MouseButton::center},   {EventType::otherMouseUp, MouseButton::center},
        {EventType::otherMouseDragged, MouseButton::center}};
    for (const auto& [type, button] : kinds) {
        forward({.type = type, .locationInWindow = {400, 300}, .buttonNumber = 3});
        EXPECT_EQ(static_cast<int>(last().type), static_cast<int>(type));
        EXPECT_EQ(last().button, button);
        EXPECT_EQ(integer(SystemEventField::mouseEventButtonNumber), button == MouseButton::center ? 3 : unset);
    }
    EXPECT_EQ(postedCount(), std::size(kinds));
}

TEST_F(EventForwarderTest, FourModifiersAreCarriedOverAndNothingElse) {
    constexpr ModifierFlags others = 0x10000 | 0x200000 | 0x800000 | 0xFFFF;
    for (const auto flags : {modifierFlagCommand, modifierFlagOption, modifierFlagControl, modifierFlagShift,
                             modifierFlagCommand | modifierFlagShift, ModifierFlags{0}}) {
        forward({.type = EventType::leftMouseDown, .locationInWindow = {400, 300}, .modifierFlags = flags | others});
        EXPECT_EQ(last().flags, flags);
        forward({.type = EventType::scrollWheel, .locationInWindow = {400, 300}, .modifierFlags = flags | others});
        EXPECT_EQ(last().flags, flags);
    }
}

TEST_F(EventForwarderTest, AScrollWithoutMovementIsForwardedToo) {
    scroll(0, 0, true);
    EXPECT_EQ(last().wheel1, 0);
    EXPECT_EQ(last().wheel2, 0);
}

// The source

TEST_F(EventForwarderTest, TheSourceIsMadeOnceOnFirstUse) {
    EXPECT_EQ(takeEvents(), Lines{});
    click({400, 300});
    scroll(0, 1, false);
    click({400, 300});
    EXPECT_EQ(desktop.journal().take({"syntheticEvents.makeEventSource"}).size(), 1U);
    for (const auto& event : posted()) {
        EXPECT_TRUE(event.hasSource);
    }
}

TEST_F(EventForwarderTest, WithoutASourceEventsAreMadeWithNone) {
    desktop.syntheticEvents().setSourcesFailing(true);
    click({400, 300});
    desktop.syntheticEvents().setSourcesFailing(false);
    scroll(0, 1, false);
    EXPECT_EQ(desktop.journal().take({"syntheticEvents.makeEventSource"}).size(), 1U) << "what is absent stays so";
    ASSERT_EQ(postedCount(), 2U);
    EXPECT_FALSE(posted()[0].hasSource);
    EXPECT_FALSE(posted()[1].hasSource);
}

// What is dropped

TEST_F(EventForwarderTest, AnEventThatCannotBeMadeIsDropped) {
    desktop.syntheticEvents().setEventsFailing(true);
    click({400, 300});
    scroll(0, 1, true);
    EXPECT_EQ(postedCount(), 0U);
    EXPECT_EQ(desktop.journal().take({"event."}), Lines{});
    desktop.syntheticEvents().setEventsFailing(false);
    click({400, 300});
    EXPECT_EQ(postedCount(), 1U);
}

TEST_F(EventForwarderTest, WithoutBoundsOrAListTheEventIsDropped) {
    window().alterDescription = [](auto& entry) { entry.bounds.reset(); };
    click({400, 300});
    desktop.windowServer().setFailing(true);
    click({400, 300});
    EXPECT_EQ(postedCount(), 0U);
}

TEST_F(EventForwarderTest, MissingNumbersOfTheBoundsCountAsZero) {
    window().alterDescription = [](auto& entry) { entry.bounds = {.x = {}, .y = 10, .width = {}, .height = 300}; };
    click({400, 300});
    EXPECT_EQ(last().location, (DisplayPoint{0, 160}));
}

TEST_F(EventForwarderTest, AnEmptyPanelForwardsNothing) {
    for (const Size size : {Size{0, 600}, {800, 0}, {-1, 600}, {800, -1}}) {
        setPanelFrame({{100, 250}, size});
        click({0, 0});
    }
    EXPECT_EQ(postedCount(), 0U);
}

TEST_F(EventForwarderTest, ALocationThatIsNoPointIsDropped) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    for (const WindowPoint location : {WindowPoint{nan, 300}, {400, nan}, {infinite, 300}, {400, -infinite}}) {
        click(location);
    }
    EXPECT_EQ(postedCount(), 0U);
}

TEST_F(EventForwarderTest, AScrollThatIsNotANumberIsDroppedAndTheNextIsForwarded) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    scroll(0, nan, true);
    scroll(nan, 1, false);
    EXPECT_EQ(takeEvents(), Lines{});
    scroll(0, 1, false);
    EXPECT_EQ(postedCount(), 1U);
}

// Between a press and its release

TEST_F(EventForwarderTest, AReleaseGoesToWhereTheWindowIsThen) {
    click({400, 300});
    desktop.move(windowID, {{500, 400}, {80, 60}});
    forward({.type = EventType::leftMouseUp, .locationInWindow = {400, 300}});
    EXPECT_EQ(last().type, SystemEventType::leftMouseUp);
    EXPECT_EQ(last().location, (DisplayPoint{540, 430}));
}

TEST_F(EventForwarderTest, AReleaseOverAWindowThatWasClosedIsDroppedAndOthersAreNot) {
    click({400, 300});
    desktop.close(windowID);
    forward({.type = EventType::leftMouseUp, .locationInWindow = {400, 300}});
    EXPECT_EQ(postedCount(), 1U);

    const auto second = desktop.openWindow(app, "Viaggio", {{0, 0}, {800, 600}});
    WindowOverlay secondOverlay(second, app);
    EventForwarder::forward({.type = EventType::leftMouseDown, .locationInWindow = {400, 300}}, secondOverlay);
    EXPECT_EQ(last().integers.at(SystemEventField::mouseEventWindowUnderMousePointer), second);
}

// Steps

TEST_F(EventForwarderTest, TheLargestScrollsFit) {
    using Limits = std::numeric_limits<std::int32_t>;
    scroll(Limits::min(), Limits::max(), false);
    EXPECT_EQ(last().wheel1, Limits::max());
    EXPECT_EQ(last().wheel2, Limits::min());
    scroll(Limits::min() - 0.4, Limits::max() + 0.4, false);
    EXPECT_EQ(last().wheel1, Limits::max());
    EXPECT_EQ(last().wheel2, Limits::min());
}

TEST_F(EventForwarderDeathTest, AScrollBeyond32BitsIsAProgrammingError) {
    const double infinite = std::numeric_limits<double>::infinity();
    EXPECT_DEATH(scroll(0, 2147483647.5, false), "a scroll by 2147483648 steps does not fit into 32 bits");
    EXPECT_DEATH(scroll(-2147483648.5, 0, true), "a scroll by -2147483649 steps does not fit into 32 bits");
    EXPECT_DEATH(scroll(0, infinite, false), "a scroll by inf steps does not fit into 32 bits");
    EXPECT_DEATH(scroll(-infinite, 0, true), "a scroll by -inf steps does not fit into 32 bits");
}

TEST_F(EventForwarderTest, StepsAreTheNearestWholeNumberAndNeverNoneForAMovement) {
    std::mt19937 random(20260301); // the same numbers in every run
    std::uniform_real_distribution<double> exponent(-12, 9);
    std::bernoulli_distribution isNegative;
    for (int count = 0; count < 5000; ++count) {
        const double delta = std::pow(10.0, exponent(random)) * (isNegative(random) ? -1 : 1);
        scroll(0, delta, true);
        const double steps = last().wheel1;
        EXPECT_GT(steps * delta, 0) << delta;
        EXPECT_TRUE(std::abs(steps - delta) <= 0.5 || (std::abs(steps) == 1 && std::abs(delta) < 1)) << delta;
    }
    for (int whole = -20; whole < 20; ++whole) {
        scroll(0, whole + 0.5, false);
        EXPECT_EQ(last().wheel1, whole < 0 ? whole : whole + 1) << "halves go away from zero";
    }
}

// The mapping

class EventForwarderMapping : public EventForwarderTest {
protected:
    double between(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    /// A panel of any size, in front of a real window of any size and place.
    void arrange() {
        panelSize = {between(1, 4000), between(1, 4000)};
        setPanelFrame({{between(-3000, 3000), between(-3000, 3000)}, panelSize});
        bounds = {{between(-5000, 5000), between(-5000, 5000)}, {between(0, 6000), between(0, 6000)}};
        desktop.move(windowID, bounds);
    }
    std::optional<DisplayPoint> mapped(WindowPoint location) {
        const auto before = postedCount();
        click(location);
        return postedCount() > before ? std::optional(last().location) : std::nullopt;
    }

    std::mt19937 random{42}; // the same numbers in every run
    Size panelSize;
    DisplayRect bounds;
};

TEST_F(EventForwarderMapping, CornersMapToCorners) {
    for (int count = 0; count < 500; ++count) {
        arrange();
        const auto [width, height] = panelSize;
        EXPECT_EQ(mapped({0, height}), (DisplayPoint{bounds.minX(), bounds.minY()}));
        EXPECT_EQ(mapped({width, height}), (DisplayPoint{bounds.maxX(), bounds.minY()}));
        EXPECT_EQ(mapped({0, 0}), (DisplayPoint{bounds.minX(), bounds.maxY()}));
        EXPECT_EQ(mapped({width, 0}), (DisplayPoint{bounds.maxX(), bounds.maxY()}));
    }
}

TEST_F(EventForwarderMapping, TheMappingIsMonotonicAndStaysInsideTheBounds) {
    for (int count = 0; count < 500; ++count) {
        arrange();
        const auto [width, height] = panelSize;
        const double left = between(0, width);
        const double right = between(left, width);
        const double low = between(0, height);
        const double high = between(low, height);
        const auto upper = mapped({left, high});
        const auto lower = mapped({right, low});
        ASSERT_TRUE(upper && lower);
        EXPECT_LE(upper->x, lower->x);
        EXPECT_LE(upper->y, lower->y);
        EXPECT_GE(upper->x, bounds.minX());
        EXPECT_GE(upper->y, bounds.minY());
        EXPECT_LE(lower->x, bounds.maxX());
        EXPECT_LE(lower->y, bounds.maxY());
    }
}

TEST_F(EventForwarderMapping, WhatLiesOutsideIsDropped) {
    for (int count = 0; count < 500; ++count) {
        arrange();
        const auto [width, height] = panelSize;
        const double beyond = between(1e-6, 1000);
        const double x = between(0, width);
        const double y = between(0, height);
        for (const WindowPoint location :
             {WindowPoint{-beyond, y}, {width + beyond, y}, {x, -beyond}, {x, height + beyond}}) {
            EXPECT_EQ(mapped(location), std::nullopt);
        }
    }
}

} // namespace
} // namespace quillon
