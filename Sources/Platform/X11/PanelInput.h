#pragma once

#include "HeldWeakly.h"
#include "Platform/Panel.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/Connection.h"

#include <deque>
#include <functional>
#include <optional>
#include <set>

namespace quillon::x11 {

/// Makes the input events of a panel out of those of its window. Events are handed out in later turns of the event
/// loop, so that whoever gets one may destroy the panel; of several moves in a row only the last one is. Main
/// thread.
class PanelInput : private HeldWeakly<PanelInput> {
    friend HeldWeakly<PanelInput>;

public:
    /// `frame` gives the panel's rectangle on the root window, in pixels.
    PanelInput(Scheduler& scheduler, double scale, std::function<PixelRect()> frame,
               std::function<void(const PanelEvent&)> deliver);

    static constexpr std::uint32_t eventMask =
        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_MOTION;

    /// Any event of the window.
    void handle(const xcb_generic_event_t& event);

private:
    void deliverFirst();
    [[nodiscard]] std::optional<PanelEvent> translate(const xcb_button_press_event_t& event);
    [[nodiscard]] std::optional<EventType> typeOf(const xcb_button_press_event_t& event);

    Scheduler& scheduler;
    double scale;
    std::function<PixelRect()> frame;
    std::function<void(const PanelEvent&)> deliver;
    /// Presses, releases and moves have the same shape.
    std::deque<xcb_button_press_event_t> waiting;
    /// Buttons that are down, without those of the wheel.
    std::set<xcb_button_t> held;
};

} // namespace quillon::x11
