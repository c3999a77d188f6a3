#include "Platform/X11/PanelInput.h"

#include "Platform/X11/Event.h"

#include <array>
#include <utility>

namespace quillon::x11 {

namespace {

// Button numbers; the wheel's steps are buttons too.
constexpr xcb_button_t leftButton = 1;
constexpr xcb_button_t rightButton = 3;
constexpr xcb_button_t wheelUp = 4;
constexpr xcb_button_t wheelDown = 5;
constexpr xcb_button_t wheelRight = 7;

std::uint8_t typeNumber(const xcb_button_press_event_t& event) {
    return eventType(reinterpret_cast<const xcb_generic_event_t&>(event));
}

bool isWheel(xcb_button_t button) {
    return button >= wheelUp && button <= wheelRight;
}

EventType select(xcb_button_t button, EventType left, EventType right, EventType other) {
    return button == leftButton ? left : button == rightButton ? right : other;
}

ModifierFlags modifierFlags(std::uint16_t state) {
    constexpr std::array<std::pair<std::uint16_t, ModifierFlags>, 4> modifiers{{
        {XCB_MOD_MASK_SHIFT, modifierFlagShift},
        {XCB_MOD_MASK_CONTROL, modifierFlagControl},
        {XCB_MOD_MASK_1, modifierFlagOption},  // Alt
        {XCB_MOD_MASK_4, modifierFlagCommand}, // Super
    }};
    ModifierFlags flags = 0;
    for (const auto& [mask, flag] : modifiers) {
        flags |= (state & mask) != 0 ? flag : 0;
    }
    return flags;
}

} // namespace

PanelInput::PanelInput(Scheduler& scheduler, double scale, std::function<PixelRect()> frame,
                       std::function<void(const PanelEvent&)> deliver)
    : scheduler(scheduler), scale(scale), frame(std::move(frame)), deliver(std::move(deliver)) {}

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
    const auto type = typeOf(event);
    if (!type) {
        return std::nullopt;
    }
    // The panel may have moved since the event: the pointer's place on the screen counts.
    const auto place = frame();
    PanelEvent translated;
    translated.type = *type;
    translated.locationInWindow = {(event.root_x - place.x) / scale, (place.y + place.height - event.root_y) / scale};
    translated.modifierFlags = modifierFlags(event.state);
    if (*type == EventType::scrollWheel) {
        translated.scrollingDeltaY = event.detail == wheelUp ? 1 : event.detail == wheelDown ? -1 : 0;
    }
    return translated;
}

std::optional<EventType> PanelInput::typeOf(const xcb_button_press_event_t& event) {
    const auto button = event.detail;
    switch (typeNumber(event)) {
    case XCB_BUTTON_PRESS:
        if (isWheel(button)) {
            return EventType::scrollWheel;
        }
        held.insert(button);
        return select(button, EventType::leftMouseDown, EventType::rightMouseDown, EventType::otherMouseDown);
    case XCB_BUTTON_RELEASE:
        if (isWheel(button)) {
            return std::nullopt; // a step of the wheel is its press
        }
        held.erase(button);
        return select(button, EventType::leftMouseUp, EventType::rightMouseUp, EventType::otherMouseUp);
    default:
        if (held.empty()) {
            return std::nullopt;
        }
        return held.contains(leftButton)    ? EventType::leftMouseDragged
               : held.contains(rightButton) ? EventType::rightMouseDragged
                                            : EventType::otherMouseDragged;
    }
}

} // namespace quillon::x11
