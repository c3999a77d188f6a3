#pragma once

#include "ForeignWindow.h"
#include "HeldWeakly.h"
#include "PinnedWindowTracker.h"
#include "Platform/Application.h"
#include "Platform/EventTap.h"
#include "Platform/Menu.h"
#include "Platform/Panel.h"
#include "Platform/Registration.h"
#include "Platform/StatusBar.h"
#include "Platform/Workspace.h"
#include "ShortcutState.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// Owns what lives for the whole run: the tracker, the status item, the global shortcut and the window that
/// was in front last. Main thread.
class AppDelegate : public ApplicationDelegate,
                    public MenuDelegate,
                    public std::enable_shared_from_this<AppDelegate>,
                    private HeldWeakly<AppDelegate> {
    friend HeldWeakly<AppDelegate>;

public:
    AppDelegate();
    ~AppDelegate() override;

    void applicationDidFinishLaunching() override;
    void applicationWillTerminate() override;
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
    ScriptReply performScriptCommand(const ScriptCommand& command) override;
    /// Fills the status item's menu, which is about to open.
    void menuNeedsUpdate(Menu& menu) override;

    /// The frontmost window of another application most recently activated; offered when none is in front.
    [[nodiscard]] const std::optional<ForeignWindow>& rememberedWindow() const { return lastForeignWindow; }

    /// The global shortcut's virtual key code; 35 is the P key (kVK_ANSI_P).
    std::uint16_t shortcutKeyCode = 35;
    ModifierFlags shortcutModifiers = modifierFlagControl | modifierFlagCommand;
    /// Stores, activates and publishes the shortcut after a change of the two values above; both 0 stand for none.
    void saveShortcut();
    /// The shortcut for the user to read: ⌃⌘P.
    [[nodiscard]] std::string shortcutDisplayString() const;
    /// Whether the shortcut in force works.
    [[nodiscard]] ShortcutState shortcutState() const;
    /// The shortcut's event tap; null while none could be made.
    [[nodiscard]] EventTap* eventTap() const;

    /// Opens the status menu at the pointer; false when it cannot be opened now.
    bool openMenuAtPointer();
    /// Draws the status item's icon anew.
    void updateIcon();

private:
    void promptForAccessibilityOnce(bool trusted);
    void logEventAccess() const;
    void rememberWindowOf(const std::optional<RunningApplication>& application);
    void togglePinFrontmostWindow();
    /// Says whether the window is pinned now.
    bool togglePin(const ForeignWindow& window);

    // The global shortcut
    [[nodiscard]] bool isShortcutSet() const;
    void loadShortcut();
    void republishHotkey();
    void registerHotkey();
    void retryEventTap();
    bool tryCreateEventTap();
    void disableEventTap();

    // The status item
    void migrateLegacyPillColorKey();
    void createStatusItem();
    void applyStatusItemVisibility();
    [[nodiscard]] std::shared_ptr<Menu> makeMenu();
    [[nodiscard]] MenuItem actionItem(std::string title, void (AppDelegate::*action)(const MenuItem& sender),
                                      std::string keyEquivalent = {});
    [[nodiscard]] MenuItem candidateItem();
    [[nodiscard]] MenuItem pinnedItem(const PinnedWindow& window);

    // What the menu's items do
    void openAbout(const MenuItem& sender);
    void toggleFrontmost(const MenuItem& sender);
    void unpinMenuItem(const MenuItem& sender);
    void unpinAllAction(const MenuItem& sender);
    void openSettings(const MenuItem& sender);
    void quit(const MenuItem& sender);

    std::unique_ptr<StatusItem> statusItem;
    PinnedWindowTracker tracker;
    std::optional<ForeignWindow> lastForeignWindow;
    RegistrationToken focusObserver;
    /// Runs while the shortcut's event tap cannot be made.
    RegistrationToken permissionTimer;
    /// Registrations that stay for the whole run.
    std::vector<RegistrationToken> observers;
};

} // namespace quillon
