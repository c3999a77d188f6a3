#pragma once

#include "HeldWeakly.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/Connection.h"

namespace quillon::x11 {

/// Asks the program of a window whether it is there (_NET_WM_PING), which it answers after what was sent to it before.
/// Main thread.
class WindowPing final : private HeldWeakly<WindowPing> {
    friend HeldWeakly<WindowPing>;

public:
    /// Calls back once, in a later turn of the event loop: when the answer is there, when it has taken too long, or at
    /// once where the window takes no such question. All but the window must outlive the ping, whose end withdraws it.
    WindowPing(Connection& connection, Scheduler& scheduler, xcb_window_t window, Task answered);

private:
    [[nodiscard]] bool isUnderstood() const;
    void send();
    void handle(const xcb_generic_event_t& event);
    void finish();

    Connection& connection;
    xcb_window_t window;
    Task answered;
    RegistrationToken rootSelection;
    RegistrationToken rootEvents;
};

} // namespace quillon::x11
