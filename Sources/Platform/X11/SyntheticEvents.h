#pragma once

#include "Platform/SyntheticEvents.h"
#include "Platform/X11/PostedInput.h"
#include "Platform/X11/ScrollSteps.h"

namespace quillon::x11 {

/// Synthetic events as X events that are sent to the window that they name.
class X11SyntheticEvents final : public SyntheticEvents {
public:
    /// All must outlive the port.
    X11SyntheticEvents(Connection& connection, Scheduler& scheduler, Keyboard& keyboard, FocusKeeper& focusKeeper)
        : connection(connection), input(connection, scheduler, keyboard, focusKeeper) {}

    [[nodiscard]] std::shared_ptr<EventSource> makeEventSource(EventSourceState state) override;
    [[nodiscard]] std::unique_ptr<SyntheticEvent> makeMouseEvent(const EventSource* source, SystemEventType type,
                                                                 const DisplayPoint& location,
                                                                 MouseButton button) override;
    [[nodiscard]] std::unique_ptr<SyntheticEvent> makeScrollWheelEvent(const EventSource* source, ScrollEventUnit unit,
                                                                       std::int32_t wheel1,
                                                                       std::int32_t wheel2) override;

private:
    Connection& connection;
    PostedInput input;
    ScrollSteps scrollSteps;
};

} // namespace quillon::x11
