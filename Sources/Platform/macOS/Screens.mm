#include "Platform/Screens.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

Screen toScreen(NSScreen* screen) {
    return {toRect<ScreenSpace>(screen.frame), screen.backingScaleFactor};
}

class MacScreens final : public Screens {
public:
    std::vector<Screen> screens() const override {
        std::vector<Screen> result;
        for (NSScreen* screen in NSScreen.screens) {
            result.push_back(toScreen(screen));
        }
        return result;
    }

    std::optional<Screen> mainScreen() const override {
        NSScreen* const screen = NSScreen.mainScreen;
        return screen != nil ? std::optional(toScreen(screen)) : std::nullopt;
    }
};

} // namespace

std::unique_ptr<Screens> makeScreens() {
    return std::make_unique<MacScreens>();
}

} // namespace quillon::macos
