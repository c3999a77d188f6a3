#pragma once

#include "Platform/X11/ServerObject.h"

#include <span>
#include <vector>

namespace quillon::x11 {

[[nodiscard]] inline xcb_rectangle_t rectangle(const PixelRect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

/// All that the rectangles cover.
[[nodiscard]] inline Region makeRegion(Connection& connection, std::span<const PixelRect> rects = {}) {
    std::vector<xcb_rectangle_t> rectangles;
    for (const auto& rect : rects) {
        rectangles.push_back(rectangle(rect));
    }
    Region region(connection);
    xcb_xfixes_create_region(connection.xcb(), region.id(), static_cast<std::uint32_t>(rectangles.size()),
                             rectangles.data());
    return region;
}

} // namespace quillon::x11
