#include "Platform/X11/FrameMargins.h"

#include "Platform/X11/PropertyReply.h"
#include "Platform/X11/WindowManager.h"

#include <algorithm>
#include <chrono>
#include <cmath>

#include <poll.h>

namespace quillon::x11 {

namespace {

constexpr std::chrono::milliseconds longestWait{250};
/// The news may have been read together with the reply before it; the socket does not announce it then.
constexpr std::chrono::milliseconds betweenLooks{2};

bool hasExtents(Connection& connection, xcb_window_t window) {
    PropertyReply extents(connection, window, connection.atom("_NET_FRAME_EXTENTS"), 1);
    extents.wait();
    return extents.number().has_value();
}

bool waitForExtents(Connection& connection, xcb_window_t window) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + longestWait;
    while (!hasExtents(connection, window)) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
        if (left.count() <= 0) {
            return false;
        }
        pollfd socket{xcb_get_file_descriptor(connection.xcb()), POLLIN, 0};
        poll(&socket, 1, static_cast<int>(std::min(left, betweenLooks).count()));
    }
    return true;
}

} // namespace

Margins askFrameMargins(Connection& connection, const ClientWindows& windows, xcb_window_t window) {
    if (!windows.hasManager()) {
        return {};
    }
    // The news of the answer ends the wait.
    const auto selection = connection.selectInput(window, XCB_EVENT_MASK_PROPERTY_CHANGE);
    if (managerSupports(connection, "_NET_REQUEST_FRAME_EXTENTS")) {
        askManager(connection, window, "_NET_REQUEST_FRAME_EXTENTS", {});
        if (waitForExtents(connection, window)) {
            return windows.margins(window).frame;
        }
    }
    constexpr double titleBarHeight = 24; // in points
    return {1, 1, static_cast<int>(std::lround(titleBarHeight * connection.scale())), 1};
}

} // namespace quillon::x11
