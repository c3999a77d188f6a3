#include "PellamKit/PellamSettingsWindowSizer.h"

#include "PellamKit/PellamSettingsMetrics.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"

#include <algorithm>

namespace quillon {

namespace {

/// Where the upper and the lower limit exclude each other, the upper one wins.
ScreenPoint originInside(const ScreenRect& visible, const ScreenRect& frame) {
    return {std::min(std::max(frame.minX(), visible.minX()), visible.maxX() - frame.size.width),
            std::min(std::max(frame.minY(), visible.minY()), visible.maxY() - frame.size.height)};
}

} // namespace

PellamSettingsWindowSizer::PellamSettingsWindowSizer(const std::shared_ptr<TitledWindow>& window) : window(window) {
    const auto changed = weakly([](PellamSettingsWindowSizer& self) { self.displaysChanged(); });
    screenParametersObserver =
        platform().notificationCenter().addObserver(screenParametersDidChangeNotification, changed);
    screenObserver = window->observeDidChangeScreen(changed);
}

/// The desktop is still moving windows about while it tells of a change.
void PellamSettingsWindowSizer::displaysChanged() {
    platform().scheduler().mainAsync(weakly([](PellamSettingsWindowSizer& self) { self.clamp(); }));
}

void PellamSettingsWindowSizer::clamp() const {
    const auto alive = window.lock();
    if (!alive) {
        return;
    }
    auto screen = alive->screen();
    if (!screen) {
        screen = platform().screens().mainScreen();
    }
    if (!screen) {
        return;
    }
    const auto size = PellamSettingsMetrics::contentSize(alive->fittingSize(), screen);
    if (alive->contentSize() != size) {
        alive->setContentSize(size);
    }
    const auto frame = alive->frame();
    const ScreenRect inside{originInside(screen->visibleFrame, frame), frame.size};
    if (inside != frame) {
        alive->setFrame(inside, true);
    }
}

} // namespace quillon
