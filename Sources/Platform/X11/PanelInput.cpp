#include "Platform/X11/PanelInput.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/PointerButtons.h"

#include <utility>

namespace quillon::x11 {

namespace {

std::uint8_t typeNumber(const xcb_button_press_event_t& event) {
    return eventType(reinterpret_cast<const xcb_generic_event_t&>(event));
}

EventType select(xcb_button_t button, EventType left, EventType right, EventType other) {
    return button == leftButton ? left : button == rightButton ? right : other;
}

/// The button that a move drags with; none for a move without one.
std::optional<xcb_button_t> draggingButton(std::uint16_t state) {
    for (const auto button : {leftButton, rightButton, middleButton}) {
        if ((state & stateBit(button)) != 0) {
            return button;
        }
    }
    return std::nullopt;
}

void describeStep(PanelEvent& translated, xcb_button_t wheel) {
    translated.type = EventType::scrollWheel;
    switch (wheel) {
    case wheelUp:
        translated.scrollingDeltaY = 1;
        break;
    case wheelDown:
        translated.scrollingDeltaY = -1;
        break;
    case wheelLeft:
        translated.scrollingDeltaX = 1;
        break;
    default:
        translated.scrollingDeltaX = -1;
        break;
    }
}

} // namespace

PanelInput::PanelInput(Connection& connection, Scheduler& scheduler, Keyboard& keyboard,
                       std::function<PixelRect()> frame, std::function<void(const PanelEvent&)> deliver)
    : connection(connection), scheduler(scheduler), keyboard(keyboard), frame(std::move(frame)),
      deliver(std::move(deliver)) {}

void PanelInput::handle(const xcb_generic_event_t& event) {
    const auto type = eventType(event);
    if (type != XCB_BUTTON_PRESS && type != XCB_BUTTON_RELEASE && type != XCB_MOTION_NOTIFY) {
        return;
    }
    const auto& input = as<xcb_button_press_event_t>(event);
    if (type == XCB_MOTION_NOTIFY && !waiting.empty() && typeNumber(waiting.back()) == XCB_MOTION_NOTIFY) {
        waiting.back() = input;
        return;
    }
    waiting.push_back(input);
    scheduler.mainAsync(weakly([](PanelInput& self) { self.deliverFirst(); }));
}

void PanelInput::deliverFirst() {
    const auto event = waiting.front();
    waiting.pop_front();
    if (const auto translated = translate(event)) {
        deliver(*translated);
    }
}

std::optional<PanelEvent> PanelInput::translate(const xcb_button_press_event_t& event) {
    const auto type = typeNumber(event);
    // A step of the wheel is its press.
    if ((type == XCB_BUTTON_RELEASE && isWheel(event.detail)) ||
        (type == XCB_MOTION_NOTIFY && !draggingButton(event.state))) {
        return std::nullopt;
    }
    // The panel may have moved since the event: the pointer's place on the screen counts.
    const auto place = frame();
    const double scale = connection.scale();
    PanelEvent translated;
    translated.locationInWindow = {(event.root_x - place.x) / scale, (place.y + place.height - event.root_y) / scale};
    translated.modifierFlags = keyboard.flags(event.state);
    switch (type) {
    case XCB_BUTTON_PRESS:
        describePress(translated, event);
        break;
    case XCB_BUTTON_RELEASE:
        describeRelease(translated, event);
        break;
    default:
        describeMove(translated, event);
        break;
    }
    return translated;
}

void PanelInput::describePress(PanelEvent& translated, const xcb_button_press_event_t& event) {
    if (isWheel(event.detail)) {
        describeStep(translated, event.detail);
        return;
    }
    translated.type =
        select(event.detail, EventType::leftMouseDown, EventType::rightMouseDown, EventType::otherMouseDown);
    translated.buttonNumber = buttonNumber(event.detail);
    translated.pressure = 1;
    translated.clickCount =
        clicks.press(event.detail, event.time, event.root_x, event.root_y, readClickSettings(connection));
}

void PanelInput::describeRelease(PanelEvent& translated, const xcb_button_press_event_t& event) const {
    translated.type = select(event.detail, EventType::leftMouseUp, EventType::rightMouseUp, EventType::otherMouseUp);
    translated.buttonNumber = buttonNumber(event.detail);
    translated.clickCount = clicks.release(event.detail);
}

void PanelInput::describeMove(PanelEvent& translated, const xcb_button_press_event_t& event) {
    const auto button = *draggingButton(event.state);
    translated.type =
        select(button, EventType::leftMouseDragged, EventType::rightMouseDragged, EventType::otherMouseDragged);
    translated.buttonNumber = buttonNumber(button);
    translated.pressure = 1;
    clicks.drag(event.root_x, event.root_y);
}

} // namespace quillon::x11
