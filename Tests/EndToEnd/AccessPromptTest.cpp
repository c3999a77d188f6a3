// What the program shows when it is started for the first time and the desktop's accessibility is switched off.

#include "AccessibleControls.h"
#include "EndToEndTest.h"
#include "EvdevKeys.h"

#include <algorithm>

namespace quillon::e2e {

namespace {

class AccessPrompt : public EndToEndTest, public testing::WithParamInterface<WindowManager> {
protected:
    AccessPrompt() : EndToEndTest({.windowManager = GetParam()}) {}

    void SetUp() override { cover = startProgram({"xterm", "-geometry", "100x40+40+40"}).program; }

    [[nodiscard]] std::optional<Window> prompt() const {
        const auto windows = client.managedWindowsOf(quillon.pid());
        return windows.size() == 1 && client.isViewable(windows.front()) ? std::optional(windows.front())
                                                                         : std::nullopt;
    }
    [[nodiscard]] testing::AssertionResult promptAppears() const {
        return client.waitUntil([&] { return prompt().has_value(); }) ? testing::AssertionSuccess()
                                                                      : testing::AssertionFailure() << "no prompt";
    }
    [[nodiscard]] testing::AssertionResult promptCloses() const {
        return client.waitUntil([&] { return !prompt(); }) ? testing::AssertionSuccess()
                                                           : testing::AssertionFailure() << "the prompt stays";
    }
    void clickButton(const std::string& name) {
        const AccessibleControls controls(desktop.environment());
        std::optional<AccessibleControl> button;
        ASSERT_TRUE(client.waitUntil([&] {
            const auto shown = controls.of(quillon.pid());
            const auto found = std::find_if(shown.begin(), shown.end(), [&](const auto& control) {
                return control.role == AccessibleControl::Role::button && control.name == name && control.isShowing;
            });
            button = found != shown.end() ? std::optional(*found) : std::nullopt;
            return button.has_value();
        })) << name;
        givesFocus = true;
        client.movePointer(button->place.x + button->place.width / 2, button->place.y + button->place.height / 2);
        client.pressButton(1);
        client.releaseButton(1);
    }
    std::unique_ptr<Program> cover;
};

TEST_P(AccessPrompt, AppearsOnceWithoutTakingTheFocusAndSwitchesAccessibilityOn) {
    desktop.startAccessibilityBus();
    const auto active = client.activeWindow();
    quillon.startForTheFirstTime();
    ASSERT_TRUE(promptAppears());
    EXPECT_TRUE(client.holdsFor([&] { return client.activeWindow() == active; }, Milliseconds(500)));
    EXPECT_FALSE(desktop.isAccessibilityEnabled());
    keepPicture(GetParam() == WindowManager::xfwm4 ? "access-prompt-xfwm4" : "access-prompt");
    clickButton("Consenti accesso");
    EXPECT_TRUE(promptCloses());
    EXPECT_TRUE(desktop.isAccessibilityEnabled());
    // The focus goes back to where the user was before the click.
    EXPECT_TRUE(client.waitUntil([&] { return client.activeWindow() == active; }));
    EXPECT_TRUE(client.holdsFor([&] { return client.activeWindow() == active; }, Milliseconds(300)));

    EXPECT_EQ(quillon.stop(), 0) << quillon.program().errors();
    desktop.setAccessibilityEnabled(false);
    quillon.startForTheFirstTime();
    EXPECT_TRUE(client.holdsFor([&] { return !prompt(); }, Milliseconds(500))) << "it asks a second time";
}

TEST_P(AccessPrompt, LeavesAccessibilityOffWhenTheUserDoesNotWantIt) {
    desktop.startAccessibilityBus();
    quillon.startForTheFirstTime();
    ASSERT_TRUE(promptAppears());
    clickButton("Non ora");
    EXPECT_TRUE(promptCloses());
    EXPECT_FALSE(desktop.isAccessibilityEnabled());
}

TEST_P(AccessPrompt, GoesWhenAccessibilityIsSwitchedOnElsewhere) {
    desktop.startAccessibilityBus();
    quillon.startForTheFirstTime();
    ASSERT_TRUE(promptAppears());
    desktop.setAccessibilityEnabled(true);
    EXPECT_TRUE(promptCloses());
}

INSTANTIATE_TEST_SUITE_P(WindowManagers, AccessPrompt, testing::Values(WindowManager::openbox, WindowManager::xfwm4));

class AccessPromptOnOpenbox : public EndToEndTest {
protected:
    explicit AccessPromptOnOpenbox(const DesktopOptions& options = {}) : EndToEndTest(options) {}
};

TEST_F(AccessPromptOnOpenbox, DoesNotAppearWhenAccessibilityIsOn) {
    desktop.setAccessibilityEnabled(true);
    quillon.startForTheFirstTime();
    EXPECT_TRUE(client.holdsFor([&] { return client.managedWindowsOf(quillon.pid()).empty(); }, Milliseconds(500)));
}

/// No button can be found over a bus that is not there: the keyboard serves instead.
class AccessPromptWithoutAccessibility : public AccessPromptOnOpenbox {
protected:
    AccessPromptWithoutAccessibility() : AccessPromptOnOpenbox({.hasAccessibility = false}) {}
};

TEST_F(AccessPromptWithoutAccessibility, SaysSoAndOffersOnlyToClose) {
    const auto front = startProgram({"xterm"});
    quillon.startForTheFirstTime();
    std::vector<Window> shown;
    ASSERT_TRUE(client.waitUntil([&] {
        shown = client.managedWindowsOf(quillon.pid());
        return shown.size() == 1 && client.isViewable(shown.front());
    }));
    EXPECT_TRUE(client.holdsFor([&] { return client.activeWindow() == front.window; }, Milliseconds(500)));
    keepPicture("access-prompt-missing");
    givesFocus = true;
    activate(shown.front());
    client.type({returnKey});
    EXPECT_TRUE(client.waitUntil([&] { return client.managedWindowsOf(quillon.pid()).empty(); }));
    EXPECT_EQ(quillon.command({"status"}).status, 0);
}

} // namespace

} // namespace quillon::e2e
