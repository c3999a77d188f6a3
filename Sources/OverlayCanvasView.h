#pragma once

#include "OverlayResizeGrip.h"
#include "Platform/Views.h"

#include <memory>

namespace quillon {

/// An overlay's content: the captured picture and the resize grip over it. It handles no input. Main thread.
class OverlayCanvasView : private ViewDelegate {
public:
    /// The layer is the overlay's; it must outlive the canvas.
    OverlayCanvasView(const WindowRect& frame, Layer& capturedLayer);

    [[nodiscard]] View& view() { return *platformView; }

private:
    void layout() override;

    OverlayResizeGrip resizeGrip;
    Layer& capturedLayer;
    std::unique_ptr<View> platformView;
};

} // namespace quillon
