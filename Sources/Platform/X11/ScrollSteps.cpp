#include "Platform/X11/ScrollSteps.h"

#include <algorithm>
#include <cmath>

namespace quillon::x11 {

namespace {

int bounded(double steps) {
    constexpr double most = ScrollSteps::mostSteps;
    return static_cast<int>(std::clamp(steps, -most, most));
}

int takeSteps(double& rest, double points) {
    rest += points;
    const double steps = std::trunc(rest / ScrollSteps::pointsPerStep);
    rest = std::fmod(rest, ScrollSteps::pointsPerStep);
    return bounded(steps);
}

} // namespace

ScrollSteps::Steps ScrollSteps::steps(xcb_window_t window, double vertical, double horizontal) {
    auto& rest = rests[window];
    const Steps result{takeSteps(rest.vertical, vertical), takeSteps(rest.horizontal, horizontal)};
    if (rest.vertical == 0 && rest.horizontal == 0) {
        rests.erase(window);
    }
    return result;
}

ScrollSteps::Steps ScrollSteps::ofLines(std::int32_t vertical, std::int32_t horizontal) {
    return {bounded(vertical), bounded(horizontal)};
}

} // namespace quillon::x11
