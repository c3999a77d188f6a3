#pragma once

#include "Platform/X11/Connection.h"

#include <optional>
#include <vector>

namespace quillon::x11 {

/// A pixel at which a window lies over another one and takes the input.
struct InputHole {
    xcb_window_t window = XCB_WINDOW_NONE;
    /// In the window.
    PixelPoint at;
    /// The window's input has no shape of its own, so that it follows the window's size.
    bool isPlain = true;
};

/// What keeps input at a pixel of the root window from the window, besides the user's other programs: none when
/// nothing could lead it there, since the window is not shown at that place. Both this and the opening want the server
/// grabbed, so that nothing changes meanwhile.
[[nodiscard]] std::optional<std::vector<InputHole>> findInputHoles(Connection& connection, xcb_window_t window,
                                                                   const PixelPoint& at);

/// As long as this object lives, windows take no input at one pixel each. The root window tells which ones, so that a
/// run that ends in the middle leaves nothing for good.
class InputOpening {
public:
    InputOpening(Connection& connection, std::vector<InputHole> holes);
    ~InputOpening();
    InputOpening(const InputOpening&) = delete;
    InputOpening& operator=(const InputOpening&) = delete;

private:
    Connection& connection;
    std::vector<InputHole> holes;
};

/// Closes what an earlier run has left open.
void closeForgottenHoles(Connection& connection);

} // namespace quillon::x11
