#include "Platform/X11/ServerPause.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <span>
#include <string_view>

namespace quillon::x11 {

namespace {

xcb_sync_int64_t parts(std::int64_t value) {
    return {static_cast<std::int32_t>(value >> 32), static_cast<std::uint32_t>(value)};
}

/// What the server tells of a counter, before its name. The library's own structure ends at a multiple of four bytes
/// and so misses where the name begins.
constexpr std::size_t nameLengthOffset = 12;
constexpr std::size_t nameOffset = 14;

template <class T>
T readAt(std::span<const std::byte> bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes.subspan(offset, sizeof value).data(), sizeof value);
    return value;
}

xcb_sync_counter_t findCounter(const xcb_sync_list_system_counters_reply_t& reply, std::string_view wanted) {
    const auto* first = reinterpret_cast<const std::byte*>(&reply + 1);
    std::span rest(first, std::size_t{reply.length} * 4);
    for (auto left = reply.counters_len; left > 0 && rest.size() >= nameOffset; --left) {
        const std::size_t nameLength = readAt<std::uint16_t>(rest, nameLengthOffset);
        const std::size_t size = (nameOffset + nameLength + 3) / 4 * 4;
        if (size > rest.size()) {
            break;
        }
        if (std::string_view(reinterpret_cast<const char*>(rest.data()) + nameOffset, nameLength) == wanted) {
            return readAt<xcb_sync_counter_t>(rest, 0);
        }
        rest = rest.subspan(size);
    }
    return XCB_NONE;
}

/// The system counter that counts the server's milliseconds.
xcb_sync_counter_t findClock(xcb_connection_t* xcb) {
    const auto* extension = xcb_get_extension_data(xcb, &xcb_sync_id);
    if (extension == nullptr || extension->present == 0) {
        return XCB_NONE;
    }
    // Nothing else of the extension works before this was asked.
    const Reply<xcb_sync_initialize_reply_t> version(xcb_sync_initialize_reply(
        xcb, xcb_sync_initialize(xcb, XCB_SYNC_MAJOR_VERSION, XCB_SYNC_MINOR_VERSION), nullptr));
    const Reply<xcb_sync_list_system_counters_reply_t> counters(
        xcb_sync_list_system_counters_reply(xcb, xcb_sync_list_system_counters(xcb), nullptr));
    return counters ? findCounter(*counters, "SERVERTIME") : XCB_NONE;
}

} // namespace

ServerPause::ServerPause(Connection& connection) : connection(connection), clock(findClock(connection.xcb())) {}

void ServerPause::waitUntil(xcb_timestamp_t time) const {
    // The clock begins anew after 2^32 ms, some 50 days; a time just before that, once missed,
    // would hold up everything until the next turn.
    constexpr xcb_timestamp_t hour = 60 * 60 * 1000;
    if (clock == XCB_NONE || time > std::numeric_limits<xcb_timestamp_t>::max() - hour) {
        return;
    }
    const xcb_sync_waitcondition_t condition{
        .trigger = {.counter = clock,
                    .wait_type = XCB_SYNC_VALUETYPE_ABSOLUTE,
                    .wait_value = parts(time),
                    .test_type = XCB_SYNC_TESTTYPE_POSITIVE_COMPARISON},
        // No event may tell of the end: that would be the wakeup which this saves.
        .event_threshold = parts(std::numeric_limits<std::int64_t>::max()),
    };
    xcb_sync_await(connection.xcb(), 1, &condition);
}

} // namespace quillon::x11
