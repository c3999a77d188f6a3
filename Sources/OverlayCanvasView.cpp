#include "OverlayCanvasView.h"

#include "Platform/Platform.h"

namespace quillon {

OverlayCanvasView::OverlayCanvasView(const WindowRect& frame, Layer& capturedLayer)
    : capturedLayer(capturedLayer), platformView(platform().views().makeView(frame, *this)) {
    platformView->addSublayer(capturedLayer);
    platformView->addSubview(resizeGrip.view());
    // The picture and the grip have to be in place before the first display.
    platformView->layoutSubtreeIfNeeded();
}

void OverlayCanvasView::layout() {
    constexpr double side = OverlayResizeGrip::side;
    const auto bounds = platformView->bounds();
    capturedLayer.setFrame(bounds);
    resizeGrip.view().setFrame({{bounds.maxX() - side, 0}, {side, side}});
}

} // namespace quillon
