#include "OverlayResizeGrip.h"

#include "Platform/Platform.h"

#include <array>

namespace quillon {

OverlayResizeGrip::OverlayResizeGrip() : platformView(platform().views().makeView(WindowRect(), *this)) {}

void OverlayResizeGrip::draw(DrawingContext& context) {
    const auto bounds = platformView->bounds();

    constexpr double inset = 3;
    constexpr double cornerRadius = 5;
    const WindowRect badge{{bounds.minX() + inset, bounds.minY() + inset},
                           {bounds.size.width - 2 * inset, bounds.size.height - 2 * inset}};
    context.fillRoundedRectangle(badge, cornerRadius, {0, 0.28});

    constexpr double lineWidth = 1.6;
    const double right = bounds.maxX();
    const std::array strokes{
        LineSegment{{right - 7, 5}, {right - 5, 7}},
        LineSegment{{right - 12, 5}, {right - 5, 12}},
        LineSegment{{right - 17, 5}, {right - 5, 17}},
    };
    context.strokeSegments(strokes, lineWidth, {1, 0.88});
}

} // namespace quillon
