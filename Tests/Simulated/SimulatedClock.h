#pragma once

#include "Platform/Clock.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

/// The wall clock of the virtual time, in UTC. It starts on 1 March 2026 at 14:05:09.123.
class SimulatedClock final : public Clock {
public:
    explicit SimulatedClock(const SimulatedScheduler& scheduler) : scheduler(scheduler) {}

    [[nodiscard]] WallTime now() const override;
    [[nodiscard]] std::unique_ptr<DateFormatter> makeDateFormatter(const std::string& dateFormat) const override;

    /// The user sets the clock back; timers do not notice.
    void setBack(std::chrono::hours by) { setBackBy += by; }

private:
    const SimulatedScheduler& scheduler;
    std::chrono::hours setBackBy{0};
};

} // namespace quillon::simulated
