#include "Platform/X11/PictureScaler.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

namespace quillon::x11 {

namespace {

/// The strips of the first halving hold at most this part of the source's pixels; the next level's a quarter of
/// that.
constexpr int stripPart = 16;

xcb_render_fixed_t fixed(double number) {
    return static_cast<xcb_render_fixed_t>(std::lround(number * 65536));
}

int divideUp(int number, int divisor) {
    return (number + divisor - 1) / divisor;
}

void composite(Connection& connection, xcb_render_picture_t from, int fromX, int fromY, xcb_render_picture_t to,
               int toX, int toY, int width, int height) {
    xcb_render_composite(connection.xcb(), XCB_RENDER_PICT_OP_SRC, from, XCB_RENDER_PICTURE_NONE, to,
                         static_cast<std::int16_t>(fromX), static_cast<std::int16_t>(fromY), 0, 0,
                         static_cast<std::int16_t>(toX), static_cast<std::int16_t>(toY),
                         static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height));
}

} // namespace

void PictureScaler::Axis::set(int sourcePixels, int targetPixels) {
    source = sourcePixels;
    target = targetPixels;
    halvings = 0;
    while ((target << (halvings + 1)) < source) {
        ++halvings;
    }
}

int PictureScaler::Axis::sizeAt(int level) const {
    return divideUp(source, 1 << std::min(level, halvings));
}

double PictureScaler::Axis::step() const {
    return static_cast<double>(source) / (1 << halvings) / target;
}

PictureScaler::Axis::Range PictureScaler::Axis::lastLevel(Range range) const {
    const int from = static_cast<int>(std::floor(range.from * step())) - 1;
    const int to = static_cast<int>(std::ceil(range.to * step())) + 1;
    return {std::max(from, 0), std::min(to, sizeAt(halvings))};
}

PictureScaler::Axis::Range PictureScaler::Axis::atLevel(Range lastLevel, int level) const {
    // An axis with fewer halvings than the other has them in the first levels.
    const int left = halvings - std::min(level, halvings);
    // The last pixel may reach over the edge, where the source's is repeated.
    return {lastLevel.from << left, lastLevel.to << left};
}

PictureScaler::Axis::Range PictureScaler::Axis::reach(Range range) const {
    // One pixel of the last level and a half, on either side: the filter reads the nearest two.
    const int padding = (3 << halvings) / 2;
    const double factor = static_cast<double>(target) / source;
    const int from = static_cast<int>(std::floor((range.from - padding) * factor));
    const int to = static_cast<int>(std::ceil((range.to + padding) * factor));
    return {std::clamp(from, 0, target), std::clamp(to, 0, target)};
}

bool PictureScaler::prepare(std::shared_ptr<CapturedPicture> picture, int width, int height) {
    if (picture != source) {
        reset();
        const auto found = formats.ofVisual(picture->geometry().visual);
        if (!found) {
            return false;
        }
        format = *found;
        source = std::move(picture);
        sourcePicture = Picture(connection);
        const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
        xcb_render_create_picture(connection.xcb(), sourcePicture.id(), source->pixmap(), format, XCB_RENDER_CP_REPEAT,
                                  &repeat);
        useBilinear(sourcePicture.id());
        horizontal = Axis();
        vertical = Axis();
    }
    if (horizontal.target != width || vertical.target != height) {
        strips = {};
        horizontal.set(source->geometry().width, width);
        vertical.set(source->geometry().height, height);
    }
    return true;
}

void PictureScaler::reset() {
    strips = {};
    sourcePicture.reset();
    source.reset();
}

PixelRect PictureScaler::reachOf(const PixelRect& area) const {
    const auto x = horizontal.reach({area.x, area.x + area.width});
    const auto y = vertical.reach({area.y, area.y + area.height});
    return {x.from, y.from, x.to - x.from, y.to - y.from};
}

void PictureScaler::draw(const PixelRect& area, xcb_render_picture_t target, int originX, int originY) {
    const int border = source->geometry().border;
    if (levels() == 0) {
        setTransform(sourcePicture.id(), horizontal.step(), vertical.step(), border, border);
        composite(connection, sourcePicture.id(), area.x, area.y, target, originX + area.x, originY + area.y,
                  area.width, area.height);
        return;
    }
    const int rows = rowsPerStrip();
    for (int y = area.y; y < area.y + area.height; y += rows) {
        const int height = std::min(rows, area.y + area.height - y);
        drawStrip({area.x, y, area.width, height}, target, originX, originY);
    }
}

/// Rows of the target whose first halving fits into the memory that strips may take, whatever part of them is drawn.
int PictureScaler::rowsPerStrip() const {
    const int allowedPixels = horizontal.source * vertical.source / stripPart;
    const int levelRows = allowedPixels / horizontal.sizeAt(1);
    const int left = vertical.halvings - std::min(1, vertical.halvings);
    // Two rows of the last level are the filter's margin.
    const double lastRows = static_cast<double>(levelRows >> left) - 2;
    return std::max(static_cast<int>(lastRows / vertical.step()), 1);
}

void PictureScaler::drawStrip(const PixelRect& area, xcb_render_picture_t target, int originX, int originY) {
    const auto lastX = horizontal.lastLevel({area.x, area.x + area.width});
    const auto lastY = vertical.lastLevel({area.y, area.y + area.height});
    const int border = source->geometry().border;
    xcb_render_picture_t from = sourcePicture.id();
    // What the picture read from holds begins at this pixel of its level.
    int fromX = -border;
    int fromY = -border;
    for (int level = 1; level <= levels(); ++level) {
        const auto x = horizontal.atLevel(lastX, level);
        const auto y = vertical.atLevel(lastY, level);
        auto& strip = strips[static_cast<std::size_t>(level % 2)];
        makeRoom(strip, x.to - x.from, y.to - y.from);
        setTransform(from, level <= horizontal.halvings ? 2 : 1, level <= vertical.halvings ? 2 : 1, -fromX, -fromY);
        composite(connection, from, x.from, y.from, strip.picture.id(), 0, 0, x.to - x.from, y.to - y.from);
        from = strip.picture.id();
        fromX = x.from;
        fromY = y.from;
    }
    setTransform(from, horizontal.step(), vertical.step(), -fromX, -fromY);
    composite(connection, from, area.x, area.y, target, originX + area.x, originY + area.y, area.width, area.height);
}

void PictureScaler::makeRoom(Strip& strip, int width, int height) {
    if (strip.width >= width && strip.height >= height) {
        return;
    }
    strip.picture.reset();
    strip.pixmap.reset();
    strip.width = std::max(strip.width, width);
    strip.height = std::max(strip.height, height);
    auto* const xcb = connection.xcb();
    strip.pixmap = Pixmap(connection);
    xcb_create_pixmap(xcb, source->geometry().depth, strip.pixmap.id(), connection.root(),
                      static_cast<std::uint16_t>(strip.width), static_cast<std::uint16_t>(strip.height));
    strip.picture = Picture(connection);
    const std::uint32_t repeat = XCB_RENDER_REPEAT_PAD;
    xcb_render_create_picture(xcb, strip.picture.id(), strip.pixmap.id(), format, XCB_RENDER_CP_REPEAT, &repeat);
    useBilinear(strip.picture.id());
}

/// Maps a pixel of what is drawn to one of `from`: times the step, plus the offset.
void PictureScaler::setTransform(xcb_render_picture_t from, double stepX, double stepY, double offsetX,
                                 double offsetY) const {
    const xcb_render_transform_t transform{
        fixed(stepX), 0, fixed(offsetX), 0, fixed(stepY), fixed(offsetY), 0, 0, fixed(1),
    };
    xcb_render_set_picture_transform(connection.xcb(), from, transform);
}

void PictureScaler::useBilinear(xcb_render_picture_t from) const {
    constexpr std::string_view bilinear = "bilinear";
    xcb_render_set_picture_filter(connection.xcb(), from, static_cast<std::uint16_t>(bilinear.size()), bilinear.data(),
                                  0, nullptr);
}

} // namespace quillon::x11
