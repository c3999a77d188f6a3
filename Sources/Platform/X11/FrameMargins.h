#pragma once

#include "Platform/X11/ClientWindows.h"

namespace quillon::x11 {

/// What the window manager will add around a window that it does not manage yet, of which the server knows by now.
/// Waits for its answer, a moment at most; a good guess where it does not answer, nothing without a window manager.
[[nodiscard]] Margins askFrameMargins(Connection& connection, const ClientWindows& windows, xcb_window_t window);

} // namespace quillon::x11
