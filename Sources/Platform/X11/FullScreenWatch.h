#pragma once

#include "Platform/Scheduler.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Handlers.h"

namespace quillon::x11 {

/// Knows whether the active window fills its screen. Main thread.
class FullScreenWatch {
public:
    explicit FullScreenWatch(Connection& connection);

    [[nodiscard]] bool isActiveWindowFullScreen() const { return isFullScreen; }
    /// Calls back after each change.
    [[nodiscard]] RegistrationToken observe(Task changed);

private:
    void askForActiveWindow();
    void activeWindowArrived(const xcb_get_property_reply_t* reply);
    void askForState();
    void stateArrived(const xcb_get_property_reply_t* reply);

    Connection& connection;
    bool isFullScreen = false;
    xcb_window_t active = XCB_WINDOW_NONE;
    Handlers<int> observers;
    RegistrationToken rootEvents;
    RegistrationToken rootSelection;
    RegistrationToken activeEvents;
    RegistrationToken activeSelection;
    RegistrationToken activeReply;
    RegistrationToken stateReply;
};

} // namespace quillon::x11
