#include "AXScrollerTest.h"

#include <limits>

namespace quillon {
namespace {

constexpr DisplayRect largeArea{{100, 100}, {600, 500}};

class AXScrollProbeTest : public AXScrollerTest {
protected:
    AXScrollProbeTest() {
        store("axScrollProbe", true);
        desktop.activate(front);
        desktop.runUntilIdle();
        desktop.journal().clear();
    }

    /// The log of one probe.
    Lines probe() {
        AXScroller::probe(app, windowID);
        return takeLog();
    }
    simulated::SimulatedElement& addBar(double value) {
        return element().addScrollArea(largeArea).addVerticalScrollBar(value);
    }
    std::string start() const { return fmt::format("axprobe: START pid={} wid={} frontmost=Mail", app, number); }
    std::string set(double value) const {
        return fmt::format("accessibility.setAttributeValue window {} > AXScrollArea 0 > AXScrollBar 0 AXValue {}",
                           number, value);
    }

    const ProcessID front = desktop.launch("Mail");
};

using AXScrollProbeEdgeCases = AXScrollProbeTest;

TEST_F(AXScrollProbeEdgeCases, UnlessItIsSwitchedOnNothingIsWritten) {
    addBar(0.5);
    desktop.userDefaults().remove("axScrollProbe");
    EXPECT_EQ(probe(), Lines{});
    store("axScrollProbe", false);
    EXPECT_EQ(probe(), Lines{});
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(desktop.accessibility().takeCalls(), Lines{});
}

TEST_F(AXScrollProbeEdgeCases, ABarAtItsMaximumMovesBackByATenthAndOneAtItsMinimumForward) {
    auto& bar = addBar(1);
    bar.setAttribute("AXMinValue", -1.0);
    probe();
    EXPECT_EQ(takeActions(), (Lines{set(0.8), "scheduler.sleep 0.2"}));
    bar.setAttribute("AXValue", -1.0);
    probe();
    EXPECT_EQ(takeActions(), (Lines{set(-0.8), "scheduler.sleep 0.2"}));
}

TEST_F(AXScrollProbeEdgeCases, AWindowWithoutScrollAreasEndsThere) {
    element().addChild("AXGroup");
    EXPECT_EQ(probe(), (Lines{start(), "axprobe: found 0 AXScrollArea(s)",
                              "axprobe: RESULT — no scroll area in this window. Nothing to drive."}));
    EXPECT_EQ(takeActions(), Lines{});
}

// The way through

TEST_F(AXScrollProbeTest, ABarThatMovesAndAFocusThatStaysIsSuccess) {
    auto& bar = addBar(0.5);
    element().addScrollArea(largeArea);
    EXPECT_EQ(probe(), (Lines{start(), "axprobe: found 2 AXScrollArea(s)",
                              "axprobe: scrollbar value=0.5 min=0.0 max=1.0 settable=true (err=AXError(rawValue: 0))",
                              "axprobe: set value 0.5000 -> 0.6000 result=AXError(rawValue: 0)",
                              "axprobe: value after=0.6 moved=true frontmost=Mail (was Mail)",
                              "axprobe: RESULT — SCROLLED, and focus did not move. This route WORKS."}));
    EXPECT_EQ(bar.number("AXValue"), 0.6) << "the bar stays where it was put";
}

TEST_F(AXScrollProbeTest, TheStepsKeepTheirOrder) {
    addBar(0.5);
    probe();
    EXPECT_EQ(desktop.accessibility().takeCalls(),
              walkThen({ofBar + "copyAttributeValue AXValue", ofBar + "copyAttributeValue AXMinValue",
                        ofBar + "copyAttributeValue AXMaxValue", ofBar + "setAttributeValue AXValue",
                        ofBar + "copyAttributeValue AXValue"}));
    EXPECT_EQ(desktop.accessibility().callingQueues(), std::set{scrollQueue});
}

TEST_F(AXScrollProbeTest, AFocusThatMovesWasStolen) {
    addBar(0.5);
    desktop.scheduler().mainAfter(Seconds(0.1), [&] { desktop.activate(app); });
    const auto log = probe();
    ASSERT_EQ(log.size(), 6U);
    EXPECT_EQ(log[4], "axprobe: value after=0.6 moved=true frontmost=Note (was Mail)");
    EXPECT_EQ(log[5], "axprobe: RESULT — scrolled, but the frontmost app CHANGED. Focus was stolen.");
}

TEST_F(AXScrollProbeTest, ABarThatDoesNotMoveIsAClosedRoute) {
    addBar(0.5).overrideSetting("AXValue", AccessibilityError::success);
    const auto log = probe();
    ASSERT_EQ(log.size(), 6U);
    EXPECT_EQ(log[3], "axprobe: set value 0.5000 -> 0.6000 result=AXError(rawValue: 0)");
    EXPECT_EQ(log[4], "axprobe: value after=0.5 moved=false frontmost=Mail (was Mail)");
    EXPECT_EQ(log[5], "axprobe: RESULT — the set was accepted but nothing moved. This route is closed.");
}

TEST_F(AXScrollProbeTest, AFailedSetIsLoggedAndTheAccountGoesOn) {
    addBar(0.5).overrideSetting("AXValue", AccessibilityError::failure);
    const auto log = probe();
    ASSERT_EQ(log.size(), 6U);
    EXPECT_EQ(log[3], "axprobe: set value 0.5000 -> 0.6000 result=AXError(rawValue: -25200)");
    EXPECT_EQ(log[5], "axprobe: RESULT — the set was accepted but nothing moved. This route is closed.");
}

TEST_F(AXScrollProbeTest, ABarThatDisappearsMeanwhileCountsAsNotMoved) {
    auto& bar = addBar(0.5);
    desktop.scheduler().mainAfter(Seconds(0.1), [&] { bar.disappear(); });
    EXPECT_EQ(probe().at(4), "axprobe: value after=0.5 moved=false frontmost=Mail (was Mail)");
}

TEST_F(AXScrollProbeTest, TheFrontmostNameIsAQuestionMarkWhenThereIsNone) {
    addBar(0.5);
    desktop.model().application(front).identity.localizedName.reset();
    desktop.scheduler().mainAfter(Seconds(0.1), [&] { desktop.model().frontmost.reset(); });
    const auto log = probe();
    EXPECT_EQ(log.front(), fmt::format("axprobe: START pid={} wid={} frontmost=?", app, number));
    EXPECT_EQ(log.at(4), "axprobe: value after=0.6 moved=true frontmost=? (was ?)");
    EXPECT_EQ(log.at(5), "axprobe: RESULT — SCROLLED, and focus did not move. This route WORKS.");
}

// Ends on the way

TEST_F(AXScrollProbeTest, WithoutTheWindowItCannotProceed) {
    desktop.close(windowID);
    EXPECT_EQ(probe(), (Lines{start(), "axprobe: could not find the AX window — cannot proceed"}));
}

TEST_F(AXScrollProbeTest, OnlyTheFirstScrollAreasBarIsTried) {
    element().addScrollArea(largeArea);
    addBar(0.5);
    EXPECT_EQ(probe(), (Lines{start(), "axprobe: found 2 AXScrollArea(s)",
                              "axprobe: RESULT — scroll area has no vertical scroll bar."}));
}

TEST_F(AXScrollProbeTest, ABarThatCannotBeSetIsAClosedRoute) {
    auto& bar = addBar(0.5);
    const std::string closed = "axprobe: RESULT — the scroll position is NOT settable. This route is closed.";
    bar.setSettable("AXValue", false);
    EXPECT_EQ(probe(), (Lines{start(), "axprobe: found 1 AXScrollArea(s)",
                              "axprobe: scrollbar value=0.5 min=0.0 max=1.0 settable=false (err=AXError(rawValue: 0))",
                              closed}));
    bar.failSettable("AXValue", AccessibilityError::cannotComplete);
    EXPECT_EQ(probe().at(2),
              "axprobe: scrollbar value=0.5 min=0.0 max=1.0 settable=false (err=AXError(rawValue: -25204))");
    bar.setSettable("AXValue", true);
    bar.failAttribute("AXValue", AccessibilityError::noValue);
    const auto log = probe();
    EXPECT_EQ(log.at(2), "axprobe: scrollbar value=nil min=0.0 max=1.0 settable=true (err=AXError(rawValue: 0))");
    EXPECT_EQ(log.at(3), closed);
    EXPECT_EQ(takeActions(), Lines{});
}

TEST_F(AXScrollProbeTest, WithoutARangeThereIsNothingToMove) {
    auto& bar = addBar(0.5);
    for (const double max : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
        bar.setAttribute("AXMaxValue", max);
        EXPECT_EQ(probe().back(), "axprobe: RESULT — zero scroll range, nothing to move.");
    }
    EXPECT_EQ(takeActions(), Lines{});
}

TEST_F(AXScrollProbeTest, MissingEndsOfTheRangeAreZeroAndOne) {
    auto& bar = addBar(0.5);
    bar.failAttribute("AXMinValue", AccessibilityError::noValue);
    bar.setAttribute("AXMaxValue", std::string("unten"));
    const auto log = probe();
    EXPECT_EQ(log.at(2), "axprobe: scrollbar value=0.5 min=nil max=nil settable=true (err=AXError(rawValue: 0))");
    EXPECT_EQ(log.at(3), "axprobe: set value 0.5000 -> 0.6000 result=AXError(rawValue: 0)");
}

TEST_F(AXScrollProbeTest, ABarCloseToItsEndMovesBack) {
    auto& bar = addBar(0);
    bar.setAttribute("AXMinValue", 0.0);
    bar.setAttribute("AXMaxValue", 1000.0);
    for (const auto& [value, target] : {std::pair{849.0, 949.0}, {850.0, 750.0}, {851.0, 751.0}}) {
        bar.setAttribute("AXValue", value);
        EXPECT_EQ(probe().at(3),
                  fmt::format("axprobe: set value {:.4f} -> {:.4f} result=AXError(rawValue: 0)", value, target));
    }
}

TEST_F(AXScrollProbeTest, ScrollsWaitUntilTheProbeIsDone) {
    auto& bar = addBar(0.5);
    double valueMeanwhile = 0;
    desktop.scheduler().mainAfter(Seconds(0.1), [&] {
        AXScroller::scroll(app, windowID, 100, {300, 300});
        valueMeanwhile = bar.number("AXValue");
    });
    desktop.scheduler().mainAfter(Seconds(0.19), [&] { valueMeanwhile = bar.number("AXValue"); });
    EXPECT_EQ(probe().back(),
              fmt::format("axscroll: resolved 1 scrollable area(s) for wid={}: 600x500@100,100", number));
    EXPECT_EQ(valueMeanwhile, 0.6);
    EXPECT_DOUBLE_EQ(bar.number("AXValue"), 0.45);
    EXPECT_EQ(desktop.scheduler().now(), std::chrono::milliseconds(200));
}

TEST_F(AXScrollProbeTest, WithLoggingOffTheProbeWritesNothing) {
    store("debugLogging", false);
    addBar(0.5);
    EXPECT_EQ(probe(), Lines{});
}

} // namespace
} // namespace quillon
