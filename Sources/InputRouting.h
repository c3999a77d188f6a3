#pragma once

namespace quillon {

/// What input on a copy does to the real window; macOS changed it with version 27.
enum class InputRouting {
    /// Clicks and scrolling are forwarded, as up to macOS 26.
    forward,
    /// Scrolling goes through Accessibility and a click switches to the real window, as from macOS 27 on.
    scroll,
};

} // namespace quillon
