#include "AXScroller.h"

#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"

namespace quillon::AXScroller {

namespace {
OneTimeValue<std::shared_ptr<SerialQueue>> queueValue;
}

SerialQueue& queue() {
    return *queueValue.get([] { return platform().scheduler().makeSerialQueue("local.quillon.floating.axprobe"); });
}

// No scroll bar is driven yet, so there is nothing to move, to forget or to probe.

void scroll(ProcessID /*pid*/, WindowID /*windowID*/, double /*deltaY*/, DisplayPoint /*point*/) {}

void forget(WindowID /*windowID*/) {}

void probe(ProcessID /*pid*/, WindowID /*windowID*/) {}

} // namespace quillon::AXScroller
