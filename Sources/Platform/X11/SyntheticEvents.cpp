#include "Platform/X11/SyntheticEvents.h"

#include "Platform/X11/PointerButtons.h"

#include <map>

namespace quillon::x11 {

namespace {

/// The input devices' state goes into the events by itself: the core sets every flag.
class X11EventSource final : public EventSource {};

/// The fields count clicks too, and name the process; X programs count for themselves, and a window has one owner.
class X11SyntheticEvent : public SyntheticEvent {
public:
    X11SyntheticEvent(Connection& connection, PostedInput& input, const DisplayPoint& location)
        : input(input), connection(connection), location(location) {}

    void setIntegerValueField(SystemEventField field, std::int64_t value) override { integers[field] = value; }
    void setDoubleValueField(SystemEventField field, double value) override { doubles[field] = value; }
    void setFlags(EventFlags newFlags) override { flags = newFlags; }
    void setLocation(const DisplayPoint& newLocation) override { location = newLocation; }

    void postToPid(ProcessID /*pid*/) override {
        const auto window = integer(SystemEventField::mouseEventWindowUnderMousePointer);
        post({static_cast<xcb_window_t>(window), connection.toPixel(location), flags, connection.latestTime()});
    }

protected:
    /// 0 for one that was not set.
    [[nodiscard]] std::int64_t integer(SystemEventField field) const {
        const auto found = integers.find(field);
        return found != integers.end() ? found->second : 0;
    }
    [[nodiscard]] double real(SystemEventField field) const {
        const auto found = doubles.find(field);
        return found != doubles.end() ? found->second : 0;
    }
    virtual void post(const PointerAction& action) = 0;

    PostedInput& input;

private:
    Connection& connection;
    DisplayPoint location;
    EventFlags flags = 0;
    std::map<SystemEventField, std::int64_t> integers;
    std::map<SystemEventField, double> doubles;
};

class MouseEvent final : public X11SyntheticEvent {
public:
    MouseEvent(Connection& connection, PostedInput& input, SystemEventType type, const DisplayPoint& location,
               MouseButton button)
        : X11SyntheticEvent(connection, input, location), type(type) {
        setIntegerValueField(SystemEventField::mouseEventButtonNumber, static_cast<std::int64_t>(button));
    }

private:
    void post(const PointerAction& action) override {
        const auto button = buttonOfNumber(integer(SystemEventField::mouseEventButtonNumber));
        switch (type) {
        case SystemEventType::leftMouseDown:
        case SystemEventType::rightMouseDown:
        case SystemEventType::otherMouseDown:
            input.press(action, button);
            break;
        case SystemEventType::leftMouseUp:
        case SystemEventType::rightMouseUp:
        case SystemEventType::otherMouseUp:
            input.release(action, button);
            break;
        case SystemEventType::leftMouseDragged:
        case SystemEventType::rightMouseDragged:
        case SystemEventType::otherMouseDragged:
            input.drag(action);
            break;
        default:
            break;
        }
    }

    SystemEventType type;
};

class ScrollEvent final : public X11SyntheticEvent {
public:
    ScrollEvent(Connection& connection, PostedInput& input, ScrollSteps& scrollSteps, ScrollEventUnit unit,
                std::int32_t wheel1, std::int32_t wheel2)
        : X11SyntheticEvent(connection, input, {}), scrollSteps(scrollSteps), unit(unit), wheel1(wheel1),
          wheel2(wheel2) {}

private:
    void post(const PointerAction& action) override {
        auto steps = ScrollSteps::ofLines(wheel1, wheel2);
        if (integer(SystemEventField::scrollWheelEventIsContinuous) != 0) {
            // The wheels hold the same, rounded.
            steps = scrollSteps.steps(action.window, real(SystemEventField::scrollWheelEventPointDeltaAxis1),
                                      real(SystemEventField::scrollWheelEventPointDeltaAxis2));
        } else if (unit == ScrollEventUnit::pixel) {
            steps = scrollSteps.steps(action.window, wheel1, wheel2);
        }
        if (steps != ScrollSteps::Steps()) {
            input.scroll(action, steps.vertical, steps.horizontal);
        }
    }

    ScrollSteps& scrollSteps;
    ScrollEventUnit unit;
    std::int32_t wheel1;
    std::int32_t wheel2;
};

} // namespace

std::shared_ptr<EventSource> X11SyntheticEvents::makeEventSource(EventSourceState /*state*/) {
    return std::make_shared<X11EventSource>();
}

std::unique_ptr<SyntheticEvent> X11SyntheticEvents::makeMouseEvent(const EventSource* /*source*/, SystemEventType type,
                                                                   const DisplayPoint& location, MouseButton button) {
    return std::make_unique<MouseEvent>(connection, input, type, location, button);
}

std::unique_ptr<SyntheticEvent> X11SyntheticEvents::makeScrollWheelEvent(const EventSource* /*source*/,
                                                                         ScrollEventUnit unit, std::int32_t wheel1,
                                                                         std::int32_t wheel2) {
    return std::make_unique<ScrollEvent>(connection, input, scrollSteps, unit, wheel1, wheel2);
}

} // namespace quillon::x11
