#pragma once

#import <AppKit/AppKit.h>

namespace quillon {
class Image;
}

namespace quillon::macos {

/// The NSImage behind an image of this platform. Main thread.
[[nodiscard]] NSImage* _Nonnull nativeImage(const Image& image);

} // namespace quillon::macos
