#include "Platform/X11/Images.h"

#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/Painting.h"
#include "Platform/X11/Symbols.h"

#include <algorithm>
#include <tuple>

namespace quillon::x11 {

namespace {

const DrawableImage& drawable(const Image& image) {
    return static_cast<const DrawableImage&>(image);
}

/// Of text and symbols.
QColor foregroundColor(Appearance appearance) {
    return appearance == Appearance::darkAqua ? Qt::white : Qt::black;
}

QColor colorFor(const Color& color, Appearance appearance) {
    if (const auto* gray = std::get_if<GrayColor>(&color)) {
        return colorOf(*gray);
    }
    // systemRed of macOS; the only system colour so far.
    return appearance == Appearance::darkAqua ? QColor(255, 69, 58) : QColor(255, 59, 48);
}

/// The size of text where nobody says anything else (NSFont.systemFontSize).
constexpr SymbolConfiguration plainConfiguration{.pointSize = 13, .weight = FontWeight::regular, .paletteColor = {}};

class SymbolImage final : public DrawableImage {
public:
    SymbolImage(const Symbol& symbol, const SymbolConfiguration& configuration, bool isTemplate)
        : DrawableImage(isTemplate), symbol(symbol), configuration(configuration) {}

    [[nodiscard]] Size size() const override { return symbolSize(symbol, configuration.pointSize); }

    [[nodiscard]] std::shared_ptr<Image>
    withSymbolConfiguration(const SymbolConfiguration& newConfiguration) const override {
        if (!(newConfiguration.pointSize > 0)) {
            return nullptr;
        }
        return std::make_shared<SymbolImage>(symbol, newConfiguration, isTemplate());
    }

    void draw(QPainter& painter, const WindowRect& rect, Appearance appearance) const override {
        const auto color = configuration.paletteColor ? colorFor(*configuration.paletteColor, appearance)
                                                      : foregroundColor(appearance);
        drawSymbol(painter, symbol, rect, configuration.weight, color);
    }

private:
    const Symbol& symbol;
    SymbolConfiguration configuration;
};

class PainterDrawing final : public ImageDrawing {
public:
    PainterDrawing(QPainter& painter, Appearance appearance) : painter(painter), appearance(appearance) {}

    void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor color) override {
        x11::fillRoundedRectangle(painter, rect, cornerRadius, color);
    }
    void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor color) override {
        x11::strokeSegments(painter, segments, lineWidth, color);
    }
    [[nodiscard]] std::optional<Appearance> bestMatchAppearance() const override { return appearance; }
    void drawImage(const Image& image, const WindowRect& rect) override {
        drawable(image).draw(painter, rect, appearance);
    }

private:
    QPainter& painter;
    Appearance appearance;
};

class DrawnImage final : public DrawableImage {
public:
    DrawnImage(const Size& size, ImageDrawingHandler handler)
        : DrawableImage(false), imageSize(size), handler(std::move(handler)) {}

    [[nodiscard]] Size size() const override { return imageSize; }
    [[nodiscard]] std::shared_ptr<Image> withSymbolConfiguration(const SymbolConfiguration&) const override {
        return nullptr;
    }
    void draw(QPainter& painter, const WindowRect& rect, Appearance appearance) const override {
        painter.save();
        painter.translate(rect.minX(), rect.minY());
        painter.scale(rect.size.width / imageSize.width, rect.size.height / imageSize.height);
        PainterDrawing drawing(painter, appearance);
        // What a handler that failed has drawn so far stays, for want of anything better to show.
        std::ignore = handler(drawing, {{0, 0}, imageSize});
        painter.restore();
    }

private:
    Size imageSize;
    ImageDrawingHandler handler;
};

class X11Images final : public Images {
public:
    [[nodiscard]] std::shared_ptr<Image> systemSymbol(std::string_view name,
                                                      const std::optional<std::string>& /*description*/) override {
        const auto* const symbol = findSymbol(name);
        return symbol != nullptr ? std::make_shared<SymbolImage>(*symbol, plainConfiguration, true) : nullptr;
    }
    [[nodiscard]] std::shared_ptr<Image> drawnImage(const Size& size, ImageDrawingHandler handler) override {
        return std::make_shared<DrawnImage>(size, std::move(handler));
    }
};

} // namespace

QImage render(const Image& image, QSize pixels, Appearance appearance) {
    QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    const auto size = image.size();
    if (pixels.isEmpty() || !(size.width > 0) || !(size.height > 0)) {
        return picture;
    }
    const double scale = std::min(pixels.width() / size.width, pixels.height() / size.height);
    const WindowRect place{{(pixels.width() / scale - size.width) / 2, (pixels.height() / scale - size.height) / 2},
                           size};
    QPainter painter(&picture);
    drawUpwards(painter, pixels.height(), scale);
    const auto& drawn = drawable(image);
    drawn.draw(painter, place, appearance);
    if (drawn.isTemplate()) {
        painter.resetTransform();
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(picture.rect(), foregroundColor(appearance));
    }
    return picture;
}

std::unique_ptr<Images> makeImages() {
    return std::make_unique<X11Images>();
}

} // namespace quillon::x11
