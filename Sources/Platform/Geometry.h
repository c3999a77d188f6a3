#pragma once

#include <algorithm>
#include <cmath>

/// Points, sizes and rectangles, in points (a point is one pixel on a screen of scale 1). The coordinate
/// space is part of the type, so that flipped coordinates cannot be mixed up.
namespace quillon {

/// Global, origin at the bottom left of the primary screen, y upwards (AppKit's screen coordinates).
struct ScreenSpace;
/// Global, origin at the top left of the primary screen, y downwards (the window server's and the
/// Accessibility interface's coordinates).
struct DisplaySpace;
/// Inside one window or view, origin at its bottom left, y upwards.
struct WindowSpace;

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

template <class Space>
struct PointIn {
    double x = 0;
    double y = 0;

    bool operator==(const PointIn&) const = default;
};

template <class Space>
struct RectIn {
    PointIn<Space> origin;
    Size size;

    [[nodiscard]] double minX() const { return origin.x; }
    [[nodiscard]] double minY() const { return origin.y; }
    [[nodiscard]] double maxX() const { return origin.x + size.width; }
    [[nodiscard]] double maxY() const { return origin.y + size.height; }

    /// True when the two share an area greater than zero.
    [[nodiscard]] bool intersects(const RectIn& other) const {
        return std::max(minX(), other.minX()) < std::min(maxX(), other.maxX()) &&
               std::max(minY(), other.minY()) < std::min(maxY(), other.maxY());
    }

    /// The right edge and the one at the larger y are outside (CGRectContainsPoint).
    [[nodiscard]] bool contains(const PointIn<Space>& point) const {
        return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
    }
    /// Whether origin and size differ by less than the tolerance in either direction.
    [[nodiscard]] bool isNear(const RectIn& other, double tolerance) const {
        return std::abs(origin.x - other.origin.x) < tolerance && std::abs(origin.y - other.origin.y) < tolerance &&
               std::abs(size.width - other.size.width) < tolerance &&
               std::abs(size.height - other.size.height) < tolerance;
    }

    bool operator==(const RectIn&) const = default;
};

using ScreenPoint = PointIn<ScreenSpace>;
using ScreenRect = RectIn<ScreenSpace>;
using DisplayPoint = PointIn<DisplaySpace>;
using DisplayRect = RectIn<DisplaySpace>;
using WindowPoint = PointIn<WindowSpace>;
using WindowRect = RectIn<WindowSpace>;

} // namespace quillon
