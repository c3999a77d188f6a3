#include "ContractTest.h"

#include "Platform/NotificationCenter.h"
#include "Platform/ProcessInfo.h"
#include "Platform/Screens.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"

#include <algorithm>
#include <cmath>

namespace quillon::contract {
namespace {

constexpr DisplayRect here{{100, 120}, {400, 300}};
constexpr DisplayRect there{{350, 200}, {500, 350}};
constexpr WindowListOption onScreen = windowListOnScreenOnly | windowListExcludeDesktopElements;

class WindowServerContract : public ContractTest {
protected:
    std::vector<WindowDescription> list(WindowListOption options, WindowID relativeTo = nullWindowID) {
        return desktop().windowServer().copyWindowInfo(options, relativeTo).value();
    }
    std::optional<WindowDescription> find(WindowListOption options, const OtherWindow& window) {
        for (const auto& entry : list(options)) {
            if (entry.number == window.windowID) {
                return entry;
            }
        }
        return std::nullopt;
    }
    std::ptrdiff_t place(const OtherWindow& window) {
        const auto windows = list(onScreen);
        return std::find_if(windows.begin(), windows.end(),
                            [&](const auto& entry) { return entry.number == window.windowID; }) -
               windows.begin();
    }
};

using WorkspaceContract = ContractTest;
using ScreensContract = ContractTest;
using ProcessInfoContract = ContractTest;
using NotificationCenterContract = ContractTest;

TEST_F(WindowServerContract, AnOrdinaryWindowIsDescribedInFull) {
    const auto window = world->openWindow("Primo titolo", here);
    ASSERT_TRUE(eventually([&] { return find(onScreen, window).has_value(); }));
    const auto entry = *find(onScreen, window);
    EXPECT_EQ(entry.ownerPID, window.pid);
    EXPECT_EQ(entry.layer, 0);
    EXPECT_EQ(entry.name, "Primo titolo");
    ASSERT_TRUE(entry.bounds);
    EXPECT_EQ(entry.bounds->rect(), here);
}

TEST_F(WindowServerContract, TheListGoesFromFrontToBack) {
    const auto first = world->openWindow("Primo", here);
    const auto second = world->openWindow("Secondo", there);
    world->activate(first);
    EXPECT_TRUE(eventually([&] { return place(first) < place(second); }));
    world->activate(second);
    EXPECT_TRUE(eventually([&] { return place(second) < place(first); }));
}

TEST_F(WindowServerContract, AMinimisedWindowExistsButIsNotOnScreen) {
    const auto window = world->openWindow("Primo", here);
    ASSERT_TRUE(eventually([&] { return find(onScreen, window).has_value(); }));
    world->minimise(window);
    EXPECT_TRUE(eventually([&] { return !find(onScreen, window); }));
    EXPECT_TRUE(find(windowListExcludeDesktopElements, window));
}

TEST_F(WindowServerContract, AClosedWindowIsNotListedAnyMore) {
    const auto window = world->openWindow("Primo", here);
    ASSERT_TRUE(eventually([&] { return find(onScreen, window).has_value(); }));
    world->close(window);
    EXPECT_TRUE(eventually([&] { return !find(windowListExcludeDesktopElements, window); }));
    EXPECT_TRUE(list(windowListIncludingWindow, window.windowID).empty());
}

TEST_F(WindowServerContract, OneWindowCanBeAskedForWhateverItsState) {
    const auto window = world->openWindow("Primo", here);
    world->openWindow("Secondo", there);
    world->minimise(window);
    const auto windows = list(windowListIncludingWindow, window.windowID);
    ASSERT_EQ(windows.size(), 1U);
    EXPECT_EQ(windows.front().number, window.windowID);
}

TEST_F(WindowServerContract, BoundsFollowTheWindow) {
    const auto window = world->openWindow("Primo", here);
    world->move(window, there);
    EXPECT_TRUE(eventually([&] {
        const auto windows = list(windowListIncludingWindow, window.windowID);
        return windows.size() == 1 && windows.front().bounds->rect() == there;
    }));
}

TEST_F(WorkspaceContract, TheApplicationThatTheUserSwitchesToIsFrontmostAndAnnouncedOnce) {
    const auto first = world->openWindow("Primo", here);
    const auto second = world->openWindow("Secondo", there);
    world->activate(first);
    const auto frontmost = [&] {
        const auto application = desktop().workspace().frontmostApplication();
        return application ? application->processIdentifier : 0;
    };
    ASSERT_TRUE(eventually([&] { return frontmost() == first.pid; }));
    pass(quietTime);

    std::vector<ProcessID> activated;
    const auto observer = desktop().workspace().observeDidActivateApplication(
        [&](const auto& application) { activated.push_back(application.value().processIdentifier); });
    world->activate(second);
    EXPECT_TRUE(eventually([&] { return !activated.empty(); }));
    EXPECT_EQ(frontmost(), second.pid);
    EXPECT_TRUE(stays([&] { return activated.size() == 1; }));
    EXPECT_EQ(activated, std::vector{second.pid});
}

TEST_F(WorkspaceContract, AnotherWindowOfTheSameApplicationIsNoActivation) {
    const auto first = world->openWindow("Primo", here);
    const auto sibling = world->openSecondWindow(first, "Secondo", there);
    world->activate(first);
    ASSERT_TRUE(eventually([&] {
        const auto application = desktop().workspace().frontmostApplication();
        return application && application->processIdentifier == first.pid;
    }));
    pass(quietTime);
    int activations = 0;
    const auto observer = desktop().workspace().observeDidActivateApplication([&](const auto&) { ++activations; });
    world->activate(sibling);
    EXPECT_TRUE(stays([&] { return activations == 0; }));
}

TEST_F(WorkspaceContract, AnApplicationThatEndsIsAnnouncedOnce) {
    const auto window = world->openWindow("Primo", here);
    ASSERT_TRUE(eventually([&] { return desktop().workspace().runningApplication(window.pid).has_value(); }));
    std::vector<ProcessID> terminated;
    const auto observer = desktop().workspace().observeDidTerminateApplication(
        [&](const auto& application) { terminated.push_back(application.value().processIdentifier); });
    pass(quietTime);
    world->kill(window);
    EXPECT_TRUE(eventually([&] { return !terminated.empty(); }));
    EXPECT_TRUE(stays([&] { return terminated.size() == 1; }));
    EXPECT_EQ(terminated, std::vector{window.pid});
    EXPECT_FALSE(desktop().workspace().runningApplication(window.pid));
}

TEST_F(WorkspaceContract, AnObserverThatIsGoneIsNotCalled) {
    const auto first = world->openWindow("Primo", here);
    const auto second = world->openWindow("Secondo", there);
    world->activate(first);
    pass(quietTime);
    int calls = 0;
    auto activation = desktop().workspace().observeDidActivateApplication([&](const auto&) { ++calls; });
    auto termination = desktop().workspace().observeDidTerminateApplication([&](const auto&) { ++calls; });
    activation.reset();
    termination.reset();
    world->activate(second);
    world->kill(first);
    EXPECT_TRUE(stays([&] { return calls == 0; }));
}

TEST_F(ScreensContract, ThePrimaryScreenComesFirstAndHoldsTheOrigin) {
    const auto screens = desktop().screens().screens();
    ASSERT_FALSE(screens.empty());
    EXPECT_EQ(screens.front().frame.origin, ScreenPoint());
    for (const auto& screen : screens) {
        EXPECT_GT(screen.frame.size.width, 0);
        EXPECT_GT(screen.frame.size.height, 0);
        EXPECT_GE(screen.backingScaleFactor, 1);
    }
    EXPECT_TRUE(desktop().screens().mainScreen());
}

TEST_F(ScreensContract, AChangeOfTheScreensIsAnnounced) {
    int changes = 0;
    const auto observer =
        desktop().notificationCenter().addObserver(screenParametersDidChangeNotification, [&] { ++changes; });
    const auto before = desktop().screens().screens().front().frame;
    if (!world->changeScreens()) {
        GTEST_SKIP() << "no program can change the screens of this desktop";
    }
    EXPECT_TRUE(eventually([&] { return changes > 0; }));
    EXPECT_NE(desktop().screens().screens().front().frame, before);
}

TEST_F(ProcessInfoContract, TheProcessKnowsItself) {
    EXPECT_GT(desktop().processInfo().processIdentifier(), 0);
    EXPECT_GE(desktop().processInfo().operatingSystemVersion(), (OperatingSystemVersion{14, 0, 0}));
}

TEST_F(NotificationCenterContract, ANotificationReachesItsObserversAndNoOthers) {
    int heard = 0;
    int others = 0;
    auto& center = desktop().notificationCenter();
    auto observer = center.addObserver("contract.one", [&] { ++heard; });
    const auto other = center.addObserver("contract.two", [&] { ++others; });
    center.post("contract.one");
    EXPECT_TRUE(eventually([&] { return heard == 1; }));
    observer.reset();
    center.post("contract.one");
    EXPECT_TRUE(stays([&] { return heard == 1 && others == 0; }));
}

} // namespace
} // namespace quillon::contract
