#pragma once

#include "Platform/ProcessInfo.h"
#include "Platform/WindowServer.h"

#include <functional>
#include <string>

namespace quillon {

/// Another application's window, as it was found. Two records of the same window number are equal, whatever
/// their other fields hold.
struct ForeignWindow {
    WindowID windowID = 0;
    ProcessID ownerPID = 0;
    /// The owning application's name, or "Unknown".
    std::string ownerName;
    /// Empty when none is known.
    std::string windowTitle;

    bool operator==(const ForeignWindow& other) const { return windowID == other.windowID; }

    /// What to call the window where there is room for one name only.
    [[nodiscard]] const std::string& titleOrOwnerName() const { return windowTitle.empty() ? ownerName : windowTitle; }
};

} // namespace quillon

template <>
struct std::hash<quillon::ForeignWindow> {
    std::size_t operator()(const quillon::ForeignWindow& window) const noexcept {
        return std::hash<quillon::WindowID>()(window.windowID);
    }
};
