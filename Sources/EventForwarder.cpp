#include "EventForwarder.h"

#include "EventFlags.h"
#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"
#include "Platform/SyntheticEvents.h"
#include "ProgrammingError.h"
#include "WindowOverlay.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace quillon::EventForwarder {

namespace {

OneTimeValue<std::shared_ptr<EventSource>> eventSourceValue;

/// Null when it could not be made; events then have no source.
const EventSource* eventSource() {
    return eventSourceValue
        .get([] { return platform().syntheticEvents().makeEventSource(EventSourceState::combinedSession); })
        .get();
}

struct MouseType {
    SystemEventType type;
    MouseButton button;
};

std::optional<MouseType> mouseType(EventType type) {
    switch (type) {
    case EventType::leftMouseDown:
        return MouseType{SystemEventType::leftMouseDown, MouseButton::left};
    case EventType::leftMouseUp:
        return MouseType{SystemEventType::leftMouseUp, MouseButton::left};
    case EventType::leftMouseDragged:
        return MouseType{SystemEventType::leftMouseDragged, MouseButton::left};
    case EventType::rightMouseDown:
        return MouseType{SystemEventType::rightMouseDown, MouseButton::right};
    case EventType::rightMouseUp:
        return MouseType{SystemEventType::rightMouseUp, MouseButton::right};
    case EventType::rightMouseDragged:
        return MouseType{SystemEventType::rightMouseDragged, MouseButton::right};
    case EventType::otherMouseDown:
        return MouseType{SystemEventType::otherMouseDown, MouseButton::center};
    case EventType::otherMouseUp:
        return MouseType{SystemEventType::otherMouseUp, MouseButton::center};
    case EventType::otherMouseDragged:
        return MouseType{SystemEventType::otherMouseDragged, MouseButton::center};
    default:
        return std::nullopt;
    }
}

/// The delta as whole steps, at least one in its direction, so that the smallest movement scrolls too.
std::int32_t scrollSteps(double delta) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (delta == 0) {
        return 0;
    }
    const double steps = std::round(delta);
    if (steps == 0) {
        return delta > 0 ? 1 : -1;
    }
    if (steps < Limits::min() || steps > Limits::max()) {
        programmingError(fmt::format("a scroll by {} steps does not fit into 32 bits", steps));
    }
    return static_cast<std::int32_t>(steps);
}

void postToWindow(SyntheticEvent& event, WindowID windowID, ProcessID pid) {
    event.setIntegerValueField(SystemEventField::eventTargetUnixProcessID, pid);
    event.setIntegerValueField(SystemEventField::mouseEventWindowUnderMousePointer, windowID);
    event.setIntegerValueField(SystemEventField::mouseEventWindowUnderMousePointerThatCanHandleThisEvent, windowID);
    event.setIntegerValueField(SystemEventField::undocumented51, windowID);
    event.setIntegerValueField(SystemEventField::undocumented58, 1);
    event.postToPid(pid);
}

void postMouse(const PanelEvent& event, const DisplayPoint& point, WindowID windowID, ProcessID pid) {
    const auto kind = mouseType(event.type);
    if (!kind) {
        return;
    }
    const auto synthetic = platform().syntheticEvents().makeMouseEvent(eventSource(), kind->type, point, kind->button);
    if (!synthetic) {
        return;
    }
    synthetic->setFlags(eventFlags(event.modifierFlags));
    synthetic->setIntegerValueField(SystemEventField::mouseEventClickState,
                                    std::max<std::int64_t>(event.clickCount, 1));
    synthetic->setDoubleValueField(SystemEventField::mouseEventPressure, event.pressure);
    if (kind->button == MouseButton::center) {
        synthetic->setIntegerValueField(SystemEventField::mouseEventButtonNumber, event.buttonNumber);
    }
    postToWindow(*synthetic, windowID, pid);
}

void postScroll(const PanelEvent& event, const DisplayPoint& point, WindowID windowID, ProcessID pid) {
    // Another program may have made the event, so a delta need not be a number, and then says nothing to repeat.
    if (std::isnan(event.scrollingDeltaX) || std::isnan(event.scrollingDeltaY)) {
        return;
    }
    const bool isPrecise = event.hasPreciseScrollingDeltas;
    const auto synthetic = platform().syntheticEvents().makeScrollWheelEvent(
        eventSource(), isPrecise ? ScrollEventUnit::pixel : ScrollEventUnit::line, scrollSteps(event.scrollingDeltaY),
        scrollSteps(event.scrollingDeltaX));
    if (!synthetic) {
        return;
    }
    if (isPrecise) {
        synthetic->setIntegerValueField(SystemEventField::scrollWheelEventIsContinuous, 1);
        synthetic->setDoubleValueField(SystemEventField::scrollWheelEventPointDeltaAxis1, event.scrollingDeltaY);
        synthetic->setDoubleValueField(SystemEventField::scrollWheelEventPointDeltaAxis2, event.scrollingDeltaX);
    }
    synthetic->setFlags(eventFlags(event.modifierFlags));
    synthetic->setLocation(point);
    postToWindow(*synthetic, windowID, pid);
}

} // namespace

void forward(const PanelEvent& event, const WindowOverlay& overlay) {
    const auto bounds = WindowOverlay::windowBounds(overlay.targetWindowID());
    if (!bounds) {
        return;
    }
    const auto [width, height] = overlay.frame().size;
    if (!(width > 0 && height > 0)) {
        return;
    }
    const double fx = event.locationInWindow.x / width;
    const double fy = (height - event.locationInWindow.y) / height;
    if (!(fx >= 0 && fx <= 1 && fy >= 0 && fy <= 1)) {
        return;
    }
    const DisplayPoint point{bounds->minX() + fx * bounds->size.width, bounds->minY() + fy * bounds->size.height};
    const auto post = event.type == EventType::scrollWheel ? postScroll : postMouse;
    post(event, point, overlay.targetWindowID(), overlay.targetPID());
}

} // namespace quillon::EventForwarder
