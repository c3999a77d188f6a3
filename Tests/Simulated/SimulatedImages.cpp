#include "Simulated/SimulatedImages.h"

#include "Simulated/Misuse.h"

namespace quillon::simulated {

namespace {

std::string describe(const std::optional<Color>& color) {
    if (!color) {
        return "";
    }
    const auto* gray = std::get_if<GrayColor>(&*color);
    return gray != nullptr ? fmt::format(" gray {}/{}", gray->white, gray->alpha) : " red";
}

class Recorder final : public ImageDrawing {
public:
    explicit Recorder(std::optional<Appearance> appearance) : appearance(appearance) {}

    void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor color) override {
        requireNoSymbols();
        picture.shapes.rectangles.push_back({rect, cornerRadius, color});
    }
    void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor color) override {
        requireNoSymbols();
        picture.shapes.strokes.push_back({{segments.begin(), segments.end()}, lineWidth, color});
    }
    [[nodiscard]] std::optional<Appearance> bestMatchAppearance() const override { return appearance; }
    void drawImage(const Image& image, const WindowRect& rect) override {
        const auto* drawn = dynamic_cast<const SimulatedImage*>(&image);
        if (drawn == nullptr || drawn->symbol() == nullptr) {
            misuse("ImageDrawing::drawImage with something else than a symbol of this desktop");
        }
        picture.symbols.push_back({drawn->symbol()->look(), rect});
    }

    ImagePicture picture;

private:
    /// The record keeps no order between the two.
    void requireNoSymbols() const {
        if (!picture.symbols.empty()) {
            misuse("ImageDrawing: a shape over a symbol is not simulated");
        }
    }

    std::optional<Appearance> appearance;
};

} // namespace

std::string SimulatedImage::Symbol::look() const {
    if (!configuration) {
        return name;
    }
    return fmt::format("{} {} {}{}", name, configuration->weight == FontWeight::semibold ? "semibold" : "regular",
                       configuration->pointSize, describe(configuration->paletteColor));
}

Size SimulatedImage::size() const {
    images.scheduler.requireMain("Image::size");
    return currentSize;
}

std::shared_ptr<Image> SimulatedImage::withSymbolConfiguration(const SymbolConfiguration& configuration) const {
    images.scheduler.requireMain("Image::withSymbolConfiguration");
    if (configuration.pointSize <= 0) {
        misuse(fmt::format("Image::withSymbolConfiguration with a size of {} points", configuration.pointSize));
    }
    if (symbol() == nullptr || images.configurationFails(configuration)) {
        return nullptr;
    }
    auto copy = *symbol();
    copy.configuration = configuration;
    auto image = std::make_shared<SimulatedImage>(images, images.configuredSize, std::move(copy));
    image->isMarkedAsTemplate = isMarkedAsTemplate;
    return image;
}

void SimulatedImage::setTemplate(bool isTemplate) {
    images.scheduler.requireMain("Image::setTemplate");
    images.journal.record("image.setTemplate {}", isTemplate);
    isMarkedAsTemplate = isTemplate;
}

std::string SimulatedImage::description() const {
    const auto look =
        symbol() != nullptr ? symbol()->look() : fmt::format("drawn {}x{}", currentSize.width, currentSize.height);
    return look + (isMarkedAsTemplate ? " template" : "");
}

std::shared_ptr<Image> SimulatedImages::systemSymbol(std::string_view name,
                                                     const std::optional<std::string>& description) {
    scheduler.requireMain("Images::systemSymbol");
    journal.record("images.systemSymbol {}", name);
    if (!symbols.contains(name)) {
        return nullptr;
    }
    return std::make_shared<SimulatedImage>(
        *this, plainSize,
        SimulatedImage::Symbol{.name = std::string(name), .description = description, .configuration = std::nullopt});
}

std::shared_ptr<Image> SimulatedImages::drawnImage(const Size& size, ImageDrawingHandler handler) {
    scheduler.requireMain("Images::drawnImage");
    journal.record("images.drawnImage {}x{}", size.width, size.height);
    if (size.width <= 0 || size.height <= 0 || !handler) {
        misuse(fmt::format("Images::drawnImage of {}x{} points {} a handler", size.width, size.height,
                           handler ? "with" : "without"));
    }
    return std::make_shared<SimulatedImage>(*this, size, std::move(handler));
}

ImagePicture SimulatedImages::draw(const SimulatedImage& image, std::optional<Appearance> appearance) const {
    if (image.handler() == nullptr) {
        misuse("drawing an image that no handler draws");
    }
    Recorder recorder(appearance);
    recorder.picture.succeeded = (*image.handler())(recorder, {{0, 0}, image.size()});
    return std::move(recorder.picture);
}

std::shared_ptr<SimulatedImage> SimulatedImages::require(const std::shared_ptr<Image>& image,
                                                         std::string_view operation) const {
    auto simulated = std::dynamic_pointer_cast<SimulatedImage>(image);
    if (image && (!simulated || &simulated->images != this)) {
        misuse(fmt::format("{} with an image that is not one of this desktop", operation));
    }
    return simulated;
}

} // namespace quillon::simulated
