#include "Platform/X11/FullScreenWatch.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/PropertyReply.h"

#include <algorithm>
#include <utility>

namespace quillon::x11 {

namespace {

/// In 4-byte units; a window has about a dozen states.
constexpr std::uint32_t mostStates = 64;
/// The one thing to observe.
constexpr int anyChange = 0;

bool isChangeOf(const xcb_generic_event_t& event, xcb_atom_t property) {
    return eventType(event) == XCB_PROPERTY_NOTIFY && as<xcb_property_notify_event_t>(event).atom == property;
}

} // namespace

FullScreenWatch::FullScreenWatch(Connection& connection) : connection(connection) {
    rootEvents = connection.observeWindow(connection.root(), [this](const auto& event) {
        if (isChangeOf(event, this->connection.atom("_NET_ACTIVE_WINDOW"))) {
            askForActiveWindow();
        }
    });
    rootSelection = connection.selectInput(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    askForActiveWindow();
}

RegistrationToken FullScreenWatch::observe(Task changed) {
    return observers.add(anyChange, std::move(changed));
}

void FullScreenWatch::askForActiveWindow() {
    const auto cookie = xcb_get_property(connection.xcb(), 0, connection.root(), connection.atom("_NET_ACTIVE_WINDOW"),
                                         XCB_ATOM_WINDOW, 0, 1);
    activeReply = connection.whenReplied(cookie.sequence, [this](void* reply) {
        activeWindowArrived(static_cast<const xcb_get_property_reply_t*>(reply));
    });
}

void FullScreenWatch::activeWindowArrived(const xcb_get_property_reply_t* reply) {
    const auto windows = numbersOf(reply);
    const xcb_window_t found = windows.empty() ? xcb_window_t{XCB_WINDOW_NONE} : windows.front();
    if (std::exchange(active, found) == found) {
        return;
    }
    activeEvents.reset();
    activeSelection.reset();
    if (active == XCB_WINDOW_NONE) {
        stateReply.reset();
        stateArrived(nullptr);
        return;
    }
    activeEvents = connection.observeWindow(active, [this](const auto& event) {
        if (isChangeOf(event, this->connection.atom("_NET_WM_STATE"))) {
            askForState();
        }
    });
    activeSelection = connection.selectInput(active, XCB_EVENT_MASK_PROPERTY_CHANGE);
    askForState();
}

void FullScreenWatch::askForState() {
    const auto cookie =
        xcb_get_property(connection.xcb(), 0, active, connection.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 0, mostStates);
    stateReply = connection.whenReplied(
        cookie.sequence, [this](void* reply) { stateArrived(static_cast<const xcb_get_property_reply_t*>(reply)); });
}

void FullScreenWatch::stateArrived(const xcb_get_property_reply_t* reply) {
    const auto states = numbersOf(reply);
    const bool found =
        std::find(states.begin(), states.end(), connection.atom("_NET_WM_STATE_FULLSCREEN")) != states.end();
    if (std::exchange(isFullScreen, found) == found) {
        return;
    }
    observers.call(anyChange);
}

} // namespace quillon::x11
