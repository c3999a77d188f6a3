#pragma once

#import <AppKit/AppKit.h>

namespace quillon {
class TitledWindow;
}

namespace quillon::macos {

/// The NSWindow behind a titled window of this platform. Main thread.
[[nodiscard]] NSWindow* _Nonnull nativeWindow(const TitledWindow& window);

} // namespace quillon::macos
