#pragma once

#include "Platform/Platform.h"

#include <memory>

namespace quillon {

/// The platform on macOS 14 and later. It creates the shared application, so one is made for the whole
/// process. Main thread.
[[nodiscard]] std::unique_ptr<Platform> makeMacPlatform();

} // namespace quillon
