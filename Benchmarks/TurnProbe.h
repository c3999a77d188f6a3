#pragma once

#include <array>
#include <atomic>
#include <cstdint>

namespace quillon::benchmarks {

/// Names the file that holds the record below, in the environment of the probed process.
inline constexpr auto turnRecordVariable = "QUILLON_TURN_RECORD";

/// How long the turns of a process's event loop took, without waits for a processor: what its main thread does between
/// two waits for events. Lies in a file that the measured process writes and the benchmark reads, both by mapping it.
struct TurnRecord {
    static constexpr std::size_t capacity = 1 << 20;

    /// Turns beyond the capacity are not recorded.
    std::atomic<std::uint64_t> count;
    std::array<float, capacity> milliseconds;
};
static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

} // namespace quillon::benchmarks
