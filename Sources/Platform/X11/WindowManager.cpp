#include "Platform/X11/WindowManager.h"

#include "Platform/X11/PropertyReply.h"

namespace quillon::x11 {

namespace {

/// A client message carries what the user wants, as that of a pager does (EWMH, source indication). Window managers
/// may refuse the wishes of ordinary applications.
constexpr std::uint32_t fromUser = 2;

} // namespace

void askManager(Connection& connection, xcb_window_t window, std::string_view message,
                std::initializer_list<std::uint32_t> data) {
    tellManager(connection, clientMessage(connection, window, message, data));
}

bool managerSupports(Connection& connection, std::string_view message) {
    constexpr std::uint32_t longestList = 1024;
    PropertyReply supported(connection, connection.root(), connection.atom("_NET_SUPPORTED"), longestList);
    supported.wait();
    return supported.contains(connection.atom(message));
}

void activate(Connection& connection, xcb_window_t window) {
    const auto desktopAtom = connection.atom("_NET_WM_DESKTOP");
    const auto currentAtom = connection.atom("_NET_CURRENT_DESKTOP");
    PropertyReply desktop(connection, window, desktopAtom, 1);
    PropertyReply current(connection, connection.root(), currentAtom, 1);
    desktop.wait();
    current.wait();
    const auto time = connection.latestTime();
    // Measured with openbox 3.6.1, which does not activate a window of another desktop, and xfwm4 4.18, which would
    // bring it over.
    if (desktop.number() && current.number() && desktop.number() != allDesktops &&
        desktop.number() != current.number()) {
        askManager(connection, connection.root(), "_NET_CURRENT_DESKTOP", {*desktop.number(), time});
    }
    askManager(connection, window, "_NET_ACTIVE_WINDOW", {fromUser, time, XCB_WINDOW_NONE});
}

void activateHere(Connection& connection, xcb_window_t window) {
    PropertyReply current(connection, connection.root(), connection.atom("_NET_CURRENT_DESKTOP"), 1);
    current.wait();
    if (current.number()) {
        askManager(connection, window, "_NET_WM_DESKTOP", {*current.number(), fromUser});
    }
    askManager(connection, window, "_NET_ACTIVE_WINDOW", {fromUser, connection.latestTime(), XCB_WINDOW_NONE});
}

void raise(Connection& connection, xcb_window_t window) {
    const std::uint32_t mode = XCB_STACK_MODE_ABOVE;
    connection.mayFail(xcb_configure_window(connection.xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &mode));
}

void restackBehind(Connection& connection, xcb_window_t window, xcb_window_t front) {
    if (managerSupports(connection, "_NET_RESTACK_WINDOW")) {
        askManager(connection, window, "_NET_RESTACK_WINDOW", {fromUser, front, XCB_STACK_MODE_BELOW});
        return;
    }
    // The windows lie in frames, so the server would not take them for siblings: the request goes to the window
    // manager as an event (ICCCM 4.1.5).
    xcb_configure_request_event_t event{};
    event.response_type = XCB_CONFIGURE_REQUEST;
    event.stack_mode = XCB_STACK_MODE_BELOW;
    event.parent = connection.root();
    event.window = window;
    event.sibling = front;
    event.value_mask = XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE;
    tellManager(connection, event);
}

bool hasCompositor(Connection& connection) {
    return connection.selectionOwner(connection.atom(connection.selectionName("_NET_WM_CM"))) != XCB_WINDOW_NONE;
}

} // namespace quillon::x11
