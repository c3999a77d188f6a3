#pragma once

#include "ForeignWindow.h"
#include "HeldWeakly.h"
#include "PinnedWindowTracker.h"
#include "Platform/Application.h"
#include "Platform/Panel.h"
#include "Platform/Registration.h"
#include "Platform/Workspace.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quillon {

/// Owns what lives for the whole run: the tracker, the status item, the global shortcut and the window that
/// was in front last. Main thread.
class AppDelegate : public ApplicationDelegate,
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

    /// The frontmost window of another application most recently activated; offered when none is in front.
    [[nodiscard]] const std::optional<ForeignWindow>& rememberedWindow() const { return lastForeignWindow; }

    /// The global shortcut's virtual key code; 35 is the P key (kVK_ANSI_P).
    std::uint16_t shortcutKeyCode = 35;
    ModifierFlags shortcutModifiers = modifierFlagControl | modifierFlagCommand;

private:
    void promptForAccessibilityOnce(bool trusted);
    void logEventAccess() const;
    void rememberWindowOf(const std::optional<RunningApplication>& application);
    void togglePinFrontmostWindow();

    // The global shortcut
    void loadShortcut();
    void republishHotkey();
    void registerHotkey();

    // The status item
    void migrateLegacyPillColorKey();
    void createStatusItem();
    void applyStatusItemVisibility();
    void updateIcon();

    PinnedWindowTracker tracker;
    std::optional<ForeignWindow> lastForeignWindow;
    RegistrationToken focusObserver;
    /// Registrations that stay for the whole run.
    std::vector<RegistrationToken> observers;
};

} // namespace quillon
