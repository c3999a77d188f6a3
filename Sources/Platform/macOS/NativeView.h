#pragma once

#import <AppKit/AppKit.h>

namespace quillon {
class View;
}

namespace quillon::macos {

/// The NSView behind a view of this platform. Main thread.
[[nodiscard]] NSView* _Nonnull nativeView(const View& view);

} // namespace quillon::macos
