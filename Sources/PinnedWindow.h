#pragma once

#include "ForeignWindow.h"

namespace quillon {

/// A window that is pinned, as it was when it was pinned. Two records of the same window number are equal,
/// whatever their other fields hold.
struct PinnedWindow {
    WindowID windowID = 0;
    ProcessID ownerPID = 0;
    std::string ownerName;
    std::string windowTitle;

    PinnedWindow() = default;
    explicit PinnedWindow(const ForeignWindow& window)
        : windowID(window.windowID), ownerPID(window.ownerPID), ownerName(window.ownerName),
          windowTitle(window.windowTitle) {}

    bool operator==(const PinnedWindow& other) const { return windowID == other.windowID; }

    /// What menus show and sort by: the owner's name and, after a dash, the title's first 40 characters.
    [[nodiscard]] std::string displayLabel() const;
};

} // namespace quillon

template <>
struct std::hash<quillon::PinnedWindow> {
    std::size_t operator()(const quillon::PinnedWindow& window) const noexcept {
        return std::hash<quillon::WindowID>()(window.windowID);
    }
};
