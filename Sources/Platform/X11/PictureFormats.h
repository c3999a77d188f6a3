#pragma once

#include "Platform/X11/Connection.h"

#include <xcb/render.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace quillon::x11 {

/// The Render formats of the server's visuals, asked for once. Main thread.
class PictureFormats {
public:
    explicit PictureFormats(Connection& connection);

    /// None for a visual without one (a palette, say).
    [[nodiscard]] std::optional<xcb_render_pictformat_t> ofVisual(xcb_visualid_t visual) const;
    /// 32 bits a pixel, premultiplied alpha in the highest byte.
    [[nodiscard]] xcb_render_pictformat_t argb32() const { return argb; }
    /// A visual of that depth whose pixels are colours; none when the screen has none.
    [[nodiscard]] std::optional<xcb_visualid_t> visualOfDepth(std::uint8_t depth) const;

private:
    std::unordered_map<xcb_visualid_t, xcb_render_pictformat_t> formats;
    std::unordered_map<std::uint8_t, xcb_visualid_t> visuals;
    xcb_render_pictformat_t argb = 0;
};

} // namespace quillon::x11
