#include "Platform/X11/WindowCanvas.h"

#include "Platform/X11/Region.h"

#include <algorithm>
#include <utility>

namespace quillon::x11 {

namespace {

bool isEmpty(const PixelRect& rect) {
    return rect.width <= 0 || rect.height <= 0;
}

GraphicsContext makeContext(Connection& connection, xcb_drawable_t drawable) {
    GraphicsContext context(connection);
    const std::uint32_t noExposures = 0;
    xcb_create_gc(connection.xcb(), context.id(), drawable, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    return context;
}

} // namespace

WindowCanvas::WindowCanvas(Connection& connection, const PictureFormats& formats, xcb_window_t window,
                           std::uint8_t depth, xcb_visualid_t visual)
    : connection(connection), formats(formats), window(window), windowDepth(depth),
      format(formats.ofVisual(visual).value_or(XCB_NONE)), windowPicture(connection),
      clipped(makeContext(connection, window)), plain(makeContext(connection, window)), clip(makeRegion(connection)) {
    xcb_render_create_picture(connection.xcb(), windowPicture.id(), window, format, 0, nullptr);
    setOverlays({});
}

void WindowCanvas::setOverlays(std::span<const Overlay> overlays) {
    auto* const xcb = connection.xcb();
    blends.clear();
    std::vector<PixelRect> places;
    for (const auto& [rect, drawing] : overlays) {
        if (isEmpty(rect)) {
            continue;
        }
        places.push_back(rect);
        const auto size = rectangle(rect);
        Blend blend{rect, drawing, Pixmap(connection), Picture(connection)};
        xcb_create_pixmap(xcb, windowDepth, blend.pixmap.id(), window, size.width, size.height);
        xcb_render_create_picture(xcb, blend.picture.id(), blend.pixmap.id(), format, 0, nullptr);
        blends.push_back(std::move(blend));
    }
    covered = makeRegion(connection, places);
    uncovered = makeRegion(connection);
    const xcb_rectangle_t everything{0, 0, INT16_MAX, INT16_MAX};
    xcb_xfixes_invert_region(xcb, covered.id(), everything, uncovered.id());
    xcb_xfixes_set_picture_clip_region(xcb, windowPicture.id(), uncovered.id(), 0, 0);
}

bool WindowCanvas::copies(const CapturedPicture& picture, const PixelRect& place) const {
    const auto& geometry = picture.geometry();
    return geometry.depth == windowDepth && geometry.width == place.width && geometry.height == place.height;
}

void WindowCanvas::draw(const std::shared_ptr<CapturedPicture>& picture, const PixelRect& place,
                        std::span<const PixelRect> areas, PictureScaler& scaler) {
    if (isEmpty(place)) {
        return;
    }
    const bool isCopied = copies(*picture, place);
    if (!isCopied && !scaler.prepare(picture, place.width, place.height)) {
        return;
    }
    if (isCopied) {
        scaler.reset();
        xcb_xfixes_set_gc_clip_region(connection.xcb(), clipped.id(), uncovered.id(), 0, 0);
    }
    for (const auto& area : areas) {
        const auto visible = area.intersection(place);
        if (isEmpty(visible)) {
            continue;
        }
        if (isCopied) {
            copy(*picture, place, window, clipped.id(), visible, 0, 0);
        } else {
            scaler.draw({visible.x - place.x, visible.y - place.y, visible.width, visible.height}, windowPicture.id(),
                        place.x, place.y);
        }
    }
    drawBlends(picture, place, areas, scaler);
}

void WindowCanvas::drawRegion(const CapturedPicture& picture, const PixelRect& place, xcb_xfixes_region_t region) {
    auto* const xcb = connection.xcb();
    const auto x = static_cast<std::int16_t>(place.x);
    const auto y = static_cast<std::int16_t>(place.y);
    if (blends.empty()) {
        xcb_xfixes_set_gc_clip_region(xcb, clipped.id(), region, x, y);
    } else {
        xcb_xfixes_copy_region(xcb, region, clip.id());
        xcb_xfixes_translate_region(xcb, clip.id(), x, y);
        xcb_xfixes_subtract_region(xcb, clip.id(), covered.id(), clip.id());
        xcb_xfixes_set_gc_clip_region(xcb, clipped.id(), clip.id(), 0, 0);
    }
    copy(picture, place, window, clipped.id(), place, 0, 0);
    // Which overlays the region reaches only the server knows; they are too small for the question to pay.
    for (const auto& blend : blends) {
        copy(picture, place, blend.pixmap.id(), plain.id(), blend.rect.intersection(place), blend.rect.x, blend.rect.y);
        finish(blend);
    }
}

/// Copies what of the picture lies in an area of the window. The target's origin is that point of the window.
void WindowCanvas::copy(const CapturedPicture& picture, const PixelRect& place, xcb_drawable_t target,
                        xcb_gcontext_t context, const PixelRect& area, int originX, int originY) {
    const int border = picture.geometry().border;
    const auto size = rectangle(area);
    xcb_copy_area(connection.xcb(), picture.pixmap(), target, context,
                  static_cast<std::int16_t>(area.x - place.x + border),
                  static_cast<std::int16_t>(area.y - place.y + border), static_cast<std::int16_t>(area.x - originX),
                  static_cast<std::int16_t>(area.y - originY), size.width, size.height);
}

void WindowCanvas::drawBlends(const std::shared_ptr<CapturedPicture>& picture, const PixelRect& place,
                              std::span<const PixelRect> areas, PictureScaler& scaler) {
    const bool isCopied = copies(*picture, place);
    for (const auto& blend : blends) {
        const auto visible = blend.rect.intersection(place);
        const bool isReached = std::any_of(areas.begin(), areas.end(),
                                           [&](const auto& area) { return !isEmpty(area.intersection(visible)); });
        if (!isReached) {
            continue;
        }
        if (isCopied) {
            copy(*picture, place, blend.pixmap.id(), plain.id(), visible, blend.rect.x, blend.rect.y);
        } else {
            scaler.draw({visible.x - place.x, visible.y - place.y, visible.width, visible.height}, blend.picture.id(),
                        place.x - blend.rect.x, place.y - blend.rect.y);
        }
        finish(blend);
    }
}

/// Puts the overlay over the picture and the two on the screen.
void WindowCanvas::finish(const Blend& blend) {
    auto* const xcb = connection.xcb();
    const auto rect = rectangle(blend.rect);
    xcb_render_composite(xcb, XCB_RENDER_PICT_OP_OVER, blend.drawing, XCB_RENDER_PICTURE_NONE, blend.picture.id(), 0, 0,
                         0, 0, 0, 0, rect.width, rect.height);
    xcb_copy_area(xcb, blend.pixmap.id(), window, plain.id(), 0, 0, rect.x, rect.y, rect.width, rect.height);
}

} // namespace quillon::x11
