#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quillon::benchmarks {

/// Processor time that the processes have used so far, in seconds: that of the threads that they have now.
[[nodiscard]] double processorSeconds(const std::vector<pid_t>& processes);

/// How often the process's threads have gone to sleep and were woken, so far.
[[nodiscard]] std::uint64_t wakeups(pid_t process);

/// Memory in use now (VmRSS), in kilobytes.
[[nodiscard]] std::uint64_t residentKilobytes(pid_t process);

/// The processes whose parent, or parent's parent and so on, is this one.
[[nodiscard]] std::vector<pid_t> descendants(pid_t process);

} // namespace quillon::benchmarks
