// The focus and the order of the windows stay as they are while input is posted to one that lacks the focus, and what
// the user does meanwhile stays, too.

#include "Desktop.h"
#include "FocusWatch.h"
#include "XClient.h"

#include "Platform/X11/FocusKeeper.h"
#include "Platform/X11/QtApplication.h"
#include "Platform/X11/WindowManager.h"
#include "Platform/X11/X11Platform.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>

namespace quillon::x11 {
namespace {

using e2e::Milliseconds;
using e2e::Window;
using e2e::WindowManager;
using Lines = std::vector<std::string>;

/// Longer than what follows posted input counts as its consequence.
constexpr Milliseconds afterwards{400};
/// How long to look for something that must not happen.
constexpr Milliseconds quietTime{300};

constexpr const char* targetPlace = "200,150,500,400";
/// Leaves the target's right half uncovered.
constexpr const char* activePlace = "100,100,300,600";
constexpr const char* otherPlace = "800,200,300,300";

struct SampleProgram {
    std::unique_ptr<e2e::Program> program;
    Window window = 0;
};

std::unique_ptr<Connection> openConnectionTo(const e2e::Desktop& desktop) {
    for (const auto& [name, value] : desktop.environment()) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    return std::move(std::get<std::unique_ptr<Connection>>(Connection::open()));
}

class X11FocusKeeper : public testing::TestWithParam<WindowManager> {
protected:
    X11FocusKeeper() {
        client.movePointer(1500, 1100);
        other = start({"--place", otherPlace});
        // The next to get the focus when the active window goes.
        target = start({"--place", targetPlace, "--input", inputFile().string()});
        active = start({"--place", activePlace});
        activate(active.window);
    }

    SampleProgram start(const std::vector<std::string>& arguments) {
        e2e::Command command{SAMPLE_WINDOW_PROGRAM};
        command.insert(command.end(), arguments.begin(), arguments.end());
        SampleProgram started{desktop.start(command)};
        EXPECT_TRUE(client.waitUntil([&] {
            const auto windows = client.managedWindowsOf(started.program->pid());
            started.window = windows.empty() ? 0 : windows.front();
            return started.window != 0 && client.isViewable(started.window) && client.activeWindow() == started.window;
        }));
        return started;
    }

    /// Serves the keeper's events until the condition holds.
    bool eventually(const std::function<bool()>& condition, Milliseconds bound = e2e::stepBound) {
        const auto deadline = std::chrono::steady_clock::now() + bound;
        const auto looks = platform->scheduler().scheduleRepeatingTimer(Seconds(0.005), [] {});
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= deadline) {
                return condition();
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }
    bool stays(const std::function<bool()>& condition) {
        return !eventually([&] { return !condition(); }, quietTime);
    }
    void pass(Milliseconds time) {
        std::ignore = eventually([] { return false; }, time);
    }

    void activate(Window window) {
        client.activate(window);
        ASSERT_TRUE(eventually([&] { return client.activeWindow() == window; }));
    }
    /// A program asks for the focus, as toolkits do after a press.
    void askForFocus(Window window) {
        constexpr std::uint32_t fromApplication = 1;
        askManager(platform->xConnection(), window, "_NET_ACTIVE_WINDOW",
                   {fromApplication, platform->xConnection().latestTime(), XCB_WINDOW_NONE});
        platform->xConnection().flush();
    }
    void raiseTarget() {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(client.xcb(), target.window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        xcb_flush(client.xcb());
    }

    [[nodiscard]] InputTarget targetOf(InputStyle style = InputStyle::parts) const {
        return {target.window, target.window, style};
    }
    /// Input is posted to the target.
    void post() { std::ignore = keeper.willPost(targetOf(), false); }
    bool lend() {
        const bool isNew = keeper.willPost(targetOf(InputStyle::outermostWithFocus), true);
        platform->xConnection().flush();
        return isNew;
    }

    [[nodiscard]] bool isActive(const SampleProgram& sample) const { return client.activeWindow() == sample.window; }
    [[nodiscard]] bool isAsBefore() const { return isActive(active) && client.isAbove(active.window, target.window); }
    [[nodiscard]] bool comesBack() {
        // At the first look the window manager may not have got to the change yet.
        return settles() || settles();
    }
    [[nodiscard]] bool settles() {
        return eventually([&] { return isAsBefore(); }) && stays([&] { return isAsBefore(); });
    }
    /// The program asks for the focus and gets it from the manager, for a moment at least.
    [[nodiscard]] bool takesFocus() {
        const auto before = static_cast<std::ptrdiff_t>(focusWatch.changes().size());
        askForFocus(target.window);
        return eventually([&] { return tookFocusAfter(before); });
    }
    /// Whether the target got the focus after that many changes and the manager has announced it. Which window is the
    /// active one is asked only then, when the keeper may have given the focus back already.
    [[nodiscard]] bool tookFocusAfter(std::ptrdiff_t before) const {
        const auto changes = focusWatch.changes();
        const auto taken = std::find_if(changes.begin() + before, changes.end(),
                                        [this](const auto& change) { return change.window == target.window; });
        return std::any_of(taken, changes.end(), [](const auto& change) { return !change.isKeyboardFocus; });
    }
    [[nodiscard]] bool targetIsInFront() const {
        return isActive(target) && (!client.isViewable(active.window) || client.isAbove(target.window, active.window));
    }
    [[nodiscard]] bool targetStaysInFront() {
        return eventually([&] { return targetIsInFront(); }) && stays([&] { return targetIsInFront(); });
    }

    [[nodiscard]] std::filesystem::path inputFile() const { return desktop.directory() / "input"; }
    /// What the target was told of the focus beside what the server tells, which it does not want to know.
    [[nodiscard]] Lines tellings() const {
        Lines lines;
        std::ifstream file(inputFile());
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("window focus")) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    e2e::Desktop desktop{{.windowManager = GetParam()}};
    e2e::XClient client{desktop.displayName()};
    e2e::FocusWatch focusWatch{desktop.displayName()};
    std::unique_ptr<Connection> connection = openConnectionTo(desktop);
    std::unique_ptr<QApplication> application = makeApplication(connection->scale());
    std::unique_ptr<X11Platform> platform = std::make_unique<X11Platform>(std::move(connection));
    SampleProgram target;
    SampleProgram other;
    SampleProgram active;
    ClientWindows windows{platform->xConnection()};
    FocusKeeper keeper{platform->xConnection(), platform->scheduler(), windows};
};

// What follows posted input

TEST_P(X11FocusKeeper, AWindowThatTakesTheFocusGivesItBackAndReturnsToItsPlace) {
    post();
    ASSERT_TRUE(takesFocus());
    EXPECT_TRUE(comesBack());
}

TEST_P(X11FocusKeeper, AWindowThatComesToTheFrontReturnsToItsPlace) {
    post();
    raiseTarget();
    EXPECT_TRUE(comesBack());
}

TEST_P(X11FocusKeeper, AsOftenAsItHappens) {
    for (int round = 0; round < 3; ++round) {
        post();
        ASSERT_TRUE(takesFocus());
        ASSERT_TRUE(eventually([&] { return isAsBefore(); }));
    }
}

TEST_P(X11FocusKeeper, LongAfterwardsAWindowKeepsTheFocusThatItTakes) {
    post();
    pass(afterwards);
    ASSERT_TRUE(takesFocus());
    EXPECT_TRUE(targetStaysInFront());
}

// What the user does herself

TEST_P(X11FocusKeeper, AWindowThatTheUserSwitchesToByThisProgramStaysInFront) {
    post();
    keeper.userSwitches();
    activate(target.window);
    EXPECT_TRUE(targetStaysInFront());
}

TEST_P(X11FocusKeeper, AThirdWindowThatTheUserSwitchesToKeepsTheFocus) {
    post();
    activate(other.window);
    EXPECT_TRUE(stays([&] { return isActive(other) && client.isAbove(active.window, target.window); }));
    // It is the one to which the focus goes back from now on.
    post();
    ASSERT_TRUE(takesFocus());
    EXPECT_TRUE(eventually([&] { return isActive(other); }));
    EXPECT_TRUE(stays([&] { return isActive(other); }));
}

TEST_P(X11FocusKeeper, TheWindowKeepsTheFocusWhenTheUserClicksInIt) {
    client.movePointer(600, 400); // where nothing covers the target
    post();
    client.pressButton(1);
    client.releaseButton(1);
    EXPECT_TRUE(targetStaysInFront());
}

TEST_P(X11FocusKeeper, AWindowThatTheUserMinimisesStaysSo) {
    post();
    client.minimise(active.window);
    ASSERT_TRUE(eventually([&] { return !client.isViewable(active.window); }));
    EXPECT_TRUE(targetStaysInFront());
    EXPECT_FALSE(client.isViewable(active.window));
}

TEST_P(X11FocusKeeper, AWorkspaceThatTheUserLeavesIsNotShownAgain) {
    post();
    client.switchToDesktop(1);
    ASSERT_TRUE(eventually([&] { return client.currentDesktop() == 1; }));
    EXPECT_TRUE(stays([&] { return client.currentDesktop() == 1 && !client.isViewable(active.window); }));
}

// Windows that go

TEST_P(X11FocusKeeper, AnActiveWindowThatClosesLeavesTheFocusToTheManager) {
    post();
    client.closeWindow(active.window);
    ASSERT_TRUE(eventually([&] { return !client.place(active.window); }));
    EXPECT_TRUE(targetStaysInFront());
}

TEST_P(X11FocusKeeper, ATargetThatGoesChangesNothing) {
    ASSERT_TRUE(lend());
    askForFocus(target.window);
    target.program->send(SIGKILL);
    ASSERT_TRUE(eventually([&] { return !client.place(target.window); }));
    keeper.didReleaseAll(targetOf(InputStyle::outermostWithFocus));
    EXPECT_TRUE(eventually([&] { return isActive(active); }));
    pass(afterwards);
    EXPECT_TRUE(isActive(active));
    EXPECT_TRUE(platform->xConnection().isAlive());
}

// The focus that is lent

TEST_P(X11FocusKeeper, AProgramThatAsksForTheFocusIsToldOnceAndUntilItsButtonsAreUp) {
    EXPECT_TRUE(lend());
    EXPECT_FALSE(lend());
    ASSERT_TRUE(eventually([&] { return tellings() == Lines{"window focus in"}; }));
    EXPECT_TRUE(stays([&] { return tellings().size() == 1; }));
    keeper.didReleaseAll(targetOf(InputStyle::outermostWithFocus));
    EXPECT_TRUE(eventually([&] { return tellings() == Lines{"window focus in", "window focus out"}; }));
    EXPECT_TRUE(stays([&] { return tellings().size() == 2 && isAsBefore(); }));
}

TEST_P(X11FocusKeeper, APressThatFollowsPutsOffTakingTheFocusBack) {
    EXPECT_TRUE(lend());
    keeper.didReleaseAll(targetOf(InputStyle::outermostWithFocus));
    EXPECT_FALSE(lend());
    pass(afterwards);
    EXPECT_EQ(tellings(), Lines{"window focus in"});
}

TEST_P(X11FocusKeeper, AProgramThatHasTheFocusIsToldNothing) {
    activate(target.window);
    EXPECT_FALSE(lend());
    keeper.didReleaseAll(targetOf(InputStyle::outermostWithFocus));
    pass(afterwards);
    EXPECT_EQ(tellings(), Lines{});
}

TEST_P(X11FocusKeeper, ProgramsThatDoNotAskForTheFocusAreToldNothing) {
    EXPECT_FALSE(keeper.willPost(targetOf(InputStyle::parts), true));
    EXPECT_FALSE(keeper.willPost(targetOf(InputStyle::outermost), true));
    EXPECT_FALSE(keeper.willPost(targetOf(InputStyle::outermostWithFocus), false));
    keeper.didReleaseAll(targetOf());
    pass(afterwards);
    EXPECT_EQ(tellings(), Lines{});
}

TEST_P(X11FocusKeeper, AKeeperThatEndsTakesTheFocusBackAtOnce) {
    {
        FocusKeeper ending(platform->xConnection(), platform->scheduler(), windows);
        EXPECT_TRUE(ending.willPost(targetOf(InputStyle::outermostWithFocus), true));
    }
    EXPECT_TRUE(eventually([&] { return tellings() == Lines{"window focus in", "window focus out"}; }));
}

INSTANTIATE_TEST_SUITE_P(Desktops, X11FocusKeeper, testing::Values(WindowManager::openbox, WindowManager::xfwm4),
                         [](const auto& test) {
                             return std::string(test.param == WindowManager::xfwm4 ? "xfwm4" : "openbox");
                         });

} // namespace
} // namespace quillon::x11
