#include "Platform/X11/DrawnPicture.h"

#include <QImage>

namespace quillon::x11 {

DrawnPicture upload(Connection& connection, const PictureFormats& formats, const QImage& image) {
    constexpr std::uint8_t argbDepth = 32;
    auto* const xcb = connection.xcb();
    const auto width = static_cast<std::uint16_t>(image.width());
    const auto height = static_cast<std::uint16_t>(image.height());
    DrawnPicture drawn{Pixmap(connection), Picture(connection)};
    xcb_create_pixmap(xcb, argbDepth, drawn.pixmap.id(), connection.root(), width, height);
    const GraphicsContext context(connection);
    xcb_create_gc(xcb, context.id(), drawn.pixmap.id(), 0, nullptr);
    // One request holds at most 64 KiB without an extension, so that the rows go out one by one.
    for (std::uint16_t row = 0; row < height; ++row) {
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, drawn.pixmap.id(), context.id(), width, 1, 0,
                      static_cast<std::int16_t>(row), 0, argbDepth, static_cast<std::uint32_t>(width) * 4U,
                      image.constScanLine(row));
    }
    xcb_render_create_picture(xcb, drawn.picture.id(), drawn.pixmap.id(), formats.argb32(), 0, nullptr);
    return drawn;
}

} // namespace quillon::x11
