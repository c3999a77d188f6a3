#include "Platform/Scheduler.h"

#include "Platform/macOS/NativeQueue.h"
#include "Platform/macOS/Ports.h"
#include "ProgrammingError.h"

#import <Foundation/Foundation.h>

#include <thread>

namespace quillon::macos {

namespace {

class MacSerialQueue final : public SerialQueue {
public:
    explicit MacSerialQueue(const std::string& label)
        : queue(dispatch_queue_create(label.c_str(), DISPATCH_QUEUE_SERIAL)) {}

    void async(Task task) override {
        dispatch_async(queue, ^{
            task();
        });
    }

    [[nodiscard]] dispatch_queue_t native() const { return queue; }

private:
    dispatch_queue_t queue;
};

class RepeatingTimer final : public Registration {
public:
    /// On the main run loop, since that is the calling thread's. The task comes by value: a block that captures a
    /// reference holds no more than the reference.
    RepeatingTimer(Seconds interval, Task task)
        : timer([NSTimer scheduledTimerWithTimeInterval:interval.count()
                                                repeats:YES
                                                  block:^(NSTimer*) {
                                                      // The task may end the timer, and with it this block.
                                                      const Task running = task;
                                                      running();
                                                  }]) {}
    ~RepeatingTimer() override { [timer invalidate]; }

private:
    NSTimer* timer;
};

class MacScheduler final : public Scheduler {
public:
    void mainAsync(Task task) override {
        dispatch_async(dispatch_get_main_queue(), ^{
            task();
        });
    }

    void mainAfter(Seconds delay, Task task) override {
        const auto nanoseconds = std::chrono::duration_cast<std::chrono::nanoseconds>(delay).count();
        dispatch_after(dispatch_time(DISPATCH_TIME_NOW, nanoseconds), dispatch_get_main_queue(), ^{
            task();
        });
    }

    RegistrationToken scheduleRepeatingTimer(Seconds interval, Task task) override {
        return std::make_unique<RepeatingTimer>(interval, std::move(task));
    }

    void sleep(Seconds duration) override {
        if (NSThread.isMainThread) {
            programmingError("the main thread must not sleep");
        }
        std::this_thread::sleep_for(duration);
    }

    std::shared_ptr<SerialQueue> makeSerialQueue(const std::string& label) override {
        return std::make_shared<MacSerialQueue>(label);
    }
};

} // namespace

dispatch_queue_t nativeQueue(const SerialQueue& queue) {
    return static_cast<const MacSerialQueue&>(queue).native();
}

std::unique_ptr<Scheduler> makeScheduler() {
    return std::make_unique<MacScheduler>();
}

} // namespace quillon::macos
