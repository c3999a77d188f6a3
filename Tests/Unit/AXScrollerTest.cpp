#include "AXScrollerTest.h"

#include <cmath>
#include <limits>

namespace quillon {
namespace {

constexpr DisplayRect largeArea{{100, 100}, {600, 500}};
constexpr DisplayPoint inside{300, 300};
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinite = std::numeric_limits<double>::infinity();

class AXScrollTest : public AXScrollerTest {
protected:
    void scroll(double deltaY, DisplayPoint point = inside) {
        AXScroller::scroll(app, windowID, deltaY, point);
        desktop.runUntilIdle();
    }
    std::string unavailable() const {
        return "axscroll: no settable scroll bar in wid=" + number + "; scrolling unavailable here";
    }
    std::string resolved(int count, const std::string& shape) const {
        return fmt::format("axscroll: resolved {} scrollable area(s) for wid={}: {}", count, number, shape);
    }
    /// A chain of groups below the window; the last one has that depth.
    simulated::SimulatedElement& groupAtDepth(int depth) {
        auto* group = &element();
        for (int level = 0; level < depth; ++level) {
            group = &group->addChild("AXGroup");
        }
        return *group;
    }
    /// A scroll area with a bar in the middle; its bar.
    simulated::SimulatedElement& addBar(simulated::SimulatedElement& parent, const DisplayRect& frame = largeArea) {
        return parent.addScrollArea(frame).addVerticalScrollBar(0.5);
    }
};

using AXScrollerEdgeCases = AXScrollTest;

TEST_F(AXScrollerEdgeCases, AWindowWithoutScrollBarsIsLoggedOnEveryScrollAndNeverRemembered) {
    element().addScrollArea(largeArea);
    for (int count = 0; count < 3; ++count) {
        scroll(10);
        EXPECT_EQ(takeLog(), Lines{unavailable()});
        EXPECT_EQ(walks(), 1U);
    }
    EXPECT_EQ(takeActions(), Lines{});
}

TEST_F(AXScrollerEdgeCases, ABarAtItsTopIsNotSetByAScrollUpwards) {
    auto& bar = element().addScrollArea(largeArea).addVerticalScrollBar(0);
    scroll(100);
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(bar.number("AXValue"), 0);
}

TEST_F(AXScrollerEdgeCases, OfTwoNestedAreasTheSmallerOneScrolls) {
    auto& outer = element().addScrollArea(largeArea);
    auto& outerBar = outer.addVerticalScrollBar(0.5);
    auto& innerBar = addBar(outer, {{250, 250}, {100, 100}});
    scroll(-100);
    EXPECT_EQ(outerBar.number("AXValue"), 0.5);
    EXPECT_EQ(innerBar.number("AXValue"), 0.65);
    scroll(-100, {150, 150});
    EXPECT_EQ(outerBar.number("AXValue"), 0.65) << "beside the inner one the outer one scrolls";
}

TEST_F(AXScrollerEdgeCases, ASensitivityThatIsNotPositiveCountsAsTheDefault) {
    auto& bar = addBar(element());
    for (const PropertyValue& stored :
         {PropertyValue(0.0), PropertyValue(-3.0), PropertyValue(nan), PropertyValue(std::string("viel"))}) {
        store("axScrollSensitivity", stored);
        bar.setAttribute("AXValue", 0.5);
        scroll(100);
        EXPECT_EQ(bar.number("AXValue"), 0.35);
    }
}

// Scrolling

TEST_F(AXScrollTest, APositiveDeltaLowersTheValueAndANegativeOneRaisesIt) {
    auto& bar = addBar(element());
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35);
    scroll(-100);
    EXPECT_EQ(bar.number("AXValue"), 0.5);
}

TEST_F(AXScrollTest, TheStoredSensitivityIsReadAtEveryScroll) {
    auto& bar = addBar(element());
    store("axScrollSensitivity", 0.01);
    scroll(10);
    EXPECT_EQ(bar.number("AXValue"), 0.4);
    store("axScrollSensitivity", std::int64_t{1});
    scroll(-0.25);
    EXPECT_EQ(bar.number("AXValue"), 0.65);
}

TEST_F(AXScrollTest, TheValueStaysBetweenZeroAndOne) {
    auto& bar = addBar(element());
    scroll(1e6);
    EXPECT_EQ(bar.number("AXValue"), 0);
    scroll(-1e6);
    EXPECT_EQ(bar.number("AXValue"), 1);
    takeActions();
    scroll(-1);
    EXPECT_EQ(takeActions(), Lines{}) << "already at the end";
    scroll(infinite);
    EXPECT_EQ(bar.number("AXValue"), 0);
    bar.setAttribute("AXValue", -17.0);
    scroll(1);
    EXPECT_EQ(bar.number("AXValue"), 0) << "a value out of range comes back into it";
}

TEST_F(AXScrollTest, ANegligibleChangeIsNotSet) {
    auto& bar = element().addScrollArea(largeArea).addVerticalScrollBar(0);
    store("axScrollSensitivity", 1.0);
    scroll(-1e-5);
    EXPECT_EQ(takeActions(), Lines{});
    scroll(-1.1e-5);
    EXPECT_EQ(takeActions().size(), 1U);
    EXPECT_EQ(bar.number("AXValue"), 1.1e-5);
}

TEST_F(AXScrollTest, WhatIsNotANumberSetsNothing) {
    auto& bar = addBar(element());
    scroll(nan);
    scroll(10, {nan, 300});
    scroll(10, {300, nan});
    bar.setAttribute("AXValue", nan);
    scroll(10);
    EXPECT_EQ(takeActions(), Lines{});
    bar.setAttribute("AXValue", 0.5);
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35) << "the next scroll works";
}

TEST_F(AXScrollTest, AScrollOutsideEveryAreaDoesNothing) {
    addBar(element());
    for (const DisplayPoint outside : {DisplayPoint{99.9, 300}, {700, 300}, {300, 99.9}, {300, 600}}) {
        scroll(10, outside);
    }
    EXPECT_EQ(takeActions(), Lines{});
    scroll(10, {100, 100});
    scroll(10, {699.9, 599.9});
    EXPECT_EQ(takeActions().size(), 2U) << "the left and top edges are inside";
}

TEST_F(AXScrollTest, OfAreasOfTheSameSizeTheEarlierOneScrolls) {
    auto& first = addBar(element(), {{200, 200}, {200, 150}});
    auto& second = addBar(element(), {{250, 200}, {150, 200}});
    scroll(10);
    EXPECT_EQ(first.number("AXValue"), 0.485);
    EXPECT_EQ(second.number("AXValue"), 0.5);
}

TEST_F(AXScrollTest, EverythingHappensOnTheScrollersQueueAndInOrder) {
    auto& bar = addBar(element());
    AXScroller::scroll(app, windowID, 1000, inside);
    AXScroller::scroll(app, windowID, -100, inside);
    EXPECT_EQ(desktop.scheduler().waitingTasks(scrollQueue), 2U) << "one task for each";
    EXPECT_EQ(desktop.accessibility().takeCalls(), Lines{}) << "nothing yet";
    desktop.runUntilIdle();
    EXPECT_EQ(bar.number("AXValue"), 0.15);
    const auto prefix =
        fmt::format("accessibility.setAttributeValue window {} > AXScrollArea 0 > AXScrollBar 0 ", number);
    EXPECT_EQ(takeActions(), (Lines{prefix + "AXValue 0", prefix + "AXValue 0.15"}));
    AXScroller::forget(windowID);
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.accessibility().callingQueues(), std::set{scrollQueue});
}

// Resolving

TEST_F(AXScrollTest, AResolutionKeepsItsOrder) {
    addBar(element());
    scroll(10);
    EXPECT_EQ(desktop.accessibility().takeCalls(),
              walkThen({ofArea + "copyAttributeValue AXPosition", ofArea + "copyAttributeValue AXSize",
                        ofBar + "copyAttributeValue AXValue", ofBar + "setAttributeValue AXValue"}));
}

TEST_F(AXScrollTest, WithoutTheWindowsElementTheLogSaysSoEveryTime) {
    desktop.close(windowID);
    scroll(10);
    scroll(10);
    EXPECT_EQ(takeLog(), Lines(2, "axscroll: no AX window for wid=" + number));
    desktop.accessibility().setTrusted(false);
    scroll(10);
    EXPECT_EQ(takeLog(), Lines{"axscroll: no AX window for wid=" + number});
}

TEST_F(AXScrollTest, AreasWithoutAFrameOrABarThatCanBeSetAreSkipped) {
    element().addScrollArea({{200, 200}, {10, 10}}).setAttribute("AXVerticalScrollBar", std::string("Leiste"));
    addBar(element(), {{200, 200}, {20, 20}}).setSettable("AXValue", false);
    addBar(element(), {{200, 200}, {30, 30}}).failSettable("AXValue", AccessibilityError::cannotComplete);
    auto& withoutPlace = element().addScrollArea({{200, 200}, {40, 40}});
    withoutPlace.addVerticalScrollBar(0.5);
    withoutPlace.failAttribute("AXPosition", AccessibilityError::noValue);
    auto& withoutSize = element().addScrollArea({{200, 200}, {50, 50}});
    withoutSize.addVerticalScrollBar(0.5);
    withoutSize.setAttribute("AXSize", std::string("50x50"));
    auto& bar = addBar(element());
    scroll(100, {205, 205});
    EXPECT_EQ(bar.number("AXValue"), 0.35);
    EXPECT_EQ(takeLog(), Lines{resolved(1, "600x500@100,100")});
}

TEST_F(AXScrollTest, AreasOfOtherKindsAreNotConsidered) {
    auto& list = element().addChild("AXList");
    list.setAttribute("AXPosition", largeArea.origin);
    list.setAttribute("AXSize", largeArea.size);
    list.addVerticalScrollBar(0.5);
    element().addChild("AXGroup").failAttribute("AXRole", AccessibilityError::cannotComplete);
    scroll(10);
    EXPECT_EQ(takeLog(), Lines{unavailable()});
}

TEST_F(AXScrollTest, TheShapeIsLoggedWithoutDecimalsAndOnlyWhenItChanges) {
    auto& area = element().addScrollArea({{100.9, -0.5}, {600.99, 500}});
    area.addVerticalScrollBar(0.5);
    addBar(area, {{200, -50.7}, {50, 50.5}});
    scroll(1, {101, 1});
    EXPECT_EQ(takeLog(), Lines{resolved(2, "600x500@100,0 50x50@200,-50")});
    desktop.advance(Seconds(6));
    scroll(1, {101, 1});
    EXPECT_EQ(takeLog(), Lines{});
    area.setAttribute("AXPosition", DisplayPoint{110, 0});
    desktop.advance(Seconds(6));
    scroll(1, {111, 1});
    EXPECT_EQ(takeLog(), Lines{resolved(2, "600x500@110,0 50x50@200,-50")});
    AXScroller::forget(windowID);
    scroll(1, {111, 1});
    EXPECT_EQ(takeLog(), Lines{}) << "what was logged is not forgotten";
}

TEST_F(AXScrollTest, FramesThatAreNoneAreLoggedAndScrollNothing) {
    addBar(element(), {{nan, -infinite}, {1e300, -20}});
    scroll(10);
    const auto lines = takeLog();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].starts_with("axscroll: resolved 1 scrollable area(s)")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with("x-20@nan,-inf")) << lines[0];
    EXPECT_EQ(takeActions(), Lines{});
}

TEST_F(AXScrollTest, AreasThatLieAboutTheirSizeDoNotHideTheOthers) {
    for (const DisplayRect& lie : {DisplayRect{{300, 300}, {0, 0}},
                                   {{300, 300}, {-50, -50}},
                                   {{-infinite, -infinite}, {infinite, infinite}},
                                   {{0, 0}, {infinite, infinite}},
                                   {{300, 300}, {nan, nan}},
                                   {{-1e300, -1e300}, {2e300, 2e300}}}) {
        addBar(element(), lie);
    }
    auto& bar = addBar(element());
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35);
    EXPECT_EQ(takeActions().size(), 1U);
}

TEST_F(AXScrollTest, AnAreaThatLiesAboutItsPlaceScrollsOnlyWhereItSaysItIs) {
    auto& bar = addBar(element(), {{5000, 5000}, {600, 500}});
    scroll(100);
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(bar.number("AXValue"), 0.5);
}

// The bounds of the walk

TEST_F(AXScrollTest, TwelveLevelsAreSearchedAndNoMore) {
    addBar(groupAtDepth(11));
    scroll(10);
    EXPECT_EQ(takeLog(), Lines{unavailable()});
    addBar(groupAtDepth(10));
    scroll(10);
    EXPECT_EQ(takeActions().size(), 1U);
}

TEST_F(AXScrollTest, AtMostEightAreasAreFoundDepthFirst) {
    auto& outer = element().addScrollArea({{0, 0}, {1000, 1000}});
    outer.addVerticalScrollBar(0.5);
    for (int count = 0; count < 9; ++count) {
        addBar(outer, {{0, 0}, {100.0 + count, 100}});
    }
    addBar(element(), {{0, 0}, {10, 10}});
    scroll(10, {5, 5});
    EXPECT_EQ(takeLog(), Lines{resolved(8, "1000x1000@0,0 100x100@0,0 101x100@0,0 102x100@0,0 103x100@0,0 "
                                           "104x100@0,0 105x100@0,0 106x100@0,0")});
    const auto calls = desktop.accessibility().takeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(),
                         fmt::format("window {} > AXScrollArea 0 > AXScrollArea 8 copyAttributeValue AXRole", number)),
              0)
        << "the walk ends at the eighth";
}

TEST_F(AXScrollTest, AreasThatCannotBeScrolledCountAmongTheEight) {
    for (int count = 0; count < 8; ++count) {
        element().addScrollArea(largeArea);
    }
    addBar(element());
    scroll(10);
    EXPECT_EQ(takeLog(), Lines{unavailable()});
}

TEST_F(AXScrollTest, AWideTreeIsWalkedWhole) {
    for (int count = 0; count < 5000; ++count) {
        element().addChild("AXRow");
    }
    auto& bar = addBar(element());
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35);
}

TEST_F(AXScrollTest, ATreeThatRunsInACircleEnds) {
    auto& group = element().addChild("AXGroup");
    const auto window = desktop.accessibility().window(windowID);
    group.setAttribute("AXChildren", simulated::AccessibilityElements{window, window});
    auto& bar = addBar(element());
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35);
    takeLog();
    // Now every round adds an area, so the walk ends at the eighth, the real one among them.
    group.setAttribute("AXRole", std::string("AXScrollArea"));
    AXScroller::forget(windowID);
    walks();
    scroll(100);
    EXPECT_DOUBLE_EQ(bar.number("AXValue"), 0.2);
    EXPECT_LE(walks(), 8U);
}

TEST_F(AXScrollTest, ATreeThatFailsInTheMiddleIsWalkedPastIt) {
    auto& broken = element().addChild("AXGroup");
    addBar(broken);
    broken.failAttribute("AXChildren", AccessibilityError::cannotComplete);
    element().addChild("AXGroup").setAttribute("AXChildren", std::string("keine"));
    element().addScrollArea(largeArea).disappear();
    auto& bar = addBar(element());
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35);
    EXPECT_EQ(takeLog(), Lines{resolved(1, "600x500@100,100")});
}

TEST_F(AXScrollTest, AWindowThatDoesNotAnswerHoldsTheQueueUpForAQuarterOfASecond) {
    element().stopAnswering("AXChildren");
    const auto start = desktop.scheduler().now();
    scroll(10);
    EXPECT_EQ(desktop.scheduler().now() - start, std::chrono::milliseconds(250));
    EXPECT_EQ(takeLog(), Lines{unavailable()});
}

// What is remembered

TEST_F(AXScrollTest, ABurstOfScrollsCostsOneWalk) {
    addBar(element());
    for (int count = 0; count < 20; ++count) {
        scroll(1);
    }
    EXPECT_EQ(walks(), 1U);
}

TEST_F(AXScrollTest, AreasAreLookedUpAgainAfterFiveSeconds) {
    addBar(element());
    scroll(1);
    desktop.advance(Seconds(4.999));
    scroll(1);
    EXPECT_EQ(walks(), 1U);
    desktop.advance(Seconds(0.001));
    scroll(1);
    EXPECT_EQ(walks(), 1U);
    desktop.advance(Seconds(4));
    scroll(1);
    EXPECT_EQ(walks(), 0U) << "the time counts from then on";
}

TEST_F(AXScrollTest, TheAgeCountsFromTheEndOfASlowWalk) {
    addBar(element());
    element().addChild("AXGroup").stopAnswering("AXChildren");
    scroll(1);
    ASSERT_GT(desktop.scheduler().now(), std::chrono::seconds(5));
    EXPECT_EQ(walks(), 1U);
    scroll(1);
    EXPECT_EQ(walks(), 0U);
}

TEST_F(AXScrollTest, AClockThatIsSetBackDoesNotKeepOldAreas) {
    addBar(element());
    scroll(1);
    walks();
    desktop.clock().setBack(std::chrono::hours(1));
    scroll(1);
    EXPECT_EQ(walks(), 1U);
    scroll(1);
    EXPECT_EQ(walks(), 0U);
}

TEST_F(AXScrollTest, ForgettingAWindowDropsItsAreasAndNoOthers) {
    const auto second = desktop.openWindow(app, "Viaggio", {{150, 60}, {300, 200}});
    addBar(element());
    addBar(*desktop.accessibility().window(second));
    scroll(1);
    AXScroller::scroll(app, second, 1, inside);
    desktop.runUntilIdle();
    desktop.accessibility().takeCalls();
    AXScroller::forget(second);
    scroll(1);
    EXPECT_EQ(walks(), 0U);
    AXScroller::scroll(app, second, 1, inside);
    desktop.runUntilIdle();
    const auto calls = desktop.accessibility().takeCalls();
    EXPECT_EQ(std::count(calls.begin(), calls.end(), fmt::format("window {} setMessagingTimeout 0.25", second)), 1);
    AXScroller::forget(9999);
    desktop.runUntilIdle();
}

TEST_F(AXScrollTest, ForgettingComesAfterTheScrollsBeforeIt) {
    addBar(element());
    AXScroller::scroll(app, windowID, 1, inside);
    AXScroller::forget(windowID);
    desktop.runUntilIdle();
    EXPECT_EQ(walks(), 1U);
    scroll(1);
    EXPECT_EQ(walks(), 1U) << "nothing was left behind";
}

TEST_F(AXScrollTest, ABarThatCannotBeReadIsDroppedAndTheNextScrollLooksAgain) {
    auto& area = element().addScrollArea(largeArea);
    auto& bar = area.addVerticalScrollBar(0.5);
    scroll(1);
    bar.disappear();
    auto& replacement = area.addVerticalScrollBar(0.5);
    takeActions();
    takeLog();
    scroll(100);
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(takeLog(), Lines{}) << "silently";
    scroll(100);
    EXPECT_EQ(replacement.number("AXValue"), 0.35) << "one event was lost, not more";
}

TEST_F(AXScrollTest, AValueThatIsNoNumberDropsTheBar) {
    auto& bar = addBar(element());
    scroll(1);
    walks();
    bar.setAttribute("AXValue", std::string("die Mitte"));
    scroll(1);
    scroll(1);
    EXPECT_EQ(walks(), 1U);
}

TEST_F(AXScrollTest, ABarThatCannotBeSetIsLoggedAndDropped) {
    auto& bar = addBar(element());
    scroll(1);
    takeLog();
    walks();
    bar.overrideSetting("AXValue", AccessibilityError::cannotComplete);
    scroll(10);
    EXPECT_EQ(takeLog(), Lines{"axscroll: set failed err=AXError(rawValue: -25204), dropping the cached bar"});
    EXPECT_EQ(walks(), 0U);
    scroll(10);
    EXPECT_EQ(walks(), 1U);
    bar.overrideSetting("AXValue", AccessibilityError::success);
    takeLog();
    scroll(10);
    scroll(10);
    EXPECT_EQ(takeLog(), Lines{}) << "accepted is enough";
    EXPECT_EQ(walks(), 1U);
}

TEST_F(AXScrollTest, AWindowThatClosesCostsItsEventsAndNothingElse) {
    addBar(element());
    scroll(1);
    desktop.close(windowID);
    takeActions();
    scroll(1);
    scroll(1);
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(takeLog().back(), "axscroll: no AX window for wid=" + number);
}

TEST_F(AXScrollTest, WithLoggingOffScrollingWorksAndWritesNothing) {
    store("debugLogging", false);
    auto& bar = addBar(element());
    scroll(100);
    EXPECT_EQ(bar.number("AXValue"), 0.35);
    EXPECT_EQ(takeLog(), Lines{});
}

} // namespace
} // namespace quillon
