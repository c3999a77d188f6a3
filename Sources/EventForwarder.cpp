#include "EventForwarder.h"

namespace quillon::EventForwarder {

void forward(const PanelEvent& /*event*/, const WindowOverlay& /*overlay*/) {
    // Input that is forwarded is accepted and goes no further yet.
}

} // namespace quillon::EventForwarder
