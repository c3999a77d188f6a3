#pragma once

#import <AppKit/AppKit.h>

#include <memory>

namespace quillon {
struct Menu;
}

namespace quillon::macos {

/// An NSMenu that shows what the menu holds: now, and again whenever the menu's delegate was asked. It keeps the menu
/// alive. Main thread.
[[nodiscard]] NSMenu* _Nonnull makeNativeMenu(std::shared_ptr<Menu> menu);

} // namespace quillon::macos
