#pragma once

#include "Platform/Drawing.h"

#include <QColor>
#include <QPainter>

#include <span>

/// The operations of a `DrawingContext` with Qt's painter, for views and images alike.
namespace quillon::x11 {

[[nodiscard]] QColor colorOf(GrayColor gray);

/// Makes the painter of an image of that height in pixels draw in points, from the bottom left upwards, with smooth
/// edges. `scale` is in pixels per point.
void drawUpwards(QPainter& painter, int height, double scale);

void fillRoundedRectangle(QPainter& painter, const WindowRect& rect, double cornerRadius, GrayColor color);
void strokeSegments(QPainter& painter, std::span<const LineSegment> segments, double lineWidth, GrayColor color);

} // namespace quillon::x11
