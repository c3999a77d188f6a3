#pragma once

#include "HeldWeakly.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/PostedEvents.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace quillon::x11 {

/// A pointer of the program's own beside the user's (XInput 2's second master pointer), for programs that ignore
/// posted events: what it does is reported to them by the server. The user's pointer stays where it is.
///
/// Its presses get to a window past all that lies over it, at one pixel and for as long as the server takes to handle
/// them, and past the window manager, which would activate the window: managers wait for a press with a passive grab on
/// the window, and a press that was held by another passive grab there and is then replayed goes on below them all.
///
/// It lies at the screen's right edge, over a pixel of its own, while it has nothing to do. Where the server lacks
/// XInput 2 or XTEST, and before it is prepared, nothing happens. Main thread.
class SecondPointer final : private HeldWeakly<SecondPointer> {
    friend HeldWeakly<SecondPointer>;

public:
    /// Undoes what a run has left that ended in the middle of a press. The scheduler must outlive this object.
    SecondPointer(Connection& connection, Scheduler& scheduler);
    ~SecondPointer();
    SecondPointer(const SecondPointer&) = delete;
    SecondPointer& operator=(const SecondPointer&) = delete;

    /// Makes the pointer, for which the server takes some milliseconds, without waiting for it. Calls back in a later
    /// turn of the event loop, unless this object has ended; false, and no call, when it was prepared before.
    [[nodiscard]] bool prepare(Task prepared);
    /// False, and nothing happens, when the window is not shown at that place, or a button is down in another one.
    bool press(const PostedPointer& pointer, xcb_button_t button);
    /// While a button is down.
    void move(const PostedPointer& pointer);
    /// A button that is down.
    void release(xcb_button_t button);
    /// Presses and releases a button of the wheel that often; 0 for not at all.
    void turnWheel(const PostedPointer& pointer, xcb_button_t button, int count);

private:
    class Device;

    void parkSoon();
    [[nodiscard]] bool isHeldElsewhere(xcb_window_t window) const { return !buttons.empty() && heldWindow != window; }

    Scheduler& scheduler;
    /// None until it is prepared, or when there cannot be one.
    std::shared_ptr<Device> device;
    bool wasPrepared = false;
    /// Only while the device is being made.
    std::shared_ptr<SerialQueue> making;
    std::vector<xcb_button_t> buttons;
    xcb_window_t heldWindow = XCB_WINDOW_NONE;
    /// Counts what was done, so that a later one puts off parking.
    unsigned uses = 0;
};

} // namespace quillon::x11
