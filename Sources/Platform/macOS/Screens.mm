#include "Platform/Screens.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/NativeScreen.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

Screen toKnownScreen(NSScreen* screen) {
    return {.frame = toRect<ScreenSpace>(screen.frame),
            .backingScaleFactor = screen.backingScaleFactor,
            .visibleFrame = toRect<ScreenSpace>(screen.visibleFrame)};
}

class MacScreens final : public Screens {
public:
    std::vector<Screen> screens() const override {
        std::vector<Screen> result;
        for (NSScreen* screen in NSScreen.screens) {
            result.push_back(toKnownScreen(screen));
        }
        return result;
    }

    std::optional<Screen> mainScreen() const override { return toScreen(NSScreen.mainScreen); }
    ScreenPoint mouseLocation() const override { return toPoint<ScreenSpace>(NSEvent.mouseLocation); }
};

} // namespace

std::optional<Screen> toScreen(NSScreen* screen) {
    return screen != nil ? std::optional(toKnownScreen(screen)) : std::nullopt;
}

std::unique_ptr<Screens> makeScreens() {
    return std::make_unique<MacScreens>();
}

} // namespace quillon::macos
