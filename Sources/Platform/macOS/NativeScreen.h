#pragma once

#include "Platform/Screens.h"

#import <AppKit/AppKit.h>

#include <optional>

namespace quillon::macos {

/// None for nil. Main thread.
[[nodiscard]] std::optional<Screen> toScreen(NSScreen* _Nullable screen);

} // namespace quillon::macos
