#pragma once

#include "Platform/Views.h"

#include <memory>

namespace quillon {

/// The badge in an overlay's bottom right corner that shows where it can be resized. It handles no input.
/// Main thread.
class OverlayResizeGrip : private ViewDelegate {
public:
    /// Width and height of the badge, in points.
    static constexpr double side = 26;

    OverlayResizeGrip();

    [[nodiscard]] View& view() { return *platformView; }

private:
    void draw(DrawingContext& context) override;

    std::unique_ptr<View> platformView;
};

} // namespace quillon
