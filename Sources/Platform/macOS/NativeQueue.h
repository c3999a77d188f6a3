#pragma once

#include <dispatch/dispatch.h>

namespace quillon {
class SerialQueue;
}

namespace quillon::macos {

/// The dispatch queue behind a queue of this platform. Any thread.
[[nodiscard]] dispatch_queue_t _Nonnull nativeQueue(const SerialQueue& queue);

} // namespace quillon::macos
