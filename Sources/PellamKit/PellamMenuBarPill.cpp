#include "PellamKit/PellamMenuBarPill.h"

#include "Defaults.h"
#include "Platform/Platform.h"
#include "Platform/StatusBar.h"

#include <algorithm>
#include <functional>

namespace quillon::PellamMenuBarPill {

namespace {

/// Of the pill around the glyph, both sides together, in points.
constexpr Size padding{12, 4};
constexpr double smallestWidth = 22;
/// Between the pill and the bar's edges, both together, in points.
constexpr double barMargin = 2;

struct PillColors {
    GrayColor pill;
    GrayColor glyph;
};

/// A light pill with a dark glyph.
constexpr PillColors onDark{{0.85, 1}, {0.1, 1}};
/// A dark translucent pill with a white glyph.
constexpr PillColors onLight{{0.2, 0.85}, {1, 1}};

using DrawGlyph = std::function<void(ImageDrawing& drawing, const WindowRect& rect, const Color& color)>;

std::shared_ptr<Image> configured(const std::shared_ptr<Image>& symbol, const SymbolConfiguration& configuration) {
    const auto image = symbol->withSymbolConfiguration(configuration);
    return image ? image : symbol;
}

SymbolConfiguration withPalette(SymbolConfiguration configuration, const Color& color) {
    configuration.paletteColor = color;
    return configuration;
}

WindowRect centred(const Size& size, const WindowRect& rect) {
    return {{rect.minX() + (rect.size.width - size.width) * 0.5, rect.minY() + (rect.size.height - size.height) * 0.5},
            size};
}

/// The colours are chosen whenever the image is drawn, so that it follows the menu bar without being made anew.
std::shared_ptr<Image> composedPillIcon(const Size& glyphSize, DrawGlyph drawGlyph, const std::optional<Color>& tint) {
    const Size size{std::max(glyphSize.width + padding.width, smallestWidth),
                    std::min(glyphSize.height + padding.height, platform().statusBar().thickness() - barMargin)};
    auto image = platform().images().drawnImage(
        size, [glyphSize, drawGlyph = std::move(drawGlyph), tint](ImageDrawing& drawing, const WindowRect& bounds) {
            const auto& colors = drawing.bestMatchAppearance() == Appearance::darkAqua ? onDark : onLight;
            drawing.fillRoundedRectangle(bounds, bounds.size.height * 0.5, colors.pill);
            drawGlyph(drawing, centred(glyphSize, bounds), tint.value_or(colors.glyph));
            return true;
        });
    image->setTemplate(false);
    return image;
}

std::shared_ptr<Image> pillIcon(const std::shared_ptr<Image>& symbol, const SymbolConfiguration& base,
                                const std::optional<Color>& tint) {
    const auto drawGlyph = [symbol, base](ImageDrawing& drawing, const WindowRect& rect, const Color& color) {
        const auto glyph = configured(symbol, withPalette(base, color));
        drawing.drawImage(*glyph, centred(glyph->size(), rect));
    };
    return composedPillIcon(configured(symbol, base)->size(), drawGlyph, tint);
}

std::shared_ptr<Image> plainIcon(const Image& symbol, const SymbolConfiguration& base,
                                 const std::optional<Color>& tint) {
    auto image = symbol.withSymbolConfiguration(tint ? withPalette(base, *tint) : base);
    if (image) {
        image->setTemplate(!tint);
    }
    return image;
}

} // namespace

std::shared_ptr<Image> icon(std::string_view symbolName, double pointSize, FontWeight weight,
                            const std::optional<Color>& tint,
                            const std::optional<std::string>& accessibilityDescription) {
    const auto symbol = platform().images().systemSymbol(symbolName, accessibilityDescription);
    if (!symbol) {
        return nullptr;
    }
    const SymbolConfiguration base{.pointSize = pointSize, .weight = weight, .paletteColor = std::nullopt};
    return Defaults::boolForKey(Defaults::menuBarPillEnabled) ? pillIcon(symbol, base, tint)
                                                              : plainIcon(*symbol, base, tint);
}

} // namespace quillon::PellamMenuBarPill
