#pragma once

#include "Platform/Screens.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

/// One screen of 1440 x 900 points at scale 2, unless a test sets others.
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

    /// The first screen, if any, is the main one too, unless `mainScreen` names another. Nothing is announced;
    /// the desktop does that.
    void set(std::vector<Screen> screens, std::optional<Screen> mainScreen = std::nullopt) {
        all = std::move(screens);
        main = mainScreen || all.empty() ? mainScreen : all.front();
    }

private:
    const SimulatedScheduler& scheduler;
    std::vector<Screen> all{{{{0, 0}, {1440, 900}}, 2}};
    std::optional<Screen> main = all.front();
};

} // namespace quillon::simulated
