// A window stays reachable by its copy, and the copy comes back when the user leaves the window: what the X11 window
// server and workspace see to beyond the ports' promises.

#include "ContractTest.h"

#include "Platform/ScreenCapture.h"
#include "Platform/Workspace.h"

#include <algorithm>
#include <future>
#include <variant>

namespace quillon::contract {
namespace {

constexpr DisplayRect here{{100, 120}, {400, 300}};
constexpr WindowListOption onScreen = windowListOnScreenOnly | windowListExcludeDesktopElements;

class X11WindowServerTest : public ContractTest {
protected:
    std::vector<WindowID> listed() {
        std::vector<WindowID> numbers;
        const auto windows = desktop().windowServer().copyWindowInfo(onScreen, nullWindowID).value();
        std::transform(windows.begin(), windows.end(), std::back_inserter(numbers),
                       [](const auto& entry) { return entry.number.value(); });
        return numbers;
    }
    bool isListed(const OtherWindow& window) {
        const auto numbers = listed();
        return std::find(numbers.begin(), numbers.end(), window.windowID) != numbers.end();
    }
    /// A record of the window, as the copy of it holds one.
    std::shared_ptr<CaptureWindow> makeRecord(const OtherWindow& window) {
        std::shared_ptr<CaptureWindow> record;
        desktop().screenCapture().getShareableContent(false, false, [&](const auto& result) {
            for (const auto& entry : std::get<ShareableContent>(result).windows) {
                record = entry->windowID() == window.windowID ? entry : record;
            }
        });
        EXPECT_TRUE(eventually([&] { return record != nullptr; }));
        return record;
    }
};

using X11WorkspaceTest = ContractTest;

TEST_F(X11WindowServerTest, AMinimisedWindowWithACopyIsListedBehindAllOthers) {
    const auto copied = world->openWindow("Copiata", here);
    const auto hidden = world->openWindow("Nascosta", here);
    const auto shown = world->openWindow("Mostrata", here);
    auto record = makeRecord(copied);
    world->activate(copied);
    world->minimise(copied);
    world->minimise(hidden);
    const std::vector expected{shown.windowID, copied.windowID};
    EXPECT_TRUE(eventually([&] { return listed() == expected; }));
    EXPECT_EQ(std::async(std::launch::async, [&] { return listed(); }).get(), expected) << "on any thread";

    record.reset();
    EXPECT_TRUE(eventually([&] { return !isListed(copied); }));
}

TEST_F(X11WindowServerTest, AListOfRecordsMakesNoCopies) {
    const auto window = world->openWindow("Nascosta", here);
    makeRecord(window).reset();
    world->minimise(window);
    EXPECT_TRUE(eventually([&] { return !isListed(window); }));
    EXPECT_TRUE(stays([&] { return !isListed(window); }));
}

TEST_F(X11WindowServerTest, AWindowWithACopyThatClosesIsNotListed) {
    const auto window = world->openWindow("Copiata", here);
    const auto record = makeRecord(window);
    ASSERT_TRUE(eventually([&] { return isListed(window); }));
    world->close(window);
    EXPECT_TRUE(eventually([&] { return !isListed(window); }));
}

TEST_F(X11WorkspaceTest, AnApplicationThatTheUserGoesBackToAtOnceIsAnnounced) {
    const auto first = world->openWindow("Prima", here);
    const auto second = world->openWindow("Seconda", here);
    world->activate(first);
    std::vector<ProcessID> activated;
    const auto observer = desktop().workspace().observeDidActivateApplication(
        [&](const auto& application) { activated.push_back(application.value().processIdentifier); });
    pass(quietTime);
    activated.clear();
    desktop().workspace().activateApplication(second.pid);
    // No event is served before the user has been there and gone back.
    world->activate(second);
    world->activate(first);
    const auto isAnnounced = [&] { return !activated.empty() && activated.back() == first.pid; };
    EXPECT_TRUE(eventually(isAnnounced));
    EXPECT_TRUE(stays(isAnnounced));
}

} // namespace
} // namespace quillon::contract
