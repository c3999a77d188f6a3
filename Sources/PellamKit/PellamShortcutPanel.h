#pragma once

#include <array>
#include <cstdint>

namespace quillon::PellamShortcutPanel {

/// Virtual key codes of F1 to F20 (kVK_F1 to kVK_F20), which make a shortcut without a modifier.
inline constexpr std::array<std::uint16_t, 20> functionKeyCodes{
    122, 120, 99, 118, 96, 97, 98, 100, 101, 109, 103, 111, 105, 107, 113, 106, 64, 79, 80, 90,
};

} // namespace quillon::PellamShortcutPanel
