#pragma once

#include "Platform/X11/Connection.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

namespace quillon::x11 {

/// Sends the destination, which may have closed, an event as if the server had reported it. With a mask, whoever has
/// selected one of its bits there gets it; without one, who made the window. On the thread of the connection.
template <class Event>
void sendEvent(Connection& connection, xcb_window_t destination, std::uint32_t eventMask, const Event& event) {
    // The server takes 32 bytes, whatever the length of the event.
    std::array<char, 32> bytes{};
    static_assert(sizeof event <= bytes.size());
    std::copy_n(reinterpret_cast<const char*>(&event), sizeof event, bytes.begin());
    connection.mayFail(xcb_send_event(connection.xcb(), 0, destination, eventMask, bytes.data()));
}

/// A message about the window, with at most five numbers.
[[nodiscard]] inline xcb_client_message_event_t clientMessage(Connection& connection, xcb_window_t window,
                                                              std::string_view message,
                                                              std::initializer_list<std::uint32_t> data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = connection.atom(message);
    std::copy(data.begin(), data.end(), event.data.data32);
    return event;
}

} // namespace quillon::x11
