#include "Platform/X11/PictureFormats.h"

#include <xcb/xcb_renderutil.h>

namespace quillon::x11 {

PictureFormats::PictureFormats(Connection& connection) {
    auto* const xcb = connection.xcb();
    const auto& screen = connection.screen();
    const Reply<xcb_render_query_pict_formats_reply_t> reply(
        xcb_render_query_pict_formats_reply(xcb, xcb_render_query_pict_formats(xcb), nullptr));
    if (!reply) {
        return;
    }
    if (const auto* format = xcb_render_util_find_standard_format(reply.get(), XCB_PICT_STANDARD_ARGB_32)) {
        argb = format->id;
    }
    for (auto depths = xcb_screen_allowed_depths_iterator(&screen); depths.rem > 0; xcb_depth_next(&depths)) {
        for (auto all = xcb_depth_visuals_iterator(depths.data); all.rem > 0; xcb_visualtype_next(&all)) {
            const auto* found = xcb_render_util_find_visual_format(reply.get(), all.data->visual_id);
            if (found == nullptr) {
                continue;
            }
            formats.emplace(all.data->visual_id, found->format);
            if (all.data->_class == XCB_VISUAL_CLASS_TRUE_COLOR) {
                visuals.emplace(depths.data->depth, all.data->visual_id);
            }
        }
    }
    visuals[screen.root_depth] = screen.root_visual;
}

std::optional<xcb_render_pictformat_t> PictureFormats::ofVisual(xcb_visualid_t visual) const {
    const auto found = formats.find(visual);
    return found != formats.end() ? std::optional(found->second) : std::nullopt;
}

std::optional<xcb_visualid_t> PictureFormats::visualOfDepth(std::uint8_t depth) const {
    const auto found = visuals.find(depth);
    return found != visuals.end() ? std::optional(found->second) : std::nullopt;
}

} // namespace quillon::x11
