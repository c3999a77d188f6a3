#include "FocusWatch.h"

#include "HandleEvents.h"

#include <array>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace quillon::e2e {

FocusWatch::FocusWatch(const std::string& displayName) : client(displayName), stopSignal(eventfd(0, EFD_CLOEXEC)) {
    record(client.activeWindow(), false);
    thread = std::thread([this] { watch(); });
}

FocusWatch::~FocusWatch() {
    eventfd_write(stopSignal, 1);
    thread.join();
    close(stopSignal);
}

std::vector<FocusWatch::Change> FocusWatch::changes() const {
    const std::lock_guard lock(mutex);
    return seen;
}

void FocusWatch::watch() {
    std::array<pollfd, 2> sources{{{xcb_get_file_descriptor(client.xcb()), POLLIN, 0}, {stopSignal, POLLIN, 0}}};
    while (sources[1].revents == 0 && xcb_connection_has_error(client.xcb()) == 0) {
        handleEvents(client.xcb(), [this](const auto& event) { handle(event); });
        poll(sources.data(), sources.size(), -1);
    }
}

void FocusWatch::watchWindow(Window window) const {
    const std::uint32_t mask = XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_change_window_attributes(client.xcb(), window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(client.xcb());
}

void FocusWatch::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case XCB_CREATE_NOTIFY:
        // Programs make their windows as children of the root; a frame comes around them later.
        watchWindow(reinterpret_cast<const xcb_create_notify_event_t&>(event).window);
        break;
    case XCB_FOCUS_IN: {
        const auto& focus = reinterpret_cast<const xcb_focus_in_event_t&>(event);
        const bool isMove = focus.mode == XCB_NOTIFY_MODE_NORMAL || focus.mode == XCB_NOTIFY_MODE_WHILE_GRABBED;
        const bool isItself = focus.detail == XCB_NOTIFY_DETAIL_ANCESTOR ||
                              focus.detail == XCB_NOTIFY_DETAIL_INFERIOR || focus.detail == XCB_NOTIFY_DETAIL_NONLINEAR;
        if (isMove && isItself) {
            record(focus.event, true);
        }
        break;
    }
    case XCB_PROPERTY_NOTIFY:
        if (reinterpret_cast<const xcb_property_notify_event_t&>(event).atom == client.atom("_NET_ACTIVE_WINDOW")) {
            record(client.activeWindow(), false);
        }
        break;
    default:
        break;
    }
}

void FocusWatch::record(Window window, bool isKeyboardFocus) {
    if (window == XCB_NONE) {
        return;
    }
    const auto owner = client.ownerOf(window);
    const std::lock_guard lock(mutex);
    seen.push_back({window, owner, isKeyboardFocus});
}

} // namespace quillon::e2e
