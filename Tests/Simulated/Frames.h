#pragma once

#include "Platform/Geometry.h"
#include "Simulated/Misuse.h"

#include <fmt/format.h>

#include <cmath>
#include <string>
#include <string_view>

namespace quillon::simulated {

inline void requireFrame(const ScreenRect& frame, std::string_view operation) {
    const auto& [origin, size] = frame;
    if (!std::isfinite(origin.x) || !std::isfinite(origin.y) || std::isnan(size.width) || std::isnan(size.height)) {
        misuse(fmt::format("{} with a frame that is no rectangle", operation));
    }
}

/// For the journal: "200,300 400x300".
[[nodiscard]] inline std::string describe(const ScreenRect& rect) {
    return fmt::format("{},{} {}x{}", rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

} // namespace quillon::simulated
