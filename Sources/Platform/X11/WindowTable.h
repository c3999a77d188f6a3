#pragma once

#include "Platform/ProcessInfo.h"

#include <optional>
#include <string>

namespace quillon::x11 {

class X11Platform;

/// The windows that can be pinned, front to back, one to a line, in aligned columns: number, owning process, size
/// and place in pixels, application, title. The windows of the running program, if it is another process, are left
/// out. The platform must be installed.
[[nodiscard]] std::string pinnableWindowsText(X11Platform& platform, std::optional<ProcessID> runningProgram);

} // namespace quillon::x11
