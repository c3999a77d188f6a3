#pragma once

#include "HeldWeakly.h"
#include "Platform/Scheduler.h"
#include "Platform/SystemEvent.h"
#include "Platform/X11/FocusKeeper.h"
#include "Platform/X11/InputTarget.h"
#include "Platform/X11/Keyboard.h"
#include "Platform/X11/PostedEvents.h"
#include "Platform/X11/SecondPointer.h"
#include "Platform/X11/WindowPing.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace quillon::x11 {

/// One thing that the user does to a window.
struct PointerAction {
    /// As the window manager knows it.
    xcb_window_t window = XCB_WINDOW_NONE;
    /// On the root window.
    PixelPoint at;
    EventFlags modifiers = 0;
    /// The server's time. Programs tell a double-click by it, so it is not that of the posting.
    xcb_timestamp_t time = XCB_CURRENT_TIME;
};

/// Posts the user's clicks, drags and steps of the wheel to windows, whatever covers them, in the order of the calls.
/// While a button is down its events go to the part of the window that got the press, wherever the pointer is, as the
/// server does it. Nothing waits for the program of the window.
///
/// Every press is followed by its release: when the release does not come here (the panel went away in the middle of
/// a drag), it is made up as soon as the user's own button is up, or when this object ends.
///
/// What a program ignores when it is posted goes through a second pointer.
///
/// The press of the right button is held back until the user lets go or drags: a menu that opens with it grabs the
/// pointer, which the user's own button holds for the panel as long as it is down. Main thread.
class PostedInput final : private HeldWeakly<PostedInput> {
    friend HeldWeakly<PostedInput>;

public:
    /// All must outlive this object.
    PostedInput(Connection& connection, Scheduler& scheduler, Keyboard& keyboard, FocusKeeper& focusKeeper);
    ~PostedInput();

    void press(const PointerAction& action, xcb_button_t button);
    /// Nothing happens unless a button is down in the window.
    void drag(const PointerAction& action);
    /// Nothing happens unless that button is down in the window.
    void release(const PointerAction& action, xcb_button_t button);
    /// Positive towards the top and the left.
    void scroll(const PointerAction& action, int vertical, int horizontal);

private:
    /// Buttons that are down in a window, at least one.
    struct Held {
        InputTarget target;
        std::vector<xcb_button_t> buttons;
        bool allowsDrags = true;
        PointerAction last;
    };

    [[nodiscard]] std::optional<PostedPointer> pointerIn(xcb_window_t window, const PointerAction& action);
    [[nodiscard]] std::optional<InputTarget> targetOf(const PointerAction& action) const;
    [[nodiscard]] std::uint16_t buttonBits(xcb_window_t outermost) const;
    [[nodiscard]] bool isStillClick(const PointerAction& action) const;
    void pressWhatWasHeldBack();
    using Step = std::function<void(PostedInput&)>;
    /// Now, or after what waits.
    void inOrder(Step step);
    /// Lets everything wait until `resume`, first of all this step.
    void pauseBefore(Step step);
    [[nodiscard]] bool mustPrepare(InputRoute route, Step step);
    void resume();
    void postFirst();
    void postPress(const PointerAction& action, xcb_button_t button);
    void postDrag(const PointerAction& action);
    void postRelease(const PointerAction& action, xcb_button_t button);
    void postScroll(const PointerAction& action, int vertical, int horizontal);
    void enter(const InputTarget& target, const PostedPointer& pointer);
    void leave(const InputTarget& target, const PostedPointer& pointer);
    void turnWheel(InputRoute route, const PostedPointer& pointer, xcb_button_t button, int count);
    void watchButtons();
    void releaseWhatIsUp(std::uint16_t buttonsDown);

    Connection& connection;
    Scheduler& scheduler;
    Keyboard& keyboard;
    FocusKeeper& focusKeeper;
    /// By the window that the window manager knows.
    std::map<xcb_window_t, Held> held;
    SecondPointer secondPointer;
    /// The press of the right button.
    std::optional<PointerAction> heldBack;
    /// What came during the pause before a press.
    std::deque<Step> waiting;
    bool isPausing = false;
    /// Of the program that a press waits for.
    std::unique_ptr<WindowPing> ping;
    RegistrationToken buttonWatch;
    RegistrationToken buttonReply;
};

} // namespace quillon::x11
