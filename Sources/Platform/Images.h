#pragma once

#include "Platform/Drawing.h"
#include "Platform/Geometry.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace quillon {

/// A colour that the system chooses to go with its appearance.
enum class SystemColor {
    red, ///< NSColor.systemRedColor
};

using Color = std::variant<GrayColor, SystemColor>;

/// Light and dark looks.
enum class Appearance {
    aqua,     ///< NSAppearanceNameAqua, light
    darkAqua, ///< NSAppearanceNameDarkAqua
};

/// NSFontWeight.
enum class FontWeight {
    regular,
    semibold,
};

/// How a symbol is drawn (NSImageSymbolConfiguration).
struct SymbolConfiguration {
    double pointSize = 0; ///< of the text that the symbol goes with
    FontWeight weight = FontWeight::regular;
    /// A palette of this one colour.
    std::optional<Color> paletteColor;
};

/// A picture with a size in points, sharp at any scale (NSImage). Main thread.
class Image {
public:
    Image() = default;
    Image(const Image&) = delete;
    Image& operator=(const Image&) = delete;
    virtual ~Image() = default;

    [[nodiscard]] virtual Size size() const = 0;
    /// A copy drawn that way; null for an image that is not a symbol, or when the symbol cannot be drawn so.
    [[nodiscard]] virtual std::shared_ptr<Image>
    withSymbolConfiguration(const SymbolConfiguration& configuration) const = 0;
    /// Whoever shows a template colours it; only its coverage counts. A symbol is one from the start, a drawn image
    /// is not.
    virtual void setTemplate(bool isTemplate) = 0;
};

/// Where a drawn image draws.
class ImageDrawing : public DrawingContext {
public:
    /// The look of the place where the image is being shown; none when it is neither light nor dark
    /// (bestMatchFromAppearancesWithNames: of NSAppearance.currentDrawingAppearance).
    [[nodiscard]] virtual std::optional<Appearance> bestMatchAppearance() const = 0;
    /// Draws the whole image into the rectangle, over what is there, fully opaque.
    virtual void drawImage(const Image& image, const WindowRect& rect) = 0;
};

/// Draws an image whose lower left corner is at 0, 0. False when it could not.
using ImageDrawingHandler = std::function<bool(ImageDrawing& drawing, const WindowRect& bounds)>;

/// Makes images. Main thread.
class Images {
public:
    virtual ~Images() = default;

    /// Null when the system has no symbol of that name.
    [[nodiscard]] virtual std::shared_ptr<Image> systemSymbol(std::string_view name,
                                                              const std::optional<std::string>& description) = 0;
    /// The handler is called whenever the image is drawn, so that it follows a change of the appearance. In points,
    /// not flipped.
    [[nodiscard]] virtual std::shared_ptr<Image> drawnImage(const Size& size, ImageDrawingHandler handler) = 0;
};

} // namespace quillon
