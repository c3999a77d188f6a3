#include "Platform/X11/Painting.h"

#include <QPainterPath>
#include <QPen>

namespace quillon::x11 {

QColor colorOf(GrayColor gray) {
    const auto white = static_cast<float>(gray.white);
    return QColor::fromRgbF(white, white, white, static_cast<float>(gray.alpha));
}

void drawUpwards(QPainter& painter, int height, double scale) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0, height);
    painter.scale(scale, -scale);
}

void fillRoundedRectangle(QPainter& painter, const WindowRect& rect, double cornerRadius, GrayColor color) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(colorOf(color));
    painter.drawRoundedRect(QRectF(rect.minX(), rect.minY(), rect.size.width, rect.size.height), cornerRadius,
                            cornerRadius);
}

void strokeSegments(QPainter& painter, std::span<const LineSegment> segments, double lineWidth, GrayColor color) {
    QPainterPath path;
    for (const auto& [from, to] : segments) {
        path.moveTo(from.x, from.y);
        path.lineTo(to.x, to.y);
    }
    painter.strokePath(path, QPen(colorOf(color), lineWidth, Qt::SolidLine, Qt::RoundCap));
}

} // namespace quillon::x11
