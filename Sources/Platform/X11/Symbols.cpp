#include "Platform/X11/Symbols.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <array>

namespace quillon::x11 {

namespace {

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

void drawPin(QPainter& painter, bool isFilled, double strokeWidth, const QColor& color) {
    painter.setPen(QPen(color, strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(isFilled ? QBrush(color) : QBrush(Qt::NoBrush));
    painter.drawPath(pinHead());
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(pinNeedle());
}

/// A disc with a check mark cut out of it.
void drawCheckmarkCircle(QPainter& painter, double strokeWidth, const QColor& color) {
    QPainterPath mark(QPointF(4.8, 8.8));
    mark.lineTo(7.8, 5.7);
    mark.lineTo(13.2, 12.1);
    QPainterPathStroker stroker(QPen(Qt::black, strokeWidth * 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    QPainterPath disc;
    disc.addEllipse(QPointF(9, 9), 8, 8);
    painter.fillPath(disc.subtracted(stroker.createStroke(mark)), color);
}

constexpr Size pinBox{12, 18};
constexpr std::array symbols{
    Symbol{"pin", pinBox,
           [](auto& painter, double width, const auto& color) { drawPin(painter, false, width, color); }},
    Symbol{"pin.fill", pinBox,
           [](auto& painter, double width, const auto& color) { drawPin(painter, true, width, color); }},
    Symbol{"checkmark.circle.fill", {18, 18}, drawCheckmarkCircle},
};

double strokeWidth(FontWeight weight) {
    return weight == FontWeight::semibold ? 1.6 : 1.2;
}

} // namespace

const Symbol* findSymbol(std::string_view name) {
    const auto* const found =
        std::find_if(symbols.begin(), symbols.end(), [&](const Symbol& symbol) { return symbol.name == name; });
    return found != symbols.end() ? found : nullptr;
}

Size symbolSize(const Symbol& symbol, double pointSize) {
    constexpr double pointsOfBox = 16;
    return {symbol.box.width * pointSize / pointsOfBox, symbol.box.height * pointSize / pointsOfBox};
}

void drawSymbol(QPainter& painter, const Symbol& symbol, const WindowRect& rect, FontWeight weight,
                const QColor& color) {
    painter.save();
    painter.translate(rect.minX(), rect.minY());
    painter.scale(rect.size.width / symbol.box.width, rect.size.height / symbol.box.height);
    symbol.draw(painter, strokeWidth(weight), color);
    painter.restore();
}

} // namespace quillon::x11
