#pragma once

namespace quillon::x11 {

/// Names the program to the desktop: its bundle, its D-Bus service and interface.
inline constexpr const char* programIdentifier = "local.quillon.floating";

} // namespace quillon::x11
