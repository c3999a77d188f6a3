#pragma once

#include "XClient.h"

#include <xcb/damage.h>

namespace quillon::e2e {

/// Counts from outside how often a window's picture changes.
class FrameCounter {
public:
    explicit FrameCounter(const std::string& displayName);

    /// Over a time that begins with the first change, so that the count is not off by a part of an interval. 0 when
    /// nothing changes during that time.
    [[nodiscard]] double framesPerSecond(Window window, Milliseconds time) const;

private:
    XClient client;
};

} // namespace quillon::e2e
