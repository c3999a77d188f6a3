#pragma once

#include "Platform/Geometry.h"
#include "Platform/Images.h"

#include <string_view>

class QColor;
class QPainter;

namespace quillon::x11 {

/// A symbol of the program's own, drawn as vectors and so sharp at any size.
struct Symbol {
    std::string_view name;
    bool isFilled = false;
};

/// Null when there is no symbol of that name.
[[nodiscard]] const Symbol* findSymbol(std::string_view name);

/// The size of a symbol beside text of that size, both in points: a quarter narrower and an eighth higher than the
/// text, so that a menu bar's 16 points make an image of 12 by 18.
[[nodiscard]] Size symbolSize(double pointSize);

/// Draws the symbol into the rectangle of a painter whose y axis points up.
void drawSymbol(QPainter& painter, const Symbol& symbol, const WindowRect& rect, FontWeight weight,
                const QColor& color);

} // namespace quillon::x11
