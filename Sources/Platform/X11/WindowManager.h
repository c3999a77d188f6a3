#pragma once

#include "Platform/X11/Connection.h"
#include "Platform/X11/SendEvent.h"

#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace quillon::x11 {

// What is asked of the window manager, which does it in its own time. The window may have closed. On the thread that
// the connection is used on.

/// _NET_WM_DESKTOP's value for a window on all desktops.
inline constexpr std::uint32_t allDesktops = 0xffffffff;

/// Sends the window manager an event of whatever kind.
template <class Event>
void tellManager(Connection& connection, const Event& event) {
    sendEvent(connection, connection.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
              event);
}

/// Sends a client message about the window, or about the desktop if that is the root window.
void askManager(Connection& connection, xcb_window_t window, std::string_view message,
                std::initializer_list<std::uint32_t> data);

/// Whether the window manager says that it understands the message (_NET_SUPPORTED).
[[nodiscard]] bool managerSupports(Connection& connection, std::string_view message);

/// The user wants to work with the window: it comes to the front with the keyboard focus, minimised or not, and the
/// user is taken to its desktop.
void activate(Connection& connection, xcb_window_t window);

/// The same, except that the window comes to the user's desktop.
void activateHere(Connection& connection, xcb_window_t window);

/// In front of the other windows of its level. The focus stays where it is.
void raise(Connection& connection, xcb_window_t window);

/// Behind another window. The focus stays where it is.
void restackBehind(Connection& connection, xcb_window_t window, xcb_window_t front);

/// Whether a compositor runs on the screen, which keeps the whole picture of every window.
[[nodiscard]] bool hasCompositor(Connection& connection);

} // namespace quillon::x11
