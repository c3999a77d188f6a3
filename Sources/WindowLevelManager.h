#pragma once

#include "Platform/WindowServer.h"

/// Changes the order of other applications' windows.
namespace quillon::WindowLevelManager {

/// Raises the window above its application's others and, with `activate`, activates the application. Main
/// thread.
void raiseWindow(ProcessID pid, WindowID windowID, bool activate);

} // namespace quillon::WindowLevelManager
