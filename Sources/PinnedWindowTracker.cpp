#include "PinnedWindowTracker.h"

#include "DiagnosticLog.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"
#include "WindowDetector.h"
#include "WindowOverlay.h"

#include <fmt/format.h>

namespace quillon {

namespace {

constexpr Seconds pollInterval{2.0};

template <class Predicate>
std::vector<PinnedWindow> select(const std::unordered_set<PinnedWindow>& windows, Predicate predicate) {
    std::vector<PinnedWindow> selected;
    std::copy_if(windows.begin(), windows.end(), std::back_inserter(selected), predicate);
    return selected;
}

} // namespace

PinnedWindowTracker::PinnedWindowTracker() {
    startPolling();
    observeAppActivation();
    observeAppTermination();
}

PinnedWindowTracker::~PinnedWindowTracker() = default;

void PinnedWindowTracker::startPolling() {
    pollTimer = platform().scheduler().scheduleRepeatingTimer(
        pollInterval, weakly([](PinnedWindowTracker& self) { self.pruneClosedWindows(); }));
}

void PinnedWindowTracker::observeAppActivation() {
    activationObserver = platform().workspace().observeDidActivateApplication(
        weakly([](PinnedWindowTracker& self, const auto& application) { self.applicationActivated(application); }));
}

void PinnedWindowTracker::observeAppTermination() {
    terminationObserver = platform().workspace().observeDidTerminateApplication(
        weakly([](PinnedWindowTracker& self, const auto& application) { self.applicationTerminated(application); }));
}

void PinnedWindowTracker::pin(const ForeignWindow& window) {
    if (isPinned(window.windowID)) {
        return;
    }
    pinned.emplace(window);
    overlayOfWindow[window.windowID] = std::make_unique<WindowOverlay>(window.windowID, window.ownerPID);
    wplog([&] { return fmt::format("pin: overlay created for wid={}", window.windowID); });
    notifyChange();
}

void PinnedWindowTracker::unpin(WindowID windowID) {
    if (!isPinned(windowID)) {
        return;
    }
    hideAndRelease(windowID);
    notifyChange();
}

void PinnedWindowTracker::unpinAll() {
    for (const auto& [windowID, overlay] : overlayOfWindow) {
        overlay->hideOverlay();
    }
    overlayOfWindow.clear();
    pinned.clear();
    notifyChange();
}

bool PinnedWindowTracker::isPinned(WindowID windowID) const {
    PinnedWindow key;
    key.windowID = windowID;
    return pinned.contains(key);
}

void PinnedWindowTracker::showIfBehind(WindowID windowID) {
    const auto frontmost = platform().workspace().frontmostApplication();
    const auto entry = overlayOfWindow.find(windowID);
    if (frontmost && entry != overlayOfWindow.end() && entry->second->targetPID() != frontmost->processIdentifier) {
        entry->second->bringToFront();
    }
}

void PinnedWindowTracker::pruneClosedWindows() {
    if (pinned.empty()) {
        return;
    }
    const auto existing = WindowDetector::allOnScreenWindowIDs();
    drop(select(pinned, [&](const PinnedWindow& window) { return !existing.contains(window.windowID); }));
}

void PinnedWindowTracker::applicationActivated(const std::optional<RunningApplication>& application) {
    if (pinned.empty() || !application) {
        return;
    }
    const auto activated = application->processIdentifier;
    if (activated == platform().processInfo().processIdentifier()) {
        return;
    }
    for (const auto& [windowID, overlay] : overlayOfWindow) {
        if (overlay->targetPID() != activated) {
            overlay->bringToFront();
        } else if (overlay->isPinVisible()) {
            overlay->sendBehind();
        }
    }
}

void PinnedWindowTracker::applicationTerminated(const std::optional<RunningApplication>& application) {
    if (!application) {
        return;
    }
    drop(select(pinned, [&](const PinnedWindow& window) { return window.ownerPID == application->processIdentifier; }));
}

void PinnedWindowTracker::drop(const std::vector<PinnedWindow>& windows) {
    if (windows.empty()) {
        return;
    }
    for (const auto& window : windows) {
        hideAndRelease(window.windowID);
    }
    notifyChange();
}

void PinnedWindowTracker::hideAndRelease(WindowID windowID) {
    const auto entry = overlayOfWindow.find(windowID);
    entry->second->hideOverlay();
    overlayOfWindow.erase(entry);
    PinnedWindow key;
    key.windowID = windowID;
    pinned.erase(key);
}

void PinnedWindowTracker::notifyChange() const {
    if (onChange) {
        onChange();
    }
}

} // namespace quillon
