#pragma once

#include "Platform/Geometry.h"

#include <optional>
#include <vector>

namespace quillon {

struct Screen {
    ScreenRect frame;
    /// Pixels per point.
    double backingScaleFactor = 1;
    /// The part that menu bar, Dock and panels of the desktop leave free.
    ScreenRect visibleFrame = {};
};

/// The screens (NSScreen). Main thread. A change is announced through the notification centre with
/// `screenParametersDidChangeNotification`.
class Screens {
public:
    virtual ~Screens() = default;

    /// The first one is the primary screen, whose bottom left is the origin of `ScreenSpace`.
    [[nodiscard]] virtual std::vector<Screen> screens() const = 0;
    /// The screen of the window that has the keyboard focus; none without a screen.
    [[nodiscard]] virtual std::optional<Screen> mainScreen() const = 0;
    /// The pointer (NSEvent.mouseLocation).
    [[nodiscard]] virtual ScreenPoint mouseLocation() const = 0;
};

} // namespace quillon
