#pragma once

#include "Platform/Accessibility.h"
#include "Platform/WindowServer.h"

#include <memory>

/// Bridges the two names of another application's window: the window server's number and the Accessibility
/// element. No public call does that, so the two are matched by their frames.
namespace quillon::WindowLevelManager {

/// Raises the window above its application's others and, with `activate`, activates the application. The outcome
/// is only logged. Main thread.
void raiseWindow(ProcessID pid, WindowID windowID, bool activate);

/// The Accessibility element of the window; null when none of the process's matches it. Any thread.
[[nodiscard]] std::shared_ptr<AccessibilityElement> axWindow(ProcessID pid, WindowID windowID);

} // namespace quillon::WindowLevelManager
