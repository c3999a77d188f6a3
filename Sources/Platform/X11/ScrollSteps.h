#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <unordered_map>

namespace quillon::x11 {

/// Turns scrolling in points into steps of the wheel, which is all that X events can say. What is left over counts
/// with the next scrolling in the same window, so that many small movements are as good as a large one.
class ScrollSteps {
public:
    struct Steps {
        int vertical = 0;
        int horizontal = 0;

        bool operator==(const Steps&) const = default;
    };

    /// That of a touchpad's steps in the libinput driver of the X server (ScrollPixelDistance).
    static constexpr double pointsPerStep = 15;

    /// For one event. A hand makes a few in one, and a fast swipe some ten; this many lead past some 15 pages. What a
    /// broken device or program asks for beyond is left out, or it would hold up the program that has to take it.
    static constexpr int mostSteps = 100;

    /// In points.
    [[nodiscard]] Steps steps(xcb_window_t window, double vertical, double horizontal);
    /// Lines are steps.
    [[nodiscard]] static Steps ofLines(std::int32_t vertical, std::int32_t horizontal);

private:
    struct Rest {
        double vertical = 0;
        double horizontal = 0;
    };
    std::unordered_map<xcb_window_t, Rest> rests;
};

} // namespace quillon::x11
