#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>

namespace quillon::x11 {

// Events that a program takes for the user's though its window is covered and not active. They go to the client that
// made the window, whatever it selects (an empty event mask; with the mask of the event itself GTK 3 drops presses).
// The window may have closed. Main thread.

/// Of a press, a release or a move of the pointer.
struct PostedPointer {
    xcb_window_t window = XCB_WINDOW_NONE;
    /// In the window and on the root window.
    PixelPoint inWindow;
    PixelPoint onRoot;
    /// Modifiers and buttons that were down before the event.
    std::uint16_t state = 0;
    /// The server's.
    xcb_timestamp_t time = XCB_CURRENT_TIME;
};

/// XCB_BUTTON_PRESS or XCB_BUTTON_RELEASE.
void postButton(Connection& connection, std::uint8_t type, xcb_button_t button, const PostedPointer& pointer);
void postMotion(Connection& connection, const PostedPointer& pointer);
/// XCB_ENTER_NOTIFY or XCB_LEAVE_NOTIFY.
void postCrossing(Connection& connection, std::uint8_t type, const PostedPointer& pointer);
/// XCB_FOCUS_IN or XCB_FOCUS_OUT.
void postFocus(Connection& connection, std::uint8_t type, xcb_window_t window);

} // namespace quillon::x11
