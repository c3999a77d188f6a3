#include "Platform/X11/PostedEvents.h"

#include "Platform/X11/SendEvent.h"

namespace quillon::x11 {

namespace {

template <class Event>
void post(Connection& connection, xcb_window_t window, const Event& event) {
    sendEvent(connection, window, XCB_EVENT_MASK_NO_EVENT, event);
}

/// Presses, releases, moves and crossings begin alike.
template <class Event>
Event pointerEvent(const Connection& connection, std::uint8_t type, const PostedPointer& pointer) {
    Event event{};
    event.response_type = type;
    event.time = pointer.time;
    event.root = connection.root();
    event.event = pointer.window;
    event.root_x = static_cast<std::int16_t>(pointer.onRoot.x);
    event.root_y = static_cast<std::int16_t>(pointer.onRoot.y);
    event.event_x = static_cast<std::int16_t>(pointer.inWindow.x);
    event.event_y = static_cast<std::int16_t>(pointer.inWindow.y);
    event.state = pointer.state;
    return event;
}

} // namespace

void postButton(Connection& connection, std::uint8_t type, xcb_button_t button, const PostedPointer& pointer) {
    auto event = pointerEvent<xcb_button_press_event_t>(connection, type, pointer);
    event.detail = button;
    event.same_screen = 1;
    post(connection, pointer.window, event);
}

void postMotion(Connection& connection, const PostedPointer& pointer) {
    auto event = pointerEvent<xcb_motion_notify_event_t>(connection, XCB_MOTION_NOTIFY, pointer);
    event.detail = XCB_MOTION_NORMAL;
    event.same_screen = 1;
    post(connection, pointer.window, event);
}

void postCrossing(Connection& connection, std::uint8_t type, const PostedPointer& pointer) {
    constexpr std::uint8_t sameScreen = 2; // the other bit, 1, is the focus
    auto event = pointerEvent<xcb_enter_notify_event_t>(connection, type, pointer);
    event.detail = XCB_NOTIFY_DETAIL_ANCESTOR;
    event.mode = XCB_NOTIFY_MODE_NORMAL;
    event.same_screen_focus = sameScreen;
    post(connection, pointer.window, event);
}

void postFocus(Connection& connection, std::uint8_t type, xcb_window_t window) {
    xcb_focus_in_event_t event{};
    event.response_type = type;
    event.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    event.event = window;
    event.mode = XCB_NOTIFY_MODE_NORMAL;
    post(connection, window, event);
}

} // namespace quillon::x11
