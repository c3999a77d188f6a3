#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace quillon::x11 {

/// The kind of an event, whether the server or another client sent it (the high bit tells that).
[[nodiscard]] inline std::uint8_t eventType(const xcb_generic_event_t& event) {
    constexpr std::uint8_t typeMask = 0x7f;
    return event.response_type & typeMask;
}

/// The event as one of its kind, which the caller has looked at.
template <class Event>
[[nodiscard]] const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

} // namespace quillon::x11
