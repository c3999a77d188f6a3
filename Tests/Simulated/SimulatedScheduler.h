#pragma once

#include "Platform/Scheduler.h"
#include "Simulated/Journal.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace quillon::simulated {

/// Timers and queues on a virtual clock. Everything runs on the test's one thread, in the order of submission,
/// and only while the test calls `advance` or `runUntilIdle`. What counts as a thread is the queue whose task is
/// running; outside of any task the test is on the main thread.
class SimulatedScheduler final : public Scheduler {
public:
    explicit SimulatedScheduler(Journal& journal);
    ~SimulatedScheduler() override;

    void mainAsync(Task task) override;
    void mainAfter(Seconds delay, Task task) override;
    [[nodiscard]] RegistrationToken scheduleRepeatingTimer(Seconds interval, Task task) override;
    /// Runs everything else that falls into that time, so the time has passed when the call returns. What waits on
    /// the sleeping queue stays there meanwhile. One queue at a time.
    void sleep(Seconds duration) override;
    [[nodiscard]] std::shared_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;

    /// Lets the time pass: runs what waits, and every timer at its moment. A task that sleeps may make it longer.
    void advance(Seconds duration);
    /// Runs what waits, and what that submits, until nothing is left that needs no time to pass.
    void runUntilIdle();
    /// Lets the time pass in small steps until the condition holds or the bound has passed; the condition's last
    /// value.
    bool runUntil(const std::function<bool()>& condition, Seconds bound);

    /// Virtual time since the start.
    [[nodiscard]] std::chrono::nanoseconds now() const { return time; }
    /// Tasks that wait on the queue of that label ("main" is the main queue).
    [[nodiscard]] std::size_t waitingTasks(std::string_view queue) const;
    /// Repeating timers whose tokens are held.
    [[nodiscard]] std::size_t repeatingTimers() const;

    /// Runs the task later as the queue or platform thread of that name.
    void submit(std::string queue, Task task);
    /// The same once the delay has passed.
    void submitAfter(Seconds delay, std::string queue, Task task);
    [[nodiscard]] const std::string& currentQueue() const { return current; }
    /// What runs now waits that long for another process, on whatever thread it is.
    void block(Seconds duration);
    /// Stops the test unless the main thread is running.
    void requireMain(std::string_view operation) const;

    /// Drops everything that waits.
    void discard();

private:
    struct WaitingTask {
        std::string queue;
        Task task;
    };
    struct Timer {
        std::chrono::nanoseconds due;
        /// Zero for a timer that runs once.
        std::chrono::nanoseconds interval;
        std::string queue;
        Task task;
    };
    /// By number; the numbers rise, so timers of the same moment run in the order in which they were set.
    using Timers = std::map<std::uint64_t, Timer>;
    class Queue;
    class TimerToken;

    std::uint64_t addTimer(Timer timer);
    void run(const std::string& queue, const Task& task);
    void passTimeUntil(std::chrono::nanoseconds end);
    void runWaitingTasks();
    /// The first task that does not wait for a blocked queue.
    [[nodiscard]] std::deque<WaitingTask>::iterator nextTask();
    /// Likewise.
    [[nodiscard]] Timers::iterator nextTimer();
    void fire(Timers::iterator timer);
    /// Guards the outermost loop against being entered from a task.
    void enterLoop(std::string_view operation);

    Journal& journal;
    std::chrono::nanoseconds time{0};
    std::string current;
    /// The queue that sleeps or waits for another process; empty when there is none.
    std::string blocked;
    bool isInLoop = false;
    std::deque<WaitingTask> waiting;
    /// Shared with the tokens.
    std::shared_ptr<Timers> timers = std::make_shared<Timers>();
    std::uint64_t nextNumber = 0;
};

inline constexpr std::string_view mainQueue = "main";

} // namespace quillon::simulated
