#pragma once

#include "Platform/Panel.h"

namespace quillon {

class WindowOverlay;

/// Hands input on a panel to the real window. Main thread.
namespace EventForwarder {

/// Repeats a mouse or scroll-wheel event in the overlay's real window, at the same place relative to its size,
/// without activating it. What cannot be repeated is dropped.
void forward(const PanelEvent& event, const WindowOverlay& overlay);

} // namespace EventForwarder
} // namespace quillon
