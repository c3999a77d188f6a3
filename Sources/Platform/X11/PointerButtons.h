#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace quillon::x11 {

// The buttons of the core protocol. The steps of the wheel are buttons too.
inline constexpr xcb_button_t leftButton = 1;
inline constexpr xcb_button_t middleButton = 2;
inline constexpr xcb_button_t rightButton = 3;
inline constexpr xcb_button_t wheelUp = 4;
inline constexpr xcb_button_t wheelDown = 5;
inline constexpr xcb_button_t wheelLeft = 6;
inline constexpr xcb_button_t wheelRight = 7;

[[nodiscard]] inline bool isWheel(xcb_button_t button) {
    return button >= wheelUp && button <= wheelRight;
}

/// The bit of an event's state that says that the button is down; 0 for a button that has none.
[[nodiscard]] inline std::uint16_t stateBit(xcb_button_t button) {
    constexpr xcb_button_t lastWithBit = 5;
    return static_cast<std::uint16_t>(button <= lastWithBit ? XCB_BUTTON_MASK_1 << (button - 1) : 0);
}

/// The number that macOS gives a button: 0 left, 1 right, 2 the middle one, then those beyond the wheel.
[[nodiscard]] inline std::int64_t buttonNumber(xcb_button_t button) {
    switch (button) {
    case leftButton:
        return 0;
    case rightButton:
        return 1;
    case middleButton:
        return 2;
    default:
        return button - (wheelRight - middleButton);
    }
}

/// The other way round.
[[nodiscard]] inline xcb_button_t buttonOfNumber(std::int64_t number) {
    switch (number) {
    case 0:
        return leftButton;
    case 1:
        return rightButton;
    case 2:
        return middleButton;
    default:
        return static_cast<xcb_button_t>(number + (wheelRight - middleButton));
    }
}

} // namespace quillon::x11
