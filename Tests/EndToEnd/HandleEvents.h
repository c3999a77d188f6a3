#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace quillon::e2e {

/// Sends what was asked for and handles the events that have come. Then the connection's socket may be waited for:
/// sending reads events, too, which the socket does not announce any more.
template <class Handle>
void handleEvents(xcb_connection_t* connection, Handle handle) {
    while (true) {
        xcb_flush(connection);
        const std::unique_ptr<xcb_generic_event_t, decltype(&std::free)> event(xcb_poll_for_event(connection),
                                                                               &std::free);
        if (!event) {
            return;
        }
        handle(*event);
    }
}

} // namespace quillon::e2e
