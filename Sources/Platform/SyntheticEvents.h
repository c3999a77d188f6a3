#pragma once

#include "Platform/Geometry.h"
#include "Platform/ProcessInfo.h"
#include "Platform/SystemEvent.h"

#include <cstdint>
#include <memory>

namespace quillon {

/// The state of the input devices that events of a source build on (CGEventSourceStateID).
enum class EventSourceState : std::int32_t {
    combinedSession = 0, ///< kCGEventSourceStateCombinedSessionState
};

/// Where synthetic events come from (CGEventSource). Immutable.
class EventSource {
public:
    EventSource() = default;
    EventSource(const EventSource&) = delete;
    EventSource& operator=(const EventSource&) = delete;
    virtual ~EventSource() = default;
};

/// CGMouseButton.
enum class MouseButton : std::uint32_t {
    left = 0,
    right = 1,
    center = 2,
};

/// CGScrollEventUnit.
enum class ScrollEventUnit : std::uint32_t {
    pixel = 0,
    line = 1,
};

/// An event that this program makes (CGEvent). Main thread.
class SyntheticEvent {
public:
    SyntheticEvent() = default;
    SyntheticEvent(const SyntheticEvent&) = delete;
    SyntheticEvent& operator=(const SyntheticEvent&) = delete;
    virtual ~SyntheticEvent() = default;

    virtual void setIntegerValueField(SystemEventField field, std::int64_t value) = 0;
    virtual void setDoubleValueField(SystemEventField field, double value) = 0;
    /// Replaces all flags.
    virtual void setFlags(EventFlags flags) = 0;
    virtual void setLocation(const DisplayPoint& location) = 0;
    /// Hands the event to the process without activating it (CGEventPostToPid); it reaches the window that its
    /// fields name. Returns at once, whatever the process does with it; events arrive in the order of the calls.
    virtual void postToPid(ProcessID pid) = 0;
};

/// Makes synthetic events. Main thread.
class SyntheticEvents {
public:
    virtual ~SyntheticEvents() = default;

    /// Null when it cannot be made.
    [[nodiscard]] virtual std::shared_ptr<EventSource> makeEventSource(EventSourceState state) = 0;
    /// `source` may be null. Null when the event cannot be made (CGEventCreateMouseEvent).
    [[nodiscard]] virtual std::unique_ptr<SyntheticEvent> makeMouseEvent(const EventSource* source,
                                                                         SystemEventType type,
                                                                         const DisplayPoint& location,
                                                                         MouseButton button) = 0;
    /// Two wheels: vertical, positive towards the top, and horizontal, positive towards the left. `source` may be
    /// null. Null when the event cannot be made (CGEventCreateScrollWheelEvent2).
    [[nodiscard]] virtual std::unique_ptr<SyntheticEvent>
    makeScrollWheelEvent(const EventSource* source, ScrollEventUnit unit, std::int32_t wheel1, std::int32_t wheel2) = 0;
};

} // namespace quillon
