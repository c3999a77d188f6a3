#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>

namespace quillon::x11 {

/// When two clicks are a double-click. Without a word of the desktop, what GTK takes then.
struct ClickSettings {
    /// Between the presses, in milliseconds.
    std::uint32_t doubleClickTime = 400;
    /// In pixels, in each direction.
    int doubleClickDistance = 5;
};

/// What the desktop says (XSETTINGS, Net/DoubleClickTime and Net/DoubleClickDistance) at the moment. Main thread.
[[nodiscard]] ClickSettings readClickSettings(Connection& connection);

} // namespace quillon::x11
