#include "PellamKit/PellamWindowHelper.h"

#include "Platform/Application.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"

#include <algorithm>

namespace quillon::PellamWindowHelper {

std::optional<Screen> activeScreen() {
    const auto pointer = platform().screens().mouseLocation();
    const auto screens = platform().screens().screens();
    const auto found =
        std::ranges::find_if(screens, [&](const Screen& screen) { return screen.frame.contains(pointer); });
    return found != screens.end() ? std::optional(*found) : platform().screens().mainScreen();
}

void centreOnActiveDisplay(TitledWindow& window) {
    const auto screen = activeScreen();
    if (!screen) {
        window.center();
        return;
    }
    const auto& [origin, size] = screen->visibleFrame;
    const auto own = window.frame().size;
    window.setFrameOrigin({origin.x + (size.width - own.width) * 0.5, origin.y + (size.height - own.height) * 0.5});
}

void bringForward(TitledWindow& window) {
    window.makeKeyAndOrderFront();
    sharedApplication().activateIgnoringOtherApps();
}

void bringForwardAgain(const std::shared_ptr<TitledWindow>& window) {
    if (!window->isVisible()) {
        window->setCollectionBehavior({.moveToActiveSpace = true});
        // Once it is there it stays there, like any other window.
        platform().scheduler().mainAsync([shown = std::weak_ptr(window)] {
            if (const auto alive = shown.lock()) {
                alive->setCollectionBehavior({});
            }
        });
    }
    bringForward(*window);
}

void closeKeyWindow() {
    if (auto* window = platform().titledWindows().keyWindow()) {
        window->close();
    }
}

} // namespace quillon::PellamWindowHelper
