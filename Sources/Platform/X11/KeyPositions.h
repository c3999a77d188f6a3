#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace quillon::x11 {

/// A key by its place on the keyboard: macOS's number for it and the name that a keyboard description of the X server
/// gives it, at most four letters.
struct KeyPosition {
    std::uint16_t virtualKeyCode = 0;
    std::string_view name;
};

/// The keys that both systems know, modifier keys left out: those are no key presses on macOS. Where keyboard
/// descriptions name a key differently it has several entries, and the first that a description knows counts.
[[nodiscard]] std::span<const KeyPosition> keyPositions();

} // namespace quillon::x11
