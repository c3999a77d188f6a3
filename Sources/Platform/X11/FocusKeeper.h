#pragma once

#include "HeldWeakly.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/InputTarget.h"

#include <chrono>
#include <optional>
#include <vector>

namespace quillon::x11 {

/// Keeps the keyboard focus and the order of the windows as they are while input is posted to a window that lacks the
/// focus. Two nets, one below the other:
///
/// A program that asks for the focus with a press is told that it has it already, and that it has lost it again when
/// all buttons are up and no menu of it is open. (Told at once, Qt would close a menu that the click has opened.)
///
/// When the window becomes active or comes to the front all the same, the window that was active gets the focus back
/// and the other one returns to its place: soon after posted input, and as long as a menu is open that came with it,
/// until soon after that has closed. What the user does herself stays: she goes to the window with the pointer, or
/// closes, minimises or leaves the window that was active. Main thread.
class FocusKeeper final : private HeldWeakly<FocusKeeper> {
    friend HeldWeakly<FocusKeeper>;

public:
    /// All must outlive the keeper.
    FocusKeeper(Connection& connection, Scheduler& scheduler, const ClientWindows& windows);
    /// Takes back at once what was lent.
    ~FocusKeeper();

    /// Before every event that is posted; `isPress` for the press of a button. True when the program was told just now
    /// that it has the focus, which it has to take in before a press.
    [[nodiscard]] bool willPost(const InputTarget& target, bool isPress);
    /// After the last button that was down in the window came up.
    void didReleaseAll(const InputTarget& target);
    /// The user switches to another window herself: nothing is given back.
    void userSwitches() { guarded.reset(); }

private:
    using Clock = std::chrono::steady_clock;
    /// What is to stay as it is.
    struct Guarded {
        xcb_window_t window = XCB_WINDOW_NONE;
        std::optional<xcb_window_t> active;
        /// The window that lies directly over it; none for the topmost one.
        std::optional<xcb_window_t> over;
        Clock::time_point end;
    };

    void guard(xcb_window_t window);
    void handle(const xcb_generic_event_t& event);
    void restore();
    [[nodiscard]] bool isOnScreen(xcb_window_t window) const;
    [[nodiscard]] bool isPointerIn(xcb_window_t window) const;
    [[nodiscard]] bool lend(xcb_window_t window);
    void takeBackSoon();
    void takeBackUnlessMenuIsOpen();
    void menuClosed();
    void takeBack();
    [[nodiscard]] std::optional<xcb_window_t> openMenuOf(xcb_window_t window) const;
    [[nodiscard]] bool isSameProgram(xcb_window_t window, xcb_window_t other) const;

    Connection& connection;
    Scheduler& scheduler;
    const ClientWindows& windows;
    RegistrationToken rootSelection;
    RegistrationToken rootEvents;
    std::optional<Guarded> guarded;
    /// The window that was told that it has the focus.
    std::optional<xcb_window_t> lent;
    /// Counts the presses, so that a later one puts off taking back.
    unsigned presses = 0;
    RegistrationToken menuSelection;
    RegistrationToken menuEvents;
};

} // namespace quillon::x11
