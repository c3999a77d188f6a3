#pragma once

#include "Platform/Panel.h"

namespace quillon {

class WindowOverlay;

/// Hands input on a panel to the real window. Main thread.
namespace EventForwarder {

/// Repeats the event in the overlay's real window without activating it.
void forward(const PanelEvent& event, const WindowOverlay& overlay);

} // namespace EventForwarder
} // namespace quillon
