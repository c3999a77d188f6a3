#include "ContractTest.h"

#include "Platform/SyntheticEvents.h"
#include "Platform/Workspace.h"

#include <algorithm>
#include <cmath>

namespace quillon::contract {
namespace {

using Events = std::vector<PointerEvent>;
using Made = std::unique_ptr<SyntheticEvent>;

constexpr DisplayRect here{{200, 150}, {400, 300}};
constexpr DisplayRect overHere{{100, 100}, {700, 500}};

/// With a window that another program's covers.
class SyntheticEventsContract : public ContractTest {
protected:
    SyntheticEventsContract() { world->activate(cover); }

    SyntheticEvents& events() { return desktop().syntheticEvents(); }
    /// `x` and `y` are from the window's top left.
    Made mouse(SystemEventType type, double x, double y, MouseButton button = MouseButton::left) {
        return events().makeMouseEvent(source.get(), type, {here.minX() + x, here.minY() + y}, button);
    }
    Made wheel(std::int32_t vertical, std::int32_t horizontal, ScrollEventUnit unit = ScrollEventUnit::line) {
        auto event = events().makeScrollWheelEvent(source.get(), unit, vertical, horizontal);
        event->setLocation({here.minX() + 200, here.minY() + 150});
        return event;
    }
    static void post(const Made& event, const OtherWindow& to) {
        event->setIntegerValueField(SystemEventField::eventTargetUnixProcessID, to.pid);
        event->setIntegerValueField(SystemEventField::mouseEventWindowUnderMousePointer, to.windowID);
        event->setIntegerValueField(SystemEventField::mouseEventWindowUnderMousePointerThatCanHandleThisEvent,
                                    to.windowID);
        event->setIntegerValueField(SystemEventField::undocumented51, to.windowID);
        event->setIntegerValueField(SystemEventField::undocumented58, 1);
        event->postToPid(to.pid);
    }
    void post(const Made& event) { post(event, window); }
    /// A press and a release; the press is the click's `count`-th.
    void postClick(double x, double y, std::int64_t count = 1, EventFlags flags = 0) {
        for (const auto type : {SystemEventType::leftMouseDown, SystemEventType::leftMouseUp}) {
            const auto event = mouse(type, x, y);
            event->setFlags(flags);
            event->setIntegerValueField(SystemEventField::mouseEventClickState, count);
            post(event);
        }
    }

    Events received() { return world->pointerEventsOf(window); }
    /// Once there are that many.
    Events receivedWhenThere(std::size_t count) {
        EXPECT_TRUE(eventually([&] { return received().size() >= count; })) << received().size();
        return received();
    }
    bool isCoverInFront() {
        const auto application = desktop().workspace().frontmostApplication();
        const auto windows =
            desktop()
                .windowServer()
                .copyWindowInfo(windowListOnScreenOnly | windowListExcludeDesktopElements, nullWindowID)
                .value();
        const auto front = std::find_if(windows.begin(), windows.end(), [&](const auto& entry) {
            return entry.number == cover.windowID || entry.number == window.windowID;
        });
        return application && application->processIdentifier == cover.pid && front != windows.end() &&
               front->number == cover.windowID;
    }

    const OtherWindow window = world->openWindow("Coperta", here);
    const OtherWindow cover = world->openWindow("Davanti", overHere);
    const std::shared_ptr<EventSource> source = events().makeEventSource(EventSourceState::combinedSession);
};

TEST_F(SyntheticEventsContract, APressADragAndAReleaseArriveInOrderAndInTheirPlaces) {
    ASSERT_TRUE(source);
    post(mouse(SystemEventType::leftMouseDown, 60, 80));
    post(mouse(SystemEventType::leftMouseDragged, 100, 90));
    post(mouse(SystemEventType::leftMouseDragged, 300, 250));
    post(mouse(SystemEventType::leftMouseUp, 310, 240));
    const auto got = receivedWhenThere(4);
    ASSERT_EQ(got.size(), 4U);
    const std::pair<SystemEventType, DisplayPoint> expected[] = {{SystemEventType::leftMouseDown, {60, 80}},
                                                                 {SystemEventType::leftMouseDragged, {100, 90}},
                                                                 {SystemEventType::leftMouseDragged, {300, 250}},
                                                                 {SystemEventType::leftMouseUp, {310, 240}}};
    for (std::size_t index = 0; index < got.size(); ++index) {
        EXPECT_EQ(got[index].type, expected[index].first) << index;
        EXPECT_EQ(got[index].location, expected[index].second) << index;
        EXPECT_EQ(got[index].modifiers, 0U) << index;
    }
    EXPECT_TRUE(stays([&] { return isCoverInFront() && received().size() == 4; }));
    EXPECT_TRUE(world->pointerEventsOf(cover).empty());
}

TEST_F(SyntheticEventsContract, TheModifiersAreThoseOfTheEvent) {
    const EventFlags flags[] = {eventFlagMaskShift,
                                eventFlagMaskControl,
                                eventFlagMaskAlternate,
                                eventFlagMaskCommand,
                                eventFlagMaskShift | eventFlagMaskCommand,
                                0};
    for (const auto flag : flags) {
        postClick(60, 80, 1, flag);
    }
    const auto got = receivedWhenThere(2 * std::size(flags));
    ASSERT_EQ(got.size(), 2 * std::size(flags));
    for (std::size_t index = 0; index < got.size(); ++index) {
        EXPECT_EQ(got[index].modifiers, flags[index / 2]) << index;
    }
}

TEST_F(SyntheticEventsContract, FlagsAndPlaceThatAreSetLaterReplaceTheEarlierOnes) {
    const auto event = mouse(SystemEventType::leftMouseDown, 60, 80);
    event->setFlags(eventFlagMaskShift);
    event->setFlags(eventFlagMaskControl);
    event->setLocation({here.minX() + 70, here.minY() + 90});
    post(event);
    post(mouse(SystemEventType::leftMouseUp, 70, 90));
    const auto got = receivedWhenThere(2);
    EXPECT_EQ(got.at(0).modifiers, eventFlagMaskControl);
    EXPECT_EQ(got.at(0).location, (DisplayPoint{70, 90}));
}

TEST_F(SyntheticEventsContract, ADoubleClickArrivesAsOne) {
    postClick(60, 80, 1);
    postClick(60, 80, 2);
    postClick(300, 80, 1);
    const auto got = receivedWhenThere(6);
    ASSERT_EQ(got.size(), 6U);
    const std::int64_t counts[] = {1, 1, 2, 2, 1, 1};
    for (std::size_t index = 0; index < got.size(); ++index) {
        EXPECT_EQ(got[index].clickCount, counts[index]) << index;
    }
}

TEST_F(SyntheticEventsContract, OtherButtonsKeepTheirNumbers) {
    post(mouse(SystemEventType::rightMouseDown, 60, 80, MouseButton::right));
    post(mouse(SystemEventType::rightMouseUp, 60, 80, MouseButton::right));
    for (const std::int64_t number : {2, 3, 4}) {
        for (const auto type : {SystemEventType::otherMouseDown, SystemEventType::otherMouseUp}) {
            const auto event = mouse(type, 60, 80, MouseButton::center);
            event->setIntegerValueField(SystemEventField::mouseEventButtonNumber, number);
            post(event);
        }
    }
    const auto got = receivedWhenThere(8);
    ASSERT_EQ(got.size(), 8U);
    for (std::size_t index = 0; index < got.size(); ++index) {
        const bool isRight = index < 2;
        const bool isPress = index % 2 == 0;
        EXPECT_EQ(got[index].buttonNumber, static_cast<std::int64_t>(index / 2 + 1));
        EXPECT_EQ(got[index].type, isRight ? (isPress ? SystemEventType::rightMouseDown : SystemEventType::rightMouseUp)
                                   : isPress ? SystemEventType::otherMouseDown
                                             : SystemEventType::otherMouseUp);
    }
}

TEST_F(SyntheticEventsContract, TheWheelTurnsTheWayThatTheEventSays) {
    post(wheel(1, 0));
    post(wheel(-1, 0));
    post(wheel(0, 1));
    post(wheel(0, -1));
    const auto got = receivedWhenThere(4);
    ASSERT_EQ(got.size(), 4U);
    for (const auto& event : got) {
        EXPECT_EQ(event.type, SystemEventType::scrollWheel);
        EXPECT_EQ(event.location, (DisplayPoint{200, 150}));
    }
    EXPECT_GT(got[0].scrollY, 0);
    EXPECT_LT(got[1].scrollY, 0);
    EXPECT_GT(got[2].scrollX, 0);
    EXPECT_LT(got[3].scrollX, 0);
    EXPECT_TRUE(stays([&] { return isCoverInFront(); }));
}

TEST_F(SyntheticEventsContract, ManySmallMovementsOfATouchpadScroll) {
    for (int movement = 0; movement < 40; ++movement) {
        const auto event = wheel(1, 0, ScrollEventUnit::pixel);
        event->setIntegerValueField(SystemEventField::scrollWheelEventIsContinuous, 1);
        event->setDoubleValueField(SystemEventField::scrollWheelEventPointDeltaAxis1, 0.75);
        event->setDoubleValueField(SystemEventField::scrollWheelEventPointDeltaAxis2, 0);
        post(event);
    }
    const auto got = receivedWhenThere(1);
    for (const auto& event : got) {
        EXPECT_EQ(event.type, SystemEventType::scrollWheel);
        EXPECT_GT(event.scrollY, 0);
        EXPECT_EQ(event.scrollX, 0);
    }
}

TEST_F(SyntheticEventsContract, ABurstLosesNothingAndKeepsItsOrder) {
    constexpr int steps = 300;
    const auto isUp = [](int step) { return (step * step / 7) % 2 == 0; };
    for (int step = 0; step < steps; ++step) {
        post(wheel(isUp(step) ? 1 : -1, 0));
    }
    const auto got = receivedWhenThere(steps);
    ASSERT_EQ(got.size(), static_cast<std::size_t>(steps));
    for (int step = 0; step < steps; ++step) {
        EXPECT_EQ(got[static_cast<std::size_t>(step)].scrollY > 0, isUp(step)) << step;
    }
}

TEST_F(SyntheticEventsContract, AnEventNeedsNoSource) {
    const auto event =
        events().makeMouseEvent(nullptr, SystemEventType::leftMouseDown, {here.minX() + 5, here.minY() + 60}, {});
    ASSERT_TRUE(event);
    ASSERT_TRUE(events().makeScrollWheelEvent(nullptr, ScrollEventUnit::line, 1, 0));
    post(event);
    post(mouse(SystemEventType::leftMouseUp, 5, 60));
    EXPECT_EQ(receivedWhenThere(2).at(0).location, (DisplayPoint{5, 60}));
}

TEST_F(SyntheticEventsContract, NothingHappensWhenTheWindowOrItsProgramHasGone) {
    const auto closing = world->openWindow("Si chiude", here);
    const auto ending = world->openWindow("Finisce", here);
    world->activate(cover);
    post(mouse(SystemEventType::leftMouseDown, 60, 80), closing);
    world->close(closing);
    world->kill(ending);
    for (const auto& gone : {closing, ending}) {
        post(mouse(SystemEventType::leftMouseDown, 60, 80), gone);
        post(mouse(SystemEventType::leftMouseDragged, 70, 80), gone);
        post(mouse(SystemEventType::leftMouseUp, 70, 80), gone);
        post(wheel(2, 1), gone);
    }
    EXPECT_TRUE(stays([&] { return isCoverInFront(); }));
    EXPECT_TRUE(received().empty());
    EXPECT_TRUE(world->pointerEventsOf(cover).empty());
    // The others are as they were.
    postClick(60, 80);
    EXPECT_EQ(receivedWhenThere(2).size(), 2U);
}

} // namespace
} // namespace quillon::contract
