#pragma once

#include <cstdint>

namespace quillon {

/// The kind of an input event below the level of any application; the numbers are those of CGEventType.
enum class SystemEventType : std::uint32_t {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    leftMouseDragged = 6,
    rightMouseDragged = 7,
    keyDown = 10,
    scrollWheel = 22,
    otherMouseDown = 25,
    otherMouseUp = 26,
    otherMouseDragged = 27,
    /// A tap was switched off because its callback took too long (kCGEventTapDisabledByTimeout).
    tapDisabledByTimeout = 0xFFFFFFFE,
    /// A tap was switched off on the user's side, at a login window for instance (kCGEventTapDisabledByUserInput).
    tapDisabledByUserInput = 0xFFFFFFFF,
};

/// Modifier bits of an event (CGEventFlags).
using EventFlags = std::uint64_t;
inline constexpr EventFlags eventFlagMaskShift = 0x20000;     ///< kCGEventFlagMaskShift
inline constexpr EventFlags eventFlagMaskControl = 0x40000;   ///< kCGEventFlagMaskControl
inline constexpr EventFlags eventFlagMaskAlternate = 0x80000; ///< kCGEventFlagMaskAlternate
inline constexpr EventFlags eventFlagMaskCommand = 0x100000;  ///< kCGEventFlagMaskCommand

/// What an event tells, by number (CGEventField).
enum class SystemEventField : std::uint32_t {
    mouseEventClickState = 1,      ///< kCGMouseEventClickState: 1 for a click, 2 for a double-click, ...
    mouseEventPressure = 2,        ///< kCGMouseEventPressure, a fraction from 0 to 1
    mouseEventButtonNumber = 3,    ///< kCGMouseEventButtonNumber
    keyboardEventKeycode = 9,      ///< kCGKeyboardEventKeycode: a virtual key code, which names a key by its position
    eventTargetUnixProcessID = 40, ///< kCGEventTargetUnixProcessID
    undocumented51 = 51,           ///< without a public name; holds the target's window number
    undocumented58 = 58,           ///< without a public name; 1 in an event for one window
    scrollWheelEventIsContinuous = 88,                            ///< kCGScrollWheelEventIsContinuous
    mouseEventWindowUnderMousePointer = 91,                       ///< kCGMouseEventWindowUnderMousePointer
    mouseEventWindowUnderMousePointerThatCanHandleThisEvent = 92, ///< ...ThatCanHandleThisEvent
    scrollWheelEventPointDeltaAxis1 = 96, ///< kCGScrollWheelEventPointDeltaAxis1: vertical, a fraction
    scrollWheelEventPointDeltaAxis2 = 97, ///< kCGScrollWheelEventPointDeltaAxis2: horizontal, a fraction
};

/// An input event as the window server carries it (CGEvent). Valid only during the call that hands it out.
class SystemEvent {
public:
    virtual ~SystemEvent() = default;

    /// 0 for a field that this kind of event does not have.
    [[nodiscard]] virtual std::int64_t integerValueField(SystemEventField field) const = 0;
    [[nodiscard]] virtual EventFlags flags() const = 0;
};

} // namespace quillon
