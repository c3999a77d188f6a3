#pragma once

#include "Platform/WindowContent.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

[[nodiscard]] NSView* _Nonnull makeColumnView(const Column& column);

} // namespace quillon::macos
