#include "Platform/X11/FramePacer.h"

#include <algorithm>
#include <utility>

namespace quillon::x11 {

namespace {

/// How long after the first change of a frame it is drawn: applications flush in the middle of their drawing, and
/// this keeps half-drawn frames off the screen.
constexpr Seconds settleTime{0.002};
/// The part of the interval after which the next frame may be drawn. A little less than the whole one, so that a
/// source that draws at the very rate of the cap is never late by a fraction and then waits for a whole frame.
constexpr double intervalPart = 0.97;

FramePacer::Clock::duration duration(Seconds seconds) {
    return std::chrono::duration_cast<FramePacer::Clock::duration>(seconds);
}

} // namespace

FramePacer::FramePacer(Scheduler& scheduler, Seconds interval, std::function<void()> draw)
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
    auto due = std::max(changed + duration(settleTime), heldUntil);
    if (lastDrawn != Clock::time_point()) {
        due = std::max(due, lastDrawn + duration(interval * intervalPart));
    }
    const auto delay = std::max(due - Clock::now(), Clock::duration::zero());
    scheduler.mainAfter(delay, weakly([number = ++timer](FramePacer& self) { self.fire(number); }));
}

void FramePacer::fire(std::uint64_t timerNumber) {
    if (timerNumber != timer) {
        return;
    }
    dirty = false;
    lastDrawn = Clock::now();
    draw();
}

} // namespace quillon::x11
