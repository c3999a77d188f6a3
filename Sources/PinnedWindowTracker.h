#pragma once

#include "ForeignWindow.h"
#include "HeldWeakly.h"
#include "PinnedWindow.h"
#include "Platform/Registration.h"
#include "Platform/Workspace.h"

#include <functional>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace quillon {

class WindowOverlay;

/// The single owner of what is pinned: the set of pinned windows and the overlay of each. Drops pins whose
/// window or application has gone, and moves overlays as applications are activated. Main thread.
class PinnedWindowTracker : private HeldWeakly<PinnedWindowTracker> {
    friend HeldWeakly<PinnedWindowTracker>;

public:
    using Overlays = std::unordered_map<WindowID, std::unique_ptr<WindowOverlay>>;

    PinnedWindowTracker();
    ~PinnedWindowTracker();

    /// Does nothing when a window of that number is pinned already.
    void pin(const ForeignWindow& window);
    /// Does nothing when no window of that number is pinned.
    void unpin(WindowID windowID);
    void unpinAll();
    [[nodiscard]] bool isPinned(WindowID windowID) const;

    /// Shows the overlay of a pinned window at once when another application than the window's is in front,
    /// instead of at the next activation.
    void showIfBehind(WindowID windowID);

    [[nodiscard]] const std::unordered_set<PinnedWindow>& pinnedWindows() const { return pinned; }
    [[nodiscard]] const Overlays& overlays() const { return overlayOfWindow; }

    /// Called after the pinned set has changed; may be empty.
    std::function<void()> onChange;

private:
    void startPolling();
    void observeAppActivation();
    void observeAppTermination();
    void pruneClosedWindows();
    void applicationActivated(const std::optional<RunningApplication>& application);
    void applicationTerminated(const std::optional<RunningApplication>& application);
    void drop(const std::vector<PinnedWindow>& windows);
    void hideAndRelease(WindowID windowID);
    void notifyChange() const;

    std::unordered_set<PinnedWindow> pinned;
    Overlays overlayOfWindow;
    RegistrationToken pollTimer;
    RegistrationToken activationObserver;
    RegistrationToken terminationObserver;
};

} // namespace quillon
