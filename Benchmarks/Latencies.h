#pragma once

#include <cstddef>
#include <vector>

namespace quillon::benchmarks {

/// In milliseconds, sorted.
using Latencies = std::vector<double>;

/// The value below which that fraction of the latencies lies; 0 when there are none.
[[nodiscard]] inline double percentile(const Latencies& sorted, double fraction) {
    if (sorted.empty()) {
        return 0;
    }
    return sorted[static_cast<std::size_t>(fraction * static_cast<double>(sorted.size() - 1) + 0.5)];
}

} // namespace quillon::benchmarks
