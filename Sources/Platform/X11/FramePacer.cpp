#include "Platform/X11/FramePacer.h"

#include <algorithm>
#include <utility>

namespace quillon::x11 {

namespace {

/// The part of the interval after which the next frame may be drawn. A little less than the whole one, so that a
/// source that draws at the very rate of the cap is never late by a fraction and then waits for a whole frame.
constexpr double intervalPart = 0.97;

FramePacer::Clock::duration duration(Seconds seconds) {
    return std::chrono::duration_cast<FramePacer::Clock::duration>(seconds);
}

} // namespace

FramePacer::FramePacer(Scheduler& scheduler, Seconds interval, std::function<void(Seconds)> draw)
    : scheduler(scheduler), interval(interval), draw(std::move(draw)) {}

void FramePacer::markDirty() {
    if (std::exchange(dirty, true)) {
        return;
    }
    changed = Clock::now();
    arm();
}

void FramePacer::holdUntil(Clock::time_point moment) {
    heldUntil = moment;
    if (dirty) {
        arm();
    }
}

void FramePacer::setInterval(Seconds newInterval) {
    if (std::exchange(interval, newInterval) != newInterval && dirty) {
        arm();
    }
}

void FramePacer::stop() {
    dirty = false;
    ++timer;
}

void FramePacer::arm() {
    auto due = heldUntil;
    if (lastDrawn != Clock::time_point()) {
        due = std::max(due, lastDrawn + duration(interval * intervalPart));
    }
    auto draw = weakly([number = ++timer](FramePacer& self) { self.fire(number); });
    const auto now = Clock::now();
    if (due <= now) {
        scheduler.mainAsync(std::move(draw));
    } else {
        scheduler.mainAfter(due - now, std::move(draw));
    }
}

void FramePacer::fire(std::uint64_t timerNumber) {
    if (timerNumber != timer) {
        return;
    }
    dirty = false;
    lastDrawn = Clock::now();
    draw(lastDrawn - changed);
}

} // namespace quillon::x11
