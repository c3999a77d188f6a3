#pragma once

#include "Platform/X11/Connection.h"

#include <xcb/sync.h>

namespace quillon::x11 {

/// Makes the server wait before it handles what this connection asks for next, while it goes on serving others (the
/// Sync extension's Await on the server's time). A short time that has to pass between two requests so costs this
/// process no timer and no wakeup. Main thread.
class ServerPause {
public:
    /// Asks the server for its clock, in two round trips.
    explicit ServerPause(Connection& connection);

    /// Requests that follow are handled once the server's clock shows that time; at once when it does so already, and
    /// where the server lacks the extension. Everything that follows on the connection is held up, so only for times
    /// that nobody notices.
    void waitUntil(xcb_timestamp_t time) const;

private:
    Connection& connection;
    xcb_sync_counter_t clock = XCB_NONE;
};

} // namespace quillon::x11
