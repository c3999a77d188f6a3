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
    /// What it is drawn in: units of its own, beside text of 16 points one point each.
    Size box;
    /// Into the box, whose y axis points up; `strokeWidth` in its units.
    void (*draw)(QPainter& painter, double strokeWidth, const QColor& color);
};

/// Null when there is no symbol of that name.
[[nodiscard]] const Symbol* findSymbol(std::string_view name);

/// The size of a symbol beside text of that size, both in points.
[[nodiscard]] Size symbolSize(const Symbol& symbol, double pointSize);

/// Draws the symbol into the rectangle of a painter whose y axis points up.
void drawSymbol(QPainter& painter, const Symbol& symbol, const WindowRect& rect, FontWeight weight,
                const QColor& color);

} // namespace quillon::x11
