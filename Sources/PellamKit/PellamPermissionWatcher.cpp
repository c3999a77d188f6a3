#include "PellamKit/PellamPermissionWatcher.h"

#include "Platform/Accessibility.h"
#include "Platform/DistributedNotificationCenter.h"
#include "Platform/EventAccess.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/ScreenCapture.h"
#include "Platform/Workspace.h"
#include "ProgrammingError.h"

#include <utility>

namespace quillon {

namespace {

std::function<bool()> required(std::function<bool()> check) {
    if (!check) {
        programmingError("a permission watcher without a check");
    }
    return check;
}

} // namespace

PellamPermissionWatcher::PellamPermissionWatcher(std::optional<std::string> announcement, std::function<bool()> check)
    : check(required(std::move(check))), granted(this->check()) {
    if (announcement) {
        announcementObserver = platform().distributedNotificationCenter().addObserver(
            *announcement, weakly([](PellamPermissionWatcher& self) { self.announced(); }));
    }
    const auto rereadWeakly = weakly([](PellamPermissionWatcher& self) { self.reread(); });
    reactivationObserver =
        platform().notificationCenter().addObserver(applicationDidBecomeActiveNotification, rereadWeakly);
    poll = platform().scheduler().scheduleRepeatingTimer(pollSeconds, rereadWeakly);
}

std::unique_ptr<PellamPermissionWatcher> PellamPermissionWatcher::accessibility() {
    return std::make_unique<PellamPermissionWatcher>(std::string(accessibilityAnnouncement),
                                                     [] { return platform().accessibility().isProcessTrusted(); });
}

std::unique_ptr<PellamPermissionWatcher> PellamPermissionWatcher::screenRecording() {
    return std::make_unique<PellamPermissionWatcher>(std::nullopt,
                                                     [] { return platform().screenCapture().preflightAccess(); });
}

std::unique_ptr<PellamPermissionWatcher> PellamPermissionWatcher::postEvent() {
    return std::make_unique<PellamPermissionWatcher>(
        std::nullopt, [] { return platform().eventAccess().preflightPostEventAccess(); });
}

void PellamPermissionWatcher::reread() {
    if (platform().clock().now() < quietUntil) {
        return;
    }
    const bool isGrantedNow = check();
    if (isGrantedNow == granted) {
        return;
    }
    if (willChange) {
        willChange();
    }
    granted = isGrantedNow;
}

/// The end of one quiet period ends them all: after two announcements in quick succession, reading goes on once the
/// time of the first has passed.
void PellamPermissionWatcher::announced() {
    quietUntil = platform().clock().now() + std::chrono::duration_cast<WallTime::duration>(commitSeconds);
    platform().scheduler().mainAfter(commitSeconds, weakly([](PellamPermissionWatcher& self) {
                                         self.quietUntil = WallTime::min();
                                         self.reread();
                                     }));
}

bool PellamPermissionWatcher::promptForAccessibility() {
    return platform().accessibility().promptForTrust();
}

bool PellamPermissionWatcher::promptForPostEvent() {
    return platform().eventAccess().requestPostEventAccess();
}

void PellamPermissionWatcher::openSettings(Pane pane) {
    platform().workspace().openURL(rawValue(pane));
}

std::string_view PellamPermissionWatcher::rawValue(Pane pane) {
    switch (pane) {
    case Pane::accessibility:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
    case Pane::screenRecording:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture";
    case Pane::inputMonitoring:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_ListenEvent";
    case Pane::camera:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_Camera";
    case Pane::microphone:
        return "x-apple.systempreferences:com.apple.preference.security?Privacy_Microphone";
    }
    programmingError("an unknown pane of System Settings");
}

} // namespace quillon
