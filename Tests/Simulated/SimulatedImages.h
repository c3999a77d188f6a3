#pragma once

#include "Platform/Images.h"
#include "Simulated/SimulatedScheduler.h"
#include "Simulated/SimulatedViews.h"

#include <set>
#include <string>
#include <vector>

namespace quillon::simulated {

class SimulatedImages;

/// A symbol, or an image that a handler draws.
class SimulatedImage final : public Image {
public:
    struct Symbol {
        std::string name;
        std::optional<std::string> description;
        /// None for the symbol as the system has it.
        std::optional<SymbolConfiguration> configuration;

        /// "pin semibold 16 red", "pin".
        [[nodiscard]] std::string look() const;
    };

    SimulatedImage(const SimulatedImages& images, const Size& size, Symbol symbol)
        : images(images), currentSize(size), content(std::move(symbol)), isMarkedAsTemplate(true) {}
    SimulatedImage(const SimulatedImages& images, const Size& size, ImageDrawingHandler handler)
        : images(images), currentSize(size), content(std::move(handler)) {}

    [[nodiscard]] Size size() const override;
    [[nodiscard]] std::shared_ptr<Image>
    withSymbolConfiguration(const SymbolConfiguration& configuration) const override;
    void setTemplate(bool isTemplate) override;

    [[nodiscard]] bool isTemplate() const { return isMarkedAsTemplate; }
    /// Null for a drawn image.
    [[nodiscard]] const Symbol* symbol() const { return std::get_if<Symbol>(&content); }
    /// Null for a symbol.
    [[nodiscard]] const ImageDrawingHandler* handler() const { return std::get_if<ImageDrawingHandler>(&content); }
    /// The symbol's look, or "drawn 28x20"; with "template" at the end when it is one.
    [[nodiscard]] std::string description() const;

private:
    friend SimulatedImages;

    const SimulatedImages& images;
    Size currentSize;
    std::variant<Symbol, ImageDrawingHandler> content;
    bool isMarkedAsTemplate = false;
};

/// What a drawn image drew in one go.
struct ImagePicture {
    struct PlacedSymbol {
        std::string look;
        WindowRect rect;
    };

    /// What the handler reported.
    bool succeeded = false;
    Drawing shapes;
    /// All after the shapes.
    std::vector<PlacedSymbol> symbols;
};

/// Knows the symbols "pin" and "pin.fill".
class SimulatedImages final : public Images {
public:
    SimulatedImages(SimulatedScheduler& scheduler, Journal& journal) : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] std::shared_ptr<Image> systemSymbol(std::string_view name,
                                                      const std::optional<std::string>& description) override;
    [[nodiscard]] std::shared_ptr<Image> drawnImage(const Size& size, ImageDrawingHandler handler) override;

    /// From now on the system has no such symbol.
    void removeSymbol(const std::string& name) { symbols.erase(name); }
    /// Of a symbol without a configuration and of one with a configuration, in points.
    void setSymbolSizes(const Size& plain, const Size& configured) {
        plainSize = plain;
        configuredSize = configured;
    }
    /// Which configurations cannot be applied; at first none.
    void failConfigurations(std::function<bool(const SymbolConfiguration&)> fails) {
        configurationFails = std::move(fails);
    }
    /// Shows the drawn image somewhere of that look; none for a look that is neither light nor dark.
    [[nodiscard]] ImagePicture draw(const SimulatedImage& image, std::optional<Appearance> appearance) const;
    /// The simulated object behind a pointer, null behind null. Stops the test when it comes from elsewhere.
    [[nodiscard]] std::shared_ptr<SimulatedImage> require(const std::shared_ptr<Image>& image,
                                                          std::string_view operation) const;

private:
    friend SimulatedImage;

    SimulatedScheduler& scheduler;
    Journal& journal;
    std::set<std::string, std::less<>> symbols{"pin", "pin.fill"};
    Size plainSize{13, 13};
    Size configuredSize{16, 18};
    std::function<bool(const SymbolConfiguration&)> configurationFails = [](const auto&) { return false; };
};

} // namespace quillon::simulated
