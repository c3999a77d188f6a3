#include "PellamKit/PellamSettingsMetrics.h"

#include "Platform/Platform.h"
#include "Platform/TitledWindow.h"

#include <algorithm>

namespace quillon::PellamSettingsMetrics {

namespace {

constexpr double shareOfScreen = 0.8;
/// Of the whole window, where there is no screen to go by.
constexpr Size fallbackLimit{960, 720};

Size windowLimit(const std::optional<Screen>& screen) {
    if (!screen) {
        return fallbackLimit;
    }
    const auto& visible = screen->visibleFrame.size;
    return {shareOfScreen * visible.width, shareOfScreen * visible.height};
}

/// The minimum wins.
double limited(double wanted, double minimum, double maximum) {
    return std::min(std::max(maximum, minimum), std::max(wanted, minimum));
}

} // namespace

Size contentSize(const Size& fitting, const std::optional<Screen>& screen) {
    const double titleBarHeight = platform().titledWindows().frameSize({0, 0}).height;
    const auto limit = windowLimit(screen);
    return {limited(fitting.width, minimumContentSize.width, limit.width),
            limited(fitting.height, minimumContentSize.height, limit.height - titleBarHeight)};
}

} // namespace quillon::PellamSettingsMetrics
