#include "WindowLevelManager.h"

#include "UnitTest.h"

#include <limits>

namespace quillon {
namespace {

constexpr DisplayRect here{{100, 50}, {800, 600}};
constexpr DisplayRect there{{300, 200}, {500, 400}};

class WindowLevelManagerTest : public UnitTest {
protected:
    /// The application "Note" with the windows `behind` and, before it, `front`; another application is in front.
    ProcessID app = desktop.launch("Note");
    WindowID behind = desktop.openWindow(app, "Spesa", here);
    WindowID front = desktop.openWindow(app, "Viaggio", there);
    ProcessID other = desktop.launch("Mail");
    WindowID otherWindow = desktop.openWindow(other, "Posta", {{0, 0}, {50, 50}});

    WindowLevelManagerTest() {
        turnLoggingOn();
        desktop.activate(other);
        desktop.runUntilIdle();
        desktop.journal().clear();
    }

    simulated::SimulatedElement& element(WindowID windowID) { return *desktop.accessibility().window(windowID); }
    simulated::SimulatedElement& application() { return *desktop.accessibility().application(app); }
    bool matches(WindowID windowID) {
        return WindowLevelManager::axWindow(app, windowID) == desktop.accessibility().window(windowID);
    }
    /// Makes the element say that it lies that far from the window server's bounds.
    void shift(WindowID windowID, double x, double y, double width, double height) {
        const auto bounds = desktop.model().window(windowID).bounds;
        element(windowID).setAttribute("AXPosition", DisplayPoint{bounds.origin.x + x, bounds.origin.y + y});
        element(windowID).setAttribute("AXSize", Size{bounds.size.width + width, bounds.size.height + height});
    }
    void alter(WindowID windowID, std::function<void(WindowDescription&)> alteration) {
        desktop.model().window(windowID).alterDescription = std::move(alteration);
    }
    WindowID frontmostWindow() { return desktop.model().windows.front().windowID; }
    Lines takeActions() { return desktop.journal().take({"accessibility.", "workspace."}); }
};

using WindowLevelManagerEdgeCases = WindowLevelManagerTest;

TEST_F(WindowLevelManagerEdgeCases, AWindowThatMovedByFourPointsMatchesAndASizeThatDiffersByFiveDoesNot) {
    shift(behind, 4, 4, 0, 0);
    EXPECT_TRUE(matches(behind));
    shift(behind, 4.9, -4.9, 4.9, -4.9);
    EXPECT_TRUE(matches(behind));
    for (const double five : {5.0, -5.0}) {
        shift(behind, 0, 0, five, 0);
        EXPECT_FALSE(matches(behind));
        shift(behind, 0, 0, 0, five);
        EXPECT_FALSE(matches(behind));
        shift(behind, five, 0, 0, 0);
        EXPECT_FALSE(matches(behind));
        shift(behind, 0, five, 0, 0);
        EXPECT_FALSE(matches(behind));
    }
}

TEST_F(WindowLevelManagerEdgeCases, OfTwoWindowsInTheSamePlaceTheFirstOfTheApplicationIsRaised) {
    desktop.move(front, here);
    WindowLevelManager::raiseWindow(app, behind, false);
    EXPECT_EQ(takeActions(), Lines{fmt::format("accessibility.performAction window {} AXRaise", front)});
    EXPECT_EQ(takeLog(), Lines{fmt::format("raiseWindow: AXRaise wid={} pid={} result=0", behind, app)});
}

TEST_F(WindowLevelManagerEdgeCases, AnApplicationThatDoesNotAnswerIsLoggedAndNotActivated) {
    application().stopAnswering("AXWindows");
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeLog(),
              Lines{fmt::format("raiseWindow: could not get windows for pid={} axErr=-25204 trusted=true", app)});
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(desktop.model().frontmost, other);
}

TEST_F(WindowLevelManagerEdgeCases, AnApplicationThatHasQuitIsLoggedAndNothingElseHappens) {
    desktop.terminate(app);
    desktop.runUntilIdle();
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeLog(),
              Lines{fmt::format("raiseWindow: could not get windows for pid={} axErr=-25202 trusted=true", app)});
    EXPECT_EQ(takeActions(), Lines{});
    EXPECT_EQ(WindowLevelManager::axWindow(app, behind), nullptr);

    // The same when the list can still be read, but the window has gone from the window server.
    const auto reborn = desktop.launch("Note");
    WindowLevelManager::raiseWindow(reborn, behind, true);
    EXPECT_EQ(takeLog(),
              Lines{fmt::format("raiseWindow: no AX window matched wid={} pid={}; doing nothing", behind, reborn)});
    EXPECT_EQ(takeActions(), Lines{});
}

// Finding

TEST_F(WindowLevelManagerTest, EachWindowIsFoundByItsFrame) {
    EXPECT_TRUE(matches(front));
    EXPECT_TRUE(matches(behind));
    EXPECT_EQ(WindowLevelManager::axWindow(app, otherWindow), nullptr) << "another process's";
    EXPECT_EQ(WindowLevelManager::axWindow(app, 9999), nullptr);
}

TEST_F(WindowLevelManagerTest, EveryElementReadsTheWindowListAnew) {
    desktop.accessibility().takeCalls();
    EXPECT_TRUE(matches(behind));
    EXPECT_EQ(desktop.accessibility().takeCalls(),
              (Lines{fmt::format("application {} copyAttributeValue AXWindows", app),
                     fmt::format("window {} copyAttributeValue AXPosition", front),
                     fmt::format("window {} copyAttributeValue AXSize", front),
                     fmt::format("window {} copyAttributeValue AXPosition", behind),
                     fmt::format("window {} copyAttributeValue AXSize", behind)}));
}

TEST_F(WindowLevelManagerTest, WithoutAFrameAnElementDoesNotMatch) {
    element(behind).failAttribute("AXSize", AccessibilityError::cannotComplete);
    EXPECT_FALSE(matches(behind));
    element(behind).setAttribute("AXSize", std::string("800x600"));
    EXPECT_FALSE(matches(behind));
    element(behind).setAttribute("AXSize", here.size);
    element(behind).failAttribute("AXPosition", AccessibilityError::noValue);
    EXPECT_FALSE(matches(behind));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    element(behind).setAttribute("AXPosition", DisplayPoint{nan, nan});
    EXPECT_FALSE(matches(behind));
}

TEST_F(WindowLevelManagerTest, OnlyEntriesOfThatNumberAndProcessWithBoundsMatch) {
    const std::vector<std::function<void(WindowDescription&)>> alterations{
        [](auto& entry) { entry.number.reset(); },   [](auto& entry) { entry.number = 9999; },
        [](auto& entry) { entry.ownerPID.reset(); }, [](auto& entry) { entry.ownerPID = 9999; },
        [](auto& entry) { entry.bounds.reset(); },
    };
    for (const auto& alteration : alterations) {
        alter(behind, alteration);
        EXPECT_FALSE(matches(behind));
    }
    alter(behind, [](auto& entry) { entry.layer = 3; });
    EXPECT_TRUE(matches(behind)) << "the layer does not matter";
    alter(behind, nullptr);
    EXPECT_TRUE(matches(behind));
}

TEST_F(WindowLevelManagerTest, AMissingNumberOfTheBoundsCountsAsZero) {
    alter(behind, [](auto& entry) { entry.bounds = WindowBoundsEntry{.x = {}, .y = {}, .width = 800, .height = 600}; });
    EXPECT_FALSE(matches(behind));
    element(behind).setAttribute("AXPosition", DisplayPoint{0, 0});
    EXPECT_TRUE(matches(behind));
}

TEST_F(WindowLevelManagerTest, OnlyWindowsOnTheScreenMatch) {
    desktop.minimise(behind);
    EXPECT_FALSE(matches(behind));
}

TEST_F(WindowLevelManagerTest, WithoutAWindowListNothingMatches) {
    desktop.windowServer().setFailing(true);
    EXPECT_FALSE(matches(behind));
}

TEST_F(WindowLevelManagerTest, AnApplicationWithoutAListOfElementsHasNoWindow) {
    application().setAttribute("AXWindows", std::string("keine"));
    EXPECT_EQ(WindowLevelManager::axWindow(app, behind), nullptr);
    application().setAttribute("AXWindows", simulated::AccessibilityElements());
    EXPECT_EQ(WindowLevelManager::axWindow(app, behind), nullptr);
    application().failAttribute("AXWindows", AccessibilityError::cannotComplete);
    EXPECT_EQ(WindowLevelManager::axWindow(app, behind), nullptr);
}

// Raising

TEST_F(WindowLevelManagerTest, RaisingActivatesTheApplicationAfterwards) {
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeActions(), (Lines{fmt::format("accessibility.performAction window {} AXRaise", behind),
                                    fmt::format("workspace.activateApplication {}", app)}));
    EXPECT_EQ(takeLog(), (Lines{fmt::format("raiseWindow: AXRaise wid={} pid={} result=0", behind, app),
                                "raiseWindow: activated app 'Note'"}));
    EXPECT_EQ(frontmostWindow(), behind);
    EXPECT_EQ(desktop.model().frontmost, app);
}

TEST_F(WindowLevelManagerTest, WithoutActivationTheApplicationStaysBehind) {
    WindowLevelManager::raiseWindow(app, behind, false);
    EXPECT_EQ(takeLog(), Lines{fmt::format("raiseWindow: AXRaise wid={} pid={} result=0", behind, app)});
    EXPECT_EQ(frontmostWindow(), otherWindow);
    EXPECT_EQ(desktop.model().focusedWindow(app)->windowID, behind);
    EXPECT_EQ(desktop.model().frontmost, other);
}

TEST_F(WindowLevelManagerTest, AFailedRaiseIsLoggedAndActivationFollows) {
    element(behind).failAction("AXRaise", AccessibilityError::cannotComplete);
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeLog(), (Lines{fmt::format("raiseWindow: AXRaise wid={} pid={} result=-25204", behind, app),
                                "raiseWindow: activated app 'Note'"}));
    EXPECT_EQ(desktop.model().frontmost, app);
}

TEST_F(WindowLevelManagerTest, AnApplicationWithoutANameIsActivatedAndLoggedAsUnnamed) {
    desktop.model().application(app).identity.localizedName.reset();
    WindowLevelManager::raiseWindow(app, front, true);
    EXPECT_EQ(takeLog(), (Lines{fmt::format("raiseWindow: AXRaise wid={} pid={} result=0", front, app),
                                "raiseWindow: activated app '?'"}));
}

TEST_F(WindowLevelManagerTest, AnApplicationThatQuitsWhileItIsAskedToRaiseIsNotActivated) {
    element(behind).stopAnswering("AXRaise");
    desktop.scheduler().submitAfter(Seconds(1), "elsewhere", [&] { desktop.terminate(app); });
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeActions(), Lines{fmt::format("accessibility.performAction window {} AXRaise", behind)});
    EXPECT_EQ(takeLog(), Lines{fmt::format("raiseWindow: AXRaise wid={} pid={} result=-25204", behind, app)});
    EXPECT_EQ(desktop.model().frontmost, other);
}

TEST_F(WindowLevelManagerTest, WithoutPermissionTheLogSaysSo) {
    desktop.accessibility().setTrusted(false);
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeLog(),
              Lines{fmt::format("raiseWindow: could not get windows for pid={} axErr=-25211 trusted=false", app)});
}

TEST_F(WindowLevelManagerTest, AListThatIsNoneIsLoggedWithoutAnError) {
    application().setAttribute("AXWindows", std::monostate());
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeLog(), Lines{fmt::format("raiseWindow: could not get windows for pid={} axErr=0 trusted=true", app)});
    EXPECT_EQ(takeActions(), Lines{});
}

TEST_F(WindowLevelManagerTest, AWindowThatDoesNotMatchIsLoggedAndNothingIsActivated) {
    desktop.close(behind);
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(takeLog(),
              Lines{fmt::format("raiseWindow: no AX window matched wid={} pid={}; doing nothing", behind, app)});
    EXPECT_EQ(takeActions(), Lines{});
}

TEST_F(WindowLevelManagerTest, NothingIsLoggedWhileLoggingIsOff) {
    desktop.userDefaults().store("debugLogging", false);
    WindowLevelManager::raiseWindow(app, behind, true);
    EXPECT_EQ(frontmostWindow(), behind);
    EXPECT_EQ(takeLog(), Lines{});
}

} // namespace
} // namespace quillon
