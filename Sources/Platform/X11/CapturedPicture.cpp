#include "Platform/X11/CapturedPicture.h"

#include <utility>

namespace quillon::x11 {

CapturedPicture::CapturedPicture(Connection& connection, NamedPixmap pixmap, const PictureGeometry& geometry)
    : connection(connection), pixels(std::move(pixmap)), shape(geometry) {}

std::shared_ptr<CapturedPicture> CapturedPicture::copy() const {
    auto* const xcb = connection.xcb();
    const auto width = static_cast<std::uint16_t>(shape.width);
    const auto height = static_cast<std::uint16_t>(shape.height);
    const auto border = static_cast<std::int16_t>(shape.border);

    NamedPixmap target(connection);
    xcb_create_pixmap(xcb, shape.depth, target.id(), connection.root(), width, height);
    const GraphicsContext context(connection);
    const std::uint32_t noExposures = 0;
    xcb_create_gc(xcb, context.id(), target.id(), XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    xcb_copy_area(xcb, pixels.id(), target.id(), context.id(), border, border, 0, 0, width, height);

    auto geometry = shape;
    geometry.border = 0;
    return std::make_shared<CapturedPicture>(connection, std::move(target), geometry);
}

void PictureFeed::freeze() {
    if (!picture) {
        return;
    }
    picture = picture->copy();
    if (onPictureReplaced) {
        onPictureReplaced();
    }
}

} // namespace quillon::x11
