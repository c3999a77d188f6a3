#pragma once

#include "HeldWeakly.h"
#include "Platform/Panel.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/ClickCounter.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Keyboard.h"

#include <deque>
#include <functional>
#include <optional>

namespace quillon::x11 {

/// Makes the input events of a panel out of those of its window. Events are handed out in later turns of the event
/// loop, so that whoever gets one may destroy the panel; of several moves in a row only the last one is. Main
/// thread.
class PanelInput : private HeldWeakly<PanelInput> {
    friend HeldWeakly<PanelInput>;

public:
    /// `frame` gives the panel's rectangle on the root window, in pixels.
    PanelInput(Connection& connection, Scheduler& scheduler, Keyboard& keyboard, std::function<PixelRect()> frame,
               std::function<void(const PanelEvent&)> deliver);

    static constexpr std::uint32_t eventMask =
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_MOTION;

    /// Any event of the window.
    void handle(const xcb_generic_event_t& event);

private:
    void deliverFirst();
    [[nodiscard]] std::optional<PanelEvent> translate(const xcb_button_press_event_t& event);
    void describePress(PanelEvent& translated, const xcb_button_press_event_t& event);
    void describeRelease(PanelEvent& translated, const xcb_button_press_event_t& event) const;
    void describeMove(PanelEvent& translated, const xcb_button_press_event_t& event);

    Connection& connection;
    Scheduler& scheduler;
    Keyboard& keyboard;
    std::function<PixelRect()> frame;
    std::function<void(const PanelEvent&)> deliver;
    /// Presses, releases and moves have the same shape.
    std::deque<xcb_button_press_event_t> waiting;
    ClickCounter clicks;
};

} // namespace quillon::x11
