#pragma once

#include "Platform/Screens.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

/// One screen of 1440 x 900 points at scale 2, below a menu bar of 25 points, unless a test sets others. The pointer
/// is in the middle of that screen.
class SimulatedScreens final : public Screens {
public:
    explicit SimulatedScreens(const SimulatedScheduler& scheduler) : scheduler(scheduler) {}

    [[nodiscard]] std::vector<Screen> screens() const override {
        scheduler.requireMain("Screens::screens");
        return all;
    }
    [[nodiscard]] std::optional<Screen> mainScreen() const override {
        scheduler.requireMain("Screens::mainScreen");
        return main;
    }
    [[nodiscard]] ScreenPoint mouseLocation() const override {
        scheduler.requireMain("Screens::mouseLocation");
        return pointer;
    }

    /// The first screen, if any, is the main one too, unless `mainScreen` names another. On a screen that is given no
    /// visible frame nothing takes room away. Nothing is announced; the desktop does that.
    void set(std::vector<Screen> screens, std::optional<Screen> mainScreen = std::nullopt) {
        all = std::move(screens);
        for (auto& screen : all) {
            fillVisibleFrame(screen);
        }
        main = mainScreen || all.empty() ? mainScreen : all.front();
        if (main) {
            fillVisibleFrame(*main);
        }
    }
    void setMouseLocation(const ScreenPoint& location) { pointer = location; }

private:
    static void fillVisibleFrame(Screen& screen) {
        if (screen.visibleFrame == ScreenRect()) {
            screen.visibleFrame = screen.frame;
        }
    }

    const SimulatedScheduler& scheduler;
    std::vector<Screen> all{{{{0, 0}, {1440, 900}}, 2, {{0, 0}, {1440, 875}}}};
    std::optional<Screen> main = all.front();
    ScreenPoint pointer{720, 450};
};

} // namespace quillon::simulated
