#include "Platform/X11/ServerPause.h"

#include <cstdint>
#include <limits>
#include <string_view>

namespace quillon::x11 {

namespace {

xcb_sync_int64_t parts(std::int64_t value) {
    return {static_cast<std::int32_t>(value >> 32), static_cast<std::uint32_t>(value)};
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
    if (!counters) {
        return XCB_NONE;
    }
    for (auto each = xcb_sync_list_system_counters_counters_iterator(counters.get()); each.rem > 0;
         xcb_sync_systemcounter_next(&each)) {
        const std::string_view name(xcb_sync_systemcounter_name(each.data), each.data->name_len);
        if (name == "SERVERTIME") {
            return each.data->counter;
        }
    }
    return XCB_NONE;
}

} // namespace

ServerPause::ServerPause(Connection& connection) : connection(connection), clock(findClock(connection.xcb())) {}

void ServerPause::wait(std::chrono::milliseconds time) const {
    if (clock == XCB_NONE) {
        return;
    }
    const xcb_sync_waitcondition_t condition{
        .trigger = {.counter = clock,
                    .wait_type = XCB_SYNC_VALUETYPE_RELATIVE,
                    .wait_value = parts(time.count()),
                    .test_type = XCB_SYNC_TESTTYPE_POSITIVE_COMPARISON},
        // No event may tell of the end: that would be the wakeup which this saves.
        .event_threshold = parts(std::numeric_limits<std::int64_t>::max()),
    };
    xcb_sync_await(connection.xcb(), 1, &condition);
}

} // namespace quillon::x11
