#pragma once

#include <string>

namespace quillon::x11 {

class X11Platform;

/// The windows that can be pinned, front to back, one to a line, in aligned columns: number, owning process, size
/// and place in pixels, application, title. The platform must be installed.
[[nodiscard]] std::string pinnableWindowsText(X11Platform& platform);

} // namespace quillon::x11
