#include "Platform/X11/ScrollSteps.h"

#include <cmath>

namespace quillon::x11 {

namespace {

int takeSteps(double& rest, double points) {
    rest += points;
    const double steps = std::trunc(rest / ScrollSteps::pointsPerStep);
    rest -= steps * ScrollSteps::pointsPerStep;
    return static_cast<int>(steps);
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

} // namespace quillon::x11
