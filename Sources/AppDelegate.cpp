#include "AppDelegate.h"

#include "Defaults.h"
#include "DiagnosticLog.h"
#include "PellamKit/PellamApplicationMenu.h"
#include "PellamKit/PellamStatusItemVisibility.h"
#include "Platform/Accessibility.h"
#include "Platform/EventAccess.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"
#include "Platform/UserDefaults.h"
#include "ScriptCommands.h"
#include "Text.h"
#include "WindowDetector.h"

#include <fmt/format.h>

namespace quillon {

namespace {

/// Time for a newly activated application to bring its window to the front.
constexpr Seconds focusSettleDelay{0.1};

} // namespace

AppDelegate::AppDelegate() = default;

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching() {
    PellamApplicationMenu::install();
    sharedApplication().setActivationPolicy(ActivationPolicy::accessory);

    const bool trusted = platform().accessibility().isProcessTrusted();
    wplog([&] { return fmt::format("Accessibility trusted: {}", describe(trusted)); });
    promptForAccessibilityOnce(trusted);
    logEventAccess();

    loadShortcut();
    republishHotkey();
    migrateLegacyPillColorKey();
    createStatusItem();

    auto& notifications = platform().notificationCenter();
    observers.push_back(notifications.addObserver(PellamStatusItemVisibility::didChangeNotification,
                                                  weakly([](AppDelegate& self) { self.applyStatusItemVisibility(); })));
    tracker.onChange = weakly([](AppDelegate& self) { self.updateIcon(); });
    focusObserver = platform().workspace().observeDidActivateApplication(
        weakly([](AppDelegate& self, const auto& activated) { self.rememberWindowOf(activated); }));
    registerHotkey();
    // The menu bar's thickness, on which the icon depends, may have changed.
    observers.push_back(notifications.addObserver(screenParametersDidChangeNotification,
                                                  weakly([](AppDelegate& self) { self.updateIcon(); })));
    wplog([] { return std::string("Launched successfully"); });
}

/// The system's prompt appears at most once per installation.
void AppDelegate::promptForAccessibilityOnce(bool trusted) {
    if (trusted || Defaults::boolForKey(Defaults::didPromptForAccessibility)) {
        return;
    }
    platform().userDefaults().set(Defaults::didPromptForAccessibility, true);
    platform().accessibility().promptForTrust();
}

void AppDelegate::logEventAccess() const {
    wplog([] {
        const auto& access = platform().eventAccess();
        return fmt::format("PostEvent access: {}  ListenEvent access: {}", describe(access.preflightPostEventAccess()),
                           describe(access.preflightListenEventAccess()));
    });
}

void AppDelegate::applicationWillTerminate() {
    permissionTimer.reset();
    disableEventTap();
    focusObserver.reset();
    tracker.unpinAll();
}

bool AppDelegate::applicationShouldHandleReopen(bool /*hasVisibleWindows*/) {
    PellamStatusItemVisibility::handleReopen();
    if (!platform().statusBar().showsItems()) {
        // The only way to the menu on such a desktop.
        openMenuAtPointer();
    }
    return true;
}

void AppDelegate::rememberWindowOf(const std::optional<RunningApplication>& application) {
    if (!application || application->processIdentifier == platform().processInfo().processIdentifier()) {
        return;
    }
    platform().scheduler().mainAfter(focusSettleDelay, [self = shared_from_this()] {
        if (auto window = WindowDetector::getFrontmostForeignWindow()) {
            self->lastForeignWindow = std::move(window);
        }
    });
}

void AppDelegate::togglePinFrontmostWindow() {
    const auto window = WindowDetector::getFrontmostForeignWindow();
    if (!window) {
        wplog([] { return std::string("togglePin: No foreign window found"); });
        return;
    }
    const bool isPinned = togglePin(*window);
    wplog([&] {
        return fmt::format("togglePin: {} '{}' (wid={})", isPinned ? "Pinned" : "Unpinned", window->titleOrOwnerName(),
                           window->windowID);
    });
}

bool AppDelegate::togglePin(const ForeignWindow& window) {
    if (tracker.isPinned(window.windowID)) {
        tracker.unpin(window.windowID);
        return false;
    }
    tracker.pin(window);
    return true;
}

ScriptReply AppDelegate::performScriptCommand(const ScriptCommand& command) {
    return ScriptCommands::perform(command, {.tracker = tracker,
                                             .togglePinFrontmostWindow = [this] { togglePinFrontmostWindow(); },
                                             .openMenuAtPointer = [this] { return openMenuAtPointer(); },
                                             .openSettings = [this] { openSettings({}); },
                                             .openAbout = [this] { openAbout({}); },
                                             .shortcut = shortcutDisplayString(),
                                             .shortcutState = shortcutState()});
}

} // namespace quillon
