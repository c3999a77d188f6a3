#pragma once

#include "Platform/X11/ClickSettings.h"

#include <xcb/xcb.h>

#include <cstdint>

namespace quillon::x11 {

/// Counts the clicks that follow one another in one place. Places are pixels of the root window, times the server's.
class ClickCounter {
public:
    /// 1 for a first click, 2 for the press that makes it a double-click, and so on.
    std::int64_t press(xcb_button_t button, xcb_timestamp_t time, int x, int y, const ClickSettings& newSettings);
    /// A button is down and the pointer moves: farther than within a click, it is a drag.
    void drag(int x, int y);
    /// The count of the release's press; 0 when it was a drag or another button's.
    [[nodiscard]] std::int64_t release(xcb_button_t button) const;

private:
    [[nodiscard]] bool isNear(int x, int y) const;

    ClickSettings settings;
    std::int64_t count = 0;
    xcb_button_t lastButton = 0;
    xcb_timestamp_t lastTime = 0;
    int lastX = 0;
    int lastY = 0;
};

} // namespace quillon::x11
