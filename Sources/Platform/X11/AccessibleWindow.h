#pragma once

#include "Platform/ProcessInfo.h"
#include "Platform/X11/AccessibleTree.h"

#include <memory>
#include <optional>
#include <string>

namespace quillon::x11 {

/// What a window is looked for by on the accessibility bus, where no window numbers are known.
struct AccessibleWindowTraits {
    ProcessID owner = 0;
    std::string title;
    /// The client area.
    PixelRect client;
    /// With the window manager's frame.
    PixelRect framed;
    /// Without the shadow that the program itself draws around it.
    PixelRect visible;
    /// The process has no other window.
    bool isOnlyOne = false;
};

struct AccessibleWindow {
    /// `noValue` when the process does not show the window there.
    AccessibilityError error = AccessibilityError::noValue;
    std::shared_ptr<AccessibleNode> node{};
    std::shared_ptr<AccessibleTree> tree{};
};

/// Any thread.
[[nodiscard]] AccessibleWindow findAccessibleWindow(AccessibilityBus& bus, const AccessibleWindowTraits& traits,
                                                    Deadline deadline);

} // namespace quillon::x11
