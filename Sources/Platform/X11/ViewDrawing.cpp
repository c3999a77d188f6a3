#include "Platform/X11/ViewDrawing.h"

#include "Platform/X11/Painting.h"

#include <QImage>
#include <QPainter>

#include <functional>
#include <optional>

namespace quillon::x11 {

namespace {

/// Paints into an image, which is made with the first thing that is drawn.
class ViewContext final : public DrawingContext {
public:
    ViewContext(int width, int height, double scale) : width(width), height(height), scale(scale) {}

    void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor color) override {
        paint([&](QPainter& painter) { x11::fillRoundedRectangle(painter, rect, cornerRadius, color); });
    }
    void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor color) override {
        paint([&](QPainter& painter) { x11::strokeSegments(painter, segments, lineWidth, color); });
    }

    [[nodiscard]] const std::optional<QImage>& drawn() const { return image; }

private:
    void paint(const std::function<void(QPainter&)>& draw) {
        if (!image) {
            image.emplace(width, height, QImage::Format_ARGB32_Premultiplied);
            image->fill(Qt::transparent);
        }
        QPainter painter(&*image);
        drawUpwards(painter, height, scale);
        draw(painter);
    }

    int width;
    int height;
    double scale;
    std::optional<QImage> image;
};

} // namespace

DrawnPicture drawView(Connection& connection, const PictureFormats& formats, ViewDelegate& delegate, int width,
                      int height, double scale) {
    if (width <= 0 || height <= 0) {
        return {};
    }
    ViewContext context(width, height, scale);
    delegate.draw(context);
    return context.drawn() ? upload(connection, formats, *context.drawn()) : DrawnPicture();
}

} // namespace quillon::x11
