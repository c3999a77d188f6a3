#include "Platform/X11/WindowPing.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/PropertyReply.h"
#include "Platform/X11/SendEvent.h"

#include <utility>

namespace quillon::x11 {

namespace {

/// A program that hangs gets what follows all the same, whenever it goes on.
constexpr Seconds longestWait{0.3};

} // namespace

WindowPing::WindowPing(Connection& connection, Scheduler& scheduler, xcb_window_t window, Task answeredTask)
    : connection(connection), window(window), answered(std::move(answeredTask)) {
    const auto end = weakly([](WindowPing& self) { self.finish(); });
    if (!isUnderstood()) {
        scheduler.mainAsync(end);
        return;
    }
    rootSelection = connection.selectInput(connection.root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
    rootEvents = connection.observeWindow(connection.root(), [this](const auto& event) { handle(event); });
    send();
    scheduler.mainAfter(longestWait, end);
}

bool WindowPing::isUnderstood() const {
    constexpr std::uint32_t mostProtocols = 64;
    PropertyReply protocols(connection, window, connection.atom("WM_PROTOCOLS"), mostProtocols);
    protocols.wait();
    return protocols.contains(connection.atom("_NET_WM_PING"));
}

void WindowPing::send() {
    sendEvent(connection, window, XCB_EVENT_MASK_NO_EVENT,
              clientMessage(connection, window, "WM_PROTOCOLS",
                            {connection.atom("_NET_WM_PING"), connection.latestTime(), window}));
}

/// The answer is the question, sent to the root window.
void WindowPing::handle(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_CLIENT_MESSAGE) {
        return;
    }
    const auto& message = as<xcb_client_message_event_t>(event);
    if (message.type == connection.atom("WM_PROTOCOLS") && message.data.data32[0] == connection.atom("_NET_WM_PING") &&
        message.data.data32[2] == window) {
        finish();
    }
}

void WindowPing::finish() {
    if (const auto task = std::exchange(answered, nullptr)) {
        task();
    }
}

} // namespace quillon::x11
