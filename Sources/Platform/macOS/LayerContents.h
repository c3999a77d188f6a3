#pragma once

#include "Platform/Surface.h"

#import <Foundation/Foundation.h>

namespace quillon::macos {

/// A surface of this platform: what a CALayer takes as its contents (an IOSurface or a CGImage).
class LayerContents : public Surface {
public:
    /// Valid as long as the surface.
    [[nodiscard]] virtual id _Nonnull contents() const = 0;
};

} // namespace quillon::macos
