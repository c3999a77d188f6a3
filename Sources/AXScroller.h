#pragma once

#include "Platform/Accessibility.h"
#include "Platform/Geometry.h"
#include "Platform/Scheduler.h"
#include "Platform/WindowServer.h"

#include <memory>
#include <vector>

/// Scrolls real windows through their Accessibility scroll bars, which posts no event. Everything is done on one
/// serial queue, in the order in which it was asked for. Any thread, except where a function says otherwise.
namespace quillon::AXScroller {

/// Scrolls the area of the window under the point; `deltaY` in points, positive towards the top. Returns at once.
void scroll(ProcessID pid, WindowID windowID, double deltaY, DisplayPoint point);

/// Drops what is remembered of the window. Returns at once.
void forget(WindowID windowID);

/// Tries, when the user default "axScrollProbe" is true, whether scrolling works for the window and leaves the
/// focus where it is, and logs what it finds. Returns at once.
void probe(ProcessID pid, WindowID windowID);

// For the probe, which has its own file.

/// The queue of everything here.
[[nodiscard]] SerialQueue& queue();

/// The window's scroll areas, outer ones before those inside them; from here on each call to the window waits for a
/// quarter of a second at most. On `queue`.
[[nodiscard]] std::vector<std::shared_ptr<AccessibilityElement>>
scrollAreas(const std::shared_ptr<AccessibilityElement>& window);

} // namespace quillon::AXScroller
