#include "Platform/X11/ClickCounter.h"

#include <cstdlib>

namespace quillon::x11 {

std::int64_t ClickCounter::press(xcb_button_t button, xcb_timestamp_t time, int x, int y,
                                 const ClickSettings& newSettings) {
    settings = newSettings;
    // The server's time wraps after 49 days; the difference does not mind.
    const auto elapsed = static_cast<std::uint32_t>(time - lastTime);
    const bool follows = count > 0 && button == lastButton && elapsed <= settings.doubleClickTime && isNear(x, y);
    count = follows ? count + 1 : 1;
    lastButton = button;
    lastTime = time;
    lastX = x;
    lastY = y;
    return count;
}

void ClickCounter::drag(int x, int y) {
    if (!isNear(x, y)) {
        count = 0;
    }
}

std::int64_t ClickCounter::release(xcb_button_t button) const {
    return button == lastButton ? count : 0;
}

bool ClickCounter::isNear(int x, int y) const {
    return std::abs(x - lastX) <= settings.doubleClickDistance && std::abs(y - lastY) <= settings.doubleClickDistance;
}

} // namespace quillon::x11
