#pragma once

#include <array>
#include <cstddef>
#include <cstdio>
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

/// The columns of a distribution: least, p25, median, p75, p90, p95, p99 and most.
inline constexpr std::array<double, 8> shownFractions{0.0, 0.25, 0.5, 0.75, 0.9, 0.95, 0.99, 1.0};

/// Ends the line.
inline void printDistribution(const Latencies& sorted) {
    for (const double fraction : shownFractions) {
        std::printf(" %7.2f", percentile(sorted, fraction));
    }
    std::printf("\n");
}

} // namespace quillon::benchmarks
