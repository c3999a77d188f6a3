#include "FrameCounter.h"

#include <poll.h>

namespace quillon::e2e {

namespace {

using Clock = std::chrono::steady_clock;

/// Drawings closer together than this belong to one frame. Far below the shortest interval that is counted.
constexpr Milliseconds oneFrame{6};

} // namespace

FrameCounter::FrameCounter(const std::string& displayName) : client(displayName) {
    std::free(xcb_damage_query_version_reply(client.xcb(), xcb_damage_query_version(client.xcb(), 1, 1), nullptr));
}

double FrameCounter::framesPerSecond(Window window, Milliseconds time) const {
    auto* connection = client.xcb();
    const auto notify =
        static_cast<std::uint8_t>(xcb_get_extension_data(connection, &xcb_damage_id)->first_event + XCB_DAMAGE_NOTIFY);
    const xcb_damage_damage_t damage = xcb_generate_id(connection);
    xcb_damage_create(connection, damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    xcb_flush(connection);

    std::optional<Clock::time_point> first;
    Clock::time_point latest;
    int frames = 0;
    auto deadline = Clock::now() + time;
    while (Clock::now() < deadline) {
        const auto left = std::chrono::duration_cast<Milliseconds>(deadline - Clock::now());
        pollfd entry{xcb_get_file_descriptor(connection), POLLIN, 0};
        poll(&entry, 1, static_cast<int>(left.count()) + 1);
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
            if ((event->response_type & 0x7f) != notify) {
                continue;
            }
            xcb_damage_subtract(connection, damage, XCB_NONE, XCB_NONE);
            const auto now = Clock::now();
            if (!first) {
                first = now;
                deadline = now + time;
            } else if (now - latest > oneFrame) {
                ++frames;
            }
            latest = now;
        }
        xcb_flush(connection);
    }
    xcb_damage_destroy(connection, damage);
    xcb_flush(connection);
    const double seconds = first ? std::chrono::duration<double>(latest - *first).count() : 0;
    return seconds > 0 ? frames / seconds : 0;
}

} // namespace quillon::e2e
