#pragma once

#include "Platform/Scheduler.h"

#include <chrono>
#include <memory>
#include <string>

namespace quillon::x11 {

/// Runs the task on the calling thread as if on the queue: waits until the queue has run what was submitted before,
/// and keeps it from running anything meanwhile (dispatch_sync). Spares the change of threads. Not from a task of
/// the same queue. Any thread.
void runOn(SerialQueue& queue, const Task& task);

/// Main tasks cost no wakeup when they are submitted on the main thread: the event loop runs them before it waits.
class X11Scheduler final : public Scheduler {
public:
    /// On the main thread, whose event dispatcher must exist.
    X11Scheduler();
    ~X11Scheduler() override;

    void mainAsync(Task task) override;
    void mainAfter(Seconds delay, Task task) override;
    [[nodiscard]] RegistrationToken scheduleRepeatingTimer(Seconds interval, Task task) override;
    void sleep(Seconds duration) override;
    [[nodiscard]] std::shared_ptr<SerialQueue> makeSerialQueue(const std::string& label) override;

    /// Runs the main tasks submitted so far; false when there were none. Called by the event loop.
    bool runMainTasks();
    /// Called by the event loop.
    [[nodiscard]] bool hasMainTasks() const;
    /// Lets go of what has not run yet, and of all that it holds. For the end of the run, on the main thread.
    void dropTasks();

private:
    class MainTasks;
    class DelayedTasks;

    std::unique_ptr<MainTasks> mainTasks;
    std::unique_ptr<DelayedTasks> delayedTasks;
};

} // namespace quillon::x11
