#include "Platform/X11/ViewDrawing.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <functional>
#include <optional>

namespace quillon::x11 {

namespace {

QColor color(const GrayColor& gray) {
    return QColor::fromRgbF(static_cast<float>(gray.white), static_cast<float>(gray.white),
                            static_cast<float>(gray.white), static_cast<float>(gray.alpha));
}

/// Paints into an image, which is made with the first thing that is drawn.
class ImageContext final : public DrawingContext {
public:
    ImageContext(int width, int height, double scale) : width(width), height(height), scale(scale) {}

    void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor gray) override {
        paint([&](QPainter& painter) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(color(gray));
            painter.drawRoundedRect(QRectF(rect.minX(), rect.minY(), rect.size.width, rect.size.height), cornerRadius,
                                    cornerRadius);
        });
    }

    void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor gray) override {
        QPainterPath path;
        for (const auto& [from, to] : segments) {
            path.moveTo(from.x, from.y);
            path.lineTo(to.x, to.y);
        }
        paint([&](QPainter& painter) {
            painter.strokePath(path, QPen(color(gray), lineWidth, Qt::SolidLine, Qt::RoundCap));
        });
    }

    [[nodiscard]] const std::optional<QImage>& drawn() const { return image; }

private:
    /// Draws in the view's coordinates, whose origin is at the bottom left.
    void paint(const std::function<void(QPainter&)>& draw) {
        if (!image) {
            image.emplace(width, height, QImage::Format_ARGB32_Premultiplied);
            image->fill(Qt::transparent);
        }
        QPainter painter(&*image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0, height);
        painter.scale(scale, -scale);
        draw(painter);
    }

    int width;
    int height;
    double scale;
    std::optional<QImage> image;
};

constexpr std::uint8_t argbDepth = 32;

/// Sends the image to a new pixmap of its size.
Pixmap upload(Connection& connection, const QImage& image) {
    auto* const xcb = connection.xcb();
    const auto width = static_cast<std::uint16_t>(image.width());
    const auto height = static_cast<std::uint16_t>(image.height());
    Pixmap pixmap(connection);
    xcb_create_pixmap(xcb, argbDepth, pixmap.id(), connection.root(), width, height);
    const GraphicsContext context(connection);
    xcb_create_gc(xcb, context.id(), pixmap.id(), 0, nullptr);
    // One request holds at most 64 KiB without an extension, so that the rows go out one by one.
    for (std::uint16_t row = 0; row < height; ++row) {
        xcb_put_image(xcb, XCB_IMAGE_FORMAT_Z_PIXMAP, pixmap.id(), context.id(), width, 1, 0,
                      static_cast<std::int16_t>(row), 0, argbDepth, static_cast<std::uint32_t>(width) * 4U,
                      image.constScanLine(row));
    }
    return pixmap;
}

} // namespace

ViewDrawing drawView(Connection& connection, const PictureFormats& formats, ViewDelegate& delegate, int width,
                     int height, double scale) {
    ViewDrawing drawing;
    if (width <= 0 || height <= 0) {
        return drawing;
    }
    ImageContext context(width, height, scale);
    delegate.draw(context);
    if (!context.drawn()) {
        return drawing;
    }
    drawing.pixmap = upload(connection, *context.drawn());
    drawing.picture = Picture(connection);
    xcb_render_create_picture(connection.xcb(), drawing.picture.id(), drawing.pixmap.id(), formats.argb32(), 0,
                              nullptr);
    return drawing;
}

} // namespace quillon::x11
