#pragma once

#include <stdexcept>

namespace quillon::benchmarks {

/// Ends the benchmark, which would measure something else, unless that was done.
inline void require(bool done, const char* problem) {
    if (!done) {
        throw std::runtime_error(problem);
    }
}

} // namespace quillon::benchmarks
