#pragma once

#include "Platform/Geometry.h"
#include "Platform/Scheduler.h"
#include "Platform/WindowServer.h"

#include <memory>

/// Scrolls real windows through their Accessibility scroll bars.
namespace quillon::AXScroller {

/// The serial queue on which everything here does its work. Any thread.
[[nodiscard]] SerialQueue& queue();

/// Scrolls the area of the window under the point; `deltaY` in points, positive towards the top. On `queue`.
void scroll(ProcessID pid, WindowID windowID, double deltaY, DisplayPoint point);

/// Drops what is remembered of the window. Any thread, returns at once.
void forget(WindowID windowID);

/// Reports in the log whether scrolling works for the window, when that is switched on. Any thread, returns
/// at once.
void probe(ProcessID pid, WindowID windowID);

} // namespace quillon::AXScroller
