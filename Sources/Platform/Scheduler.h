#pragma once

#include "Platform/Registration.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace quillon {

using Task = std::function<void()>;
using Seconds = std::chrono::duration<double>;

/// A serial queue (DispatchQueue): its tasks run one after the other, in the order in which they were
/// submitted, never inside the call that submits them. Letting go of the queue lets the submitted tasks finish.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    virtual ~SerialQueue() = default;

    /// Returns at once. Any thread.
    virtual void async(Task task) = 0;
};

/// Timers and queues (Timer, DispatchQueue). Any thread, except where a member says otherwise.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    /// Runs the task on the main thread in a later turn of the event loop, after everything submitted
    /// before it.
    virtual void mainAsync(Task task) = 0;
    /// Runs the task on the main thread once the delay has passed.
    virtual void mainAfter(Seconds delay, Task task) = 0;
    /// Runs the task on the main thread every `interval`, for the first time after one interval, until
    /// the token is destroyed. Ticks that were missed are not made up for. Main thread.
    [[nodiscard]] virtual RegistrationToken scheduleRepeatingTimer(Seconds interval, Task task) = 0;
    /// Stops the calling thread for that long. For a task of a serial queue, whose other tasks wait meanwhile; never
    /// on the main thread.
    virtual void sleep(Seconds duration) = 0;
    /// A new queue. The label is for debuggers and need not be unique.
    [[nodiscard]] virtual std::shared_ptr<SerialQueue> makeSerialQueue(const std::string& label) = 0;
};

} // namespace quillon
