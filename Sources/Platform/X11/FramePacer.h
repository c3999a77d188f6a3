#pragma once

#include "HeldWeakly.h"
#include "Platform/Scheduler.h"

#include <chrono>
#include <cstdint>
#include <functional>

namespace quillon::x11 {

/// Decides when a frame is drawn: on the leading edge of a change, and then at most once an interval. A timer runs
/// only while something has changed and is not drawn yet. Main thread.
class FramePacer : private HeldWeakly<FramePacer> {
    friend HeldWeakly<FramePacer>;

public:
    using Clock = std::chrono::steady_clock;

    /// `draw` is told how long ago the first change of the frame was announced.
    FramePacer(Scheduler& scheduler, Seconds interval, std::function<void(Seconds)> draw);

    /// Something has changed: `draw` is called once it is time, in a later turn of the event loop.
    void markDirty();
    /// Nothing is drawn before that moment.
    void holdUntil(Clock::time_point moment);
    void setInterval(Seconds newInterval);
    /// Nothing is drawn any more.
    void stop();

private:
    void arm();
    void fire(std::uint64_t timerNumber);

    Scheduler& scheduler;
    Seconds interval;
    std::function<void(Seconds)> draw;
    bool dirty = false;
    Clock::time_point changed;
    Clock::time_point lastDrawn;
    Clock::time_point heldUntil;
    /// Of the timer that counts; earlier ones that still run do nothing.
    std::uint64_t timer = 0;
};

} // namespace quillon::x11
