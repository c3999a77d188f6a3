#pragma once

#include "Platform/Geometry.h"
#include "Platform/ProcessInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// The window server's number of a window (CGWindowID).
using WindowID = std::uint32_t;

/// Which windows to list (CGWindowListOption).
using WindowListOption = std::uint32_t;
/// kCGWindowListOptionOnScreenOnly: not the minimised, hidden ones or those of another Space.
inline constexpr WindowListOption windowListOnScreenOnly = 1;
/// kCGWindowListOptionIncludingWindow: the one window given, whatever its state.
inline constexpr WindowListOption windowListIncludingWindow = 8;
/// kCGWindowListExcludeDesktopElements: neither the desktop's picture nor its icons.
inline constexpr WindowListOption windowListExcludeDesktopElements = 16;
/// kCGNullWindowID.
inline constexpr WindowID nullWindowID = 0;

/// The numbers of a bounds dictionary ("X", "Y", "Width", "Height"), in `DisplaySpace`; any may be missing.
struct WindowBoundsEntry {
    std::optional<double> x;
    std::optional<double> y;
    std::optional<double> width;
    std::optional<double> height;

    /// A missing number counts as 0.
    [[nodiscard]] DisplayRect rect() const {
        return {{x.value_or(0), y.value_or(0)}, {width.value_or(0), height.value_or(0)}};
    }
};

/// One entry of the window list. An absent field is one that the window server did not give or gave with
/// another type.
struct WindowDescription {
    std::optional<WindowID> number;          ///< kCGWindowNumber
    std::optional<ProcessID> ownerPID;       ///< kCGWindowOwnerPID
    std::optional<std::int64_t> layer;       ///< kCGWindowLayer; 0 is the layer of ordinary windows
    std::optional<std::string> name;         ///< kCGWindowName, valid UTF-8
    std::optional<WindowBoundsEntry> bounds; ///< kCGWindowBounds
};

/// The window server's list of windows (CGWindowListCopyWindowInfo). Any thread.
class WindowServer {
public:
    virtual ~WindowServer() = default;

    /// The windows that the options select, front to back; none when the call fails. `relativeTo` is
    /// `nullWindowID` unless the options name a window.
    [[nodiscard]] virtual std::optional<std::vector<WindowDescription>> copyWindowInfo(WindowListOption options,
                                                                                       WindowID relativeTo) const = 0;
};

} // namespace quillon
