#include "Simulated/SimulatedScheduler.h"

#include "Simulated/Misuse.h"

#include <algorithm>
#include <cmath>

namespace quillon::simulated {

namespace {

/// More tasks than any scenario needs at one moment: a task that resubmits itself for ever is stopped.
constexpr int mostTasksAtOnce = 100000;

std::chrono::nanoseconds nanoseconds(Seconds duration, std::string_view operation) {
    if (!std::isfinite(duration.count()) || duration.count() < 0) {
        misuse(fmt::format("{} with a duration of {} s", operation, duration.count()));
    }
    return std::chrono::nanoseconds(std::llround(duration.count() * 1e9));
}

void requireTask(const Task& task, std::string_view operation) {
    if (!task) {
        misuse(fmt::format("{} without a task", operation));
    }
}

} // namespace

class SimulatedScheduler::Queue final : public SerialQueue {
public:
    Queue(SimulatedScheduler& scheduler, std::string label) : scheduler(scheduler), label(std::move(label)) {}

    void async(Task task) override {
        requireTask(task, "SerialQueue::async");
        scheduler.journal.record("queue.async {}", label);
        scheduler.submit(label, std::move(task));
    }

private:
    SimulatedScheduler& scheduler;
    std::string label;
};

class SimulatedScheduler::TimerToken final : public Registration {
public:
    TimerToken(SimulatedScheduler& scheduler, std::uint64_t number)
        : scheduler(scheduler), timers(scheduler.timers), number(number) {}
    ~TimerToken() override {
        if (const auto alive = timers.lock()) {
            scheduler.requireMain("ending a repeating timer");
            alive->erase(number);
            scheduler.journal.record("scheduler.endRepeatingTimer");
        }
    }

private:
    SimulatedScheduler& scheduler;
    std::weak_ptr<Timers> timers;
    std::uint64_t number;
};

SimulatedScheduler::SimulatedScheduler(Journal& journal) : journal(journal), current(mainQueue) {}

SimulatedScheduler::~SimulatedScheduler() = default;

void SimulatedScheduler::mainAsync(Task task) {
    requireTask(task, "Scheduler::mainAsync");
    submit(std::string(mainQueue), std::move(task));
}

void SimulatedScheduler::mainAfter(Seconds delay, Task task) {
    requireTask(task, "Scheduler::mainAfter");
    submitAfter(delay, std::string(mainQueue), std::move(task));
}

RegistrationToken SimulatedScheduler::scheduleRepeatingTimer(Seconds interval, Task task) {
    requireMain("Scheduler::scheduleRepeatingTimer");
    requireTask(task, "Scheduler::scheduleRepeatingTimer");
    const auto length = nanoseconds(interval, "Scheduler::scheduleRepeatingTimer");
    if (length.count() == 0) {
        misuse("Scheduler::scheduleRepeatingTimer with an interval of 0 s");
    }
    journal.record("scheduler.scheduleRepeatingTimer {}", interval.count());
    return std::make_unique<TimerToken>(*this,
                                        addTimer({time + length, length, std::string(mainQueue), std::move(task)}));
}

void SimulatedScheduler::sleep(Seconds duration) {
    if (current == mainQueue) {
        misuse("Scheduler::sleep on the main thread");
    }
    journal.record("scheduler.sleep {}", duration.count());
    block(duration);
}

std::shared_ptr<SerialQueue> SimulatedScheduler::makeSerialQueue(const std::string& label) {
    if (label == mainQueue) {
        misuse("Scheduler::makeSerialQueue with the main queue's label");
    }
    return std::make_shared<Queue>(*this, label);
}

void SimulatedScheduler::advance(Seconds duration) {
    enterLoop("advance");
    passTimeUntil(time + nanoseconds(duration, "advance"));
    isInLoop = false;
}

void SimulatedScheduler::runUntilIdle() {
    enterLoop("runUntilIdle");
    runWaitingTasks();
    isInLoop = false;
}

bool SimulatedScheduler::runUntil(const std::function<bool()>& condition, Seconds bound) {
    constexpr Seconds step{0.01};
    runUntilIdle();
    const auto end = time + nanoseconds(bound, "runUntil");
    while (!condition() && time < end) {
        advance(step);
    }
    return condition();
}

std::size_t SimulatedScheduler::waitingTasks(std::string_view queue) const {
    return static_cast<std::size_t>(
        std::count_if(waiting.begin(), waiting.end(), [&](const auto& entry) { return entry.queue == queue; }));
}

std::size_t SimulatedScheduler::repeatingTimers() const {
    return static_cast<std::size_t>(std::count_if(timers->begin(), timers->end(),
                                                  [](const auto& entry) { return entry.second.interval.count() > 0; }));
}

void SimulatedScheduler::submit(std::string queue, Task task) {
    waiting.push_back({std::move(queue), std::move(task)});
}

void SimulatedScheduler::submitAfter(Seconds delay, std::string queue, Task task) {
    const auto due = time + nanoseconds(delay, "a delayed task");
    addTimer({due, std::chrono::nanoseconds(0), std::move(queue), std::move(task)});
}

void SimulatedScheduler::block(Seconds duration) {
    const auto end = time + nanoseconds(duration, "waiting");
    if (!blocked.empty()) {
        misuse(fmt::format("the queue {} has to wait while the queue {} waits", current, blocked));
    }
    blocked = current;
    const bool wasInLoop = std::exchange(isInLoop, true);
    passTimeUntil(end);
    isInLoop = wasInLoop;
    current = std::exchange(blocked, {});
}

void SimulatedScheduler::requireMain(std::string_view operation) const {
    if (current != mainQueue) {
        misuse(fmt::format("{} on the queue {}: main thread only", operation, current));
    }
}

void SimulatedScheduler::discard() {
    // What a dropped task owned may submit or cancel others while it goes.
    while (!waiting.empty() || !timers->empty()) {
        const auto dropped = std::exchange(waiting, {});
        const auto droppedTimers = std::exchange(*timers, {});
    }
}

std::uint64_t SimulatedScheduler::addTimer(Timer timer) {
    const auto number = nextNumber++;
    timers->emplace(number, std::move(timer));
    return number;
}

void SimulatedScheduler::run(const std::string& queue, const Task& task) {
    current = queue;
    task();
    current = mainQueue;
}

void SimulatedScheduler::passTimeUntil(std::chrono::nanoseconds end) {
    runWaitingTasks();
    for (auto timer = nextTimer(); timer != timers->end() && timer->second.due <= end; timer = nextTimer()) {
        time = std::max(time, timer->second.due); // its queue may have been blocked
        fire(timer);
        runWaitingTasks();
    }
    time = std::max(time, end); // a task may have slept beyond the end
}

void SimulatedScheduler::runWaitingTasks() {
    auto next = nextTask();
    for (int count = 0; next != waiting.end(); ++count) {
        if (count == mostTasksAtOnce) {
            misuse(fmt::format("the queue {} never becomes idle", next->queue));
        }
        const auto task = std::move(*next);
        waiting.erase(next);
        run(task.queue, task.task);
        next = nextTask();
    }
}

std::deque<SimulatedScheduler::WaitingTask>::iterator SimulatedScheduler::nextTask() {
    return std::find_if(waiting.begin(), waiting.end(), [&](const auto& entry) { return entry.queue != blocked; });
}

SimulatedScheduler::Timers::iterator SimulatedScheduler::nextTimer() {
    auto next = timers->end();
    for (auto timer = timers->begin(); timer != timers->end(); ++timer) {
        if (timer->second.queue != blocked && (next == timers->end() || timer->second.due < next->second.due)) {
            next = timer;
        }
    }
    return next;
}

void SimulatedScheduler::fire(Timers::iterator timer) {
    const auto queue = timer->second.queue;
    const auto task = timer->second.task;
    if (timer->second.interval.count() > 0) {
        do {
            timer->second.due += timer->second.interval;
        } while (timer->second.due <= time); // ticks that were missed
    } else {
        timers->erase(timer);
    }
    run(queue, task);
}

void SimulatedScheduler::enterLoop(std::string_view operation) {
    if (isInLoop) {
        misuse(fmt::format("{} from within a task", operation));
    }
    isInLoop = true;
}

} // namespace quillon::simulated
