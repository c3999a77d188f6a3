#include "Platform/Images.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/CurrentContext.h"
#include "Platform/macOS/NativeImage.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

struct ToNSColor {
    NSColor* operator()(GrayColor color) const { return toNSColor(color); }
    NSColor* operator()(SystemColor color) const {
        switch (color) {
        case SystemColor::red:
            return NSColor.systemRedColor;
        }
    }
};

NSFontWeight toNSFontWeight(FontWeight weight) {
    switch (weight) {
    case FontWeight::regular:
        return NSFontWeightRegular;
    case FontWeight::semibold:
        return NSFontWeightSemibold;
    }
}

NSImageSymbolConfiguration* toNSImageSymbolConfiguration(const SymbolConfiguration& configuration) {
    NSImageSymbolConfiguration* const base =
        [NSImageSymbolConfiguration configurationWithPointSize:configuration.pointSize
                                                        weight:toNSFontWeight(configuration.weight)];
    if (!configuration.paletteColor) {
        return base;
    }
    NSColor* const color = std::visit(ToNSColor(), *configuration.paletteColor);
    return [base
        configurationByApplyingConfiguration:[NSImageSymbolConfiguration configurationWithPaletteColors:@[ color ]]];
}

class MacImage final : public Image {
public:
    explicit MacImage(NSImage* image) : image(image) {}

    /// Null for nil.
    static std::shared_ptr<Image> make(NSImage* _Nullable image) {
        return image != nil ? std::make_shared<MacImage>(image) : nullptr;
    }

    Size size() const override { return toSize(image.size); }
    std::shared_ptr<Image> withSymbolConfiguration(const SymbolConfiguration& configuration) const override {
        return make([image imageWithSymbolConfiguration:toNSImageSymbolConfiguration(configuration)]);
    }
    void setTemplate(bool isTemplate) override { [image setTemplate:isTemplate]; }

    [[nodiscard]] NSImage* native() const { return image; }

private:
    NSImage* image;
};

class MacImageDrawing final : public CurrentContext<ImageDrawing> {
public:
    std::optional<Appearance> bestMatchAppearance() const override {
        const NSAppearanceName match = [NSAppearance.currentDrawingAppearance
            bestMatchFromAppearancesWithNames:@[ NSAppearanceNameDarkAqua, NSAppearanceNameAqua ]];
        if (match == nil) {
            return std::nullopt;
        }
        return [match isEqualToString:NSAppearanceNameDarkAqua] ? Appearance::darkAqua : Appearance::aqua;
    }
    void drawImage(const Image& image, const WindowRect& rect) override {
        [nativeImage(image) drawInRect:toNSRect(rect)
                              fromRect:NSZeroRect
                             operation:NSCompositingOperationSourceOver
                              fraction:1];
    }
};

class MacImages final : public Images {
public:
    std::shared_ptr<Image> systemSymbol(std::string_view name, const std::optional<std::string>& description) override {
        return MacImage::make([NSImage imageWithSystemSymbolName:toNSString(name)
                                        accessibilityDescription:description ? toNSString(*description) : nil]);
    }

    std::shared_ptr<Image> drawnImage(const Size& size, ImageDrawingHandler handler) override {
        // AppKit draws an image on the thread of the one who shows it: the main thread for everything on screen.
        NSImage* const image = [NSImage imageWithSize:toNSSize(size)
                                              flipped:NO
                                       drawingHandler:^BOOL(NSRect bounds) {
                                           MacImageDrawing drawing;
                                           return handler(drawing, toRect<WindowSpace>(bounds));
                                       }];
        // Else AppKit would keep what was drawn until the resolution or the colour space changes, and with it the
        // look of an earlier appearance.
        image.cacheMode = NSImageCacheNever;
        return MacImage::make(image);
    }
};

} // namespace

NSImage* nativeImage(const Image& image) {
    return static_cast<const MacImage&>(image).native();
}

std::unique_ptr<Images> makeImages() {
    return std::make_unique<MacImages>();
}

} // namespace quillon::macos
