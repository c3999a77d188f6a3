#include "Platform/X11/Symbols.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <array>

namespace quillon::x11 {

namespace {

constexpr std::array symbols{Symbol{"pin", false}, Symbol{"pin.fill", true}};

/// The box that the path below is drawn in; `symbolSize` keeps its proportions.
constexpr Size box{12, 18};

/// A pin seen from the side, without the needle: the cap, the neck and the collar.
QPainterPath pinHead() {
    QPainterPath path(QPointF(3.0, 16.6));
    path.lineTo(9.0, 16.6);
    path.lineTo(8.2, 14.6);
    path.lineTo(8.6, 11.0);
    path.cubicTo(10.2, 10.3, 11.0, 9.2, 11.0, 7.6);
    path.lineTo(1.0, 7.6);
    path.cubicTo(1.0, 9.2, 1.8, 10.3, 3.4, 11.0);
    path.lineTo(3.8, 14.6);
    path.closeSubpath();
    return path;
}

QPainterPath pinNeedle() {
    QPainterPath path(QPointF(6.0, 7.6));
    path.lineTo(6.0, 1.4);
    return path;
}

/// In units of the box.
double strokeWidth(FontWeight weight) {
    return weight == FontWeight::semibold ? 1.6 : 1.2;
}

} // namespace

const Symbol* findSymbol(std::string_view name) {
    const auto* const found =
        std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& symbol) { return symbol.name == name; });
    return found != symbols.end() ? found : nullptr;
}

Size symbolSize(double pointSize) {
    constexpr double pointsOfBox = 16;
    return {box.width * pointSize / pointsOfBox, box.height * pointSize / pointsOfBox};
}

void drawSymbol(QPainter& painter, const Symbol& symbol, const WindowRect& rect, FontWeight weight,
                const QColor& color) {
    painter.save();
    painter.translate(rect.minX(), rect.minY());
    painter.scale(rect.size.width / box.width, rect.size.height / box.height);
    painter.setPen(QPen(color, strokeWidth(weight), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(symbol.isFilled ? QBrush(color) : QBrush(Qt::NoBrush));
    painter.drawPath(pinHead());
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(pinNeedle());
    painter.restore();
}

} // namespace quillon::x11
