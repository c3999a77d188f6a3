#pragma once

#include "Platform/X11/Connection.h"

#include <optional>

namespace quillon::x11 {

/// How a program takes the pointer's events that are posted to it. Measured with xterm 379, Tk 8.6, GTK 3.24 and Qt
/// 5.15, covered while another program is active; docs/matrix.md shows what works in which program.
enum class InputStyle {
    /// GDK (GTK, Firefox, LibreOffice): the outermost window takes every event, and looks for the part under the
    /// pointer by itself, but takes neither press nor wheel before the pointer has entered it.
    outermost,
    /// The same without GDK (Qt, Chromium, games): the outermost window is the only one. A press in a window that
    /// lacks the focus makes such a program ask for it.
    outermostWithFocus,
    /// Every part has a window of its own (xterm, Tk, Motif). A button of Tk takes a press only once the pointer has
    /// entered it.
    parts,
};

/// How events reach a program that may not notice that they are not the user's.
enum class InputRoute {
    postedEvents,
    /// For what listens to XInput 2 alone, whose events cannot be posted: GTK 4, and Qt where the wheel is concerned.
    secondPointer,
};

/// Which window of a program gets the pointer's events, and how.
struct InputTarget {
    /// The one that the window manager knows.
    xcb_window_t outermost = XCB_WINDOW_NONE;
    xcb_window_t window = XCB_WINDOW_NONE;
    InputStyle style = InputStyle::outermost;
    InputRoute buttonRoute = InputRoute::postedEvents;
    InputRoute wheelRoute = InputRoute::postedEvents;

    /// Whether it must be told by events that the pointer comes and goes.
    [[nodiscard]] bool wantsPointerInside() const {
        return style != InputStyle::outermostWithFocus && buttonRoute == InputRoute::postedEvents;
    }
};

/// The target for an event at a pixel of the root window; none when the window has closed. Costs some round trips to
/// the server, but none to the program. Main thread.
[[nodiscard]] std::optional<InputTarget> findInputTarget(Connection& connection, xcb_window_t outermost,
                                                         const PixelPoint& at);

/// What a press does at a place of a window that draws its own title bar and borders, as GTK programs may.
enum class OwnDecoration {
    none,
    /// Dragging makes the program ask the window manager to move the window, which raises it and may take the pointer.
    titleBar,
    /// The press alone makes it ask for a change of size.
    border,
};

/// `at` is relative to the window.
[[nodiscard]] OwnDecoration ownDecorationAt(Connection& connection, xcb_window_t outermost, const PixelPoint& at);

} // namespace quillon::x11
