#pragma once

#include "Platform/Geometry.h"

#include <span>

namespace quillon {

/// Components from 0 to 1, not premultiplied; device-independent grey.
struct GrayColor {
    double white = 0;
    double alpha = 1;
};

struct LineSegment {
    WindowPoint from;
    WindowPoint to;
};

/// Where a view or an image draws (the current NSGraphicsContext). Coordinates are those of its bounds. Valid
/// only during the call that hands it out.
class DrawingContext {
public:
    virtual ~DrawingContext() = default;

    /// The radius is that of both axes.
    virtual void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor color) = 0;
    /// Strokes all segments as one path with round line caps.
    virtual void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor color) = 0;
};

} // namespace quillon
