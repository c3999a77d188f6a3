#include "Platform/X11/Scheduler.h"

#include "ProgrammingError.h"

#include <QAbstractEventDispatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QTimerEvent>

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include <pthread.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace quillon::x11 {

namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

/// A serial queue with a thread of its own, started with the first task.
class ThreadQueue final : public SerialQueue {
public:
    explicit ThreadQueue(std::string label) : state(std::make_shared<State>()), label(std::move(label)) {}
    ~ThreadQueue() override {
        {
            const std::lock_guard lock(state->mutex);
            state->isReleased = true;
        }
        state->changed.notify_all();
        if (!thread.joinable()) {
            return;
        }
        if (thread.get_id() == std::this_thread::get_id()) {
            // A task let go of its own queue; the thread ends by itself, with the state that it shares.
            thread.detach();
        } else {
            thread.join();
        }
    }

    void async(Task task) override {
        const std::lock_guard lock(state->mutex);
        state->tasks.push_back(std::move(task));
        if (!thread.joinable()) {
            thread = std::thread([shared = state] { shared->work(); });
            // The system keeps 15 bytes of a thread's name.
            pthread_setname_np(thread.native_handle(),
                               label.substr(label.size() - std::min<std::size_t>(15, label.size())).c_str());
        }
        state->changed.notify_all();
    }

    void run(const Task& task) {
        std::unique_lock lock(state->mutex);
        state->changed.wait(lock, [this] { return !state->isRunning && state->tasks.empty(); });
        state->isRunning = true;
        lock.unlock();
        task();
        lock.lock();
        state->isRunning = false;
        if (!state->tasks.empty()) {
            state->changed.notify_all();
        }
    }

private:
    struct State {
        std::mutex mutex;
        std::condition_variable changed;
        std::deque<Task> tasks;
        bool isRunning = false;
        bool isReleased = false;

        void work() {
            std::unique_lock lock(mutex);
            while (true) {
                changed.wait(lock, [this] { return !isRunning && (isReleased || !tasks.empty()); });
                if (tasks.empty()) {
                    return;
                }
                {
                    const auto task = std::move(tasks.front());
                    tasks.pop_front();
                    isRunning = true;
                    lock.unlock();
                    task();
                }
                lock.lock();
                isRunning = false;
                changed.notify_all();
            }
        }
    };

    std::shared_ptr<State> state;
    std::string label;
    std::thread thread;
};

class RepeatingTimer final : public Registration, public QObject {
public:
    RepeatingTimer(Seconds interval, Task task) : task(std::make_shared<Task>(std::move(task))) {
        // A coarser timer may be off by a twentieth, which lets the system wake once for several of them.
        constexpr Seconds longestPrecise{1};
        const auto milliseconds = std::chrono::round<std::chrono::milliseconds>(interval);
        startTimer(std::max(milliseconds, std::chrono::milliseconds(1)),
                   interval <= longestPrecise ? Qt::PreciseTimer : Qt::CoarseTimer);
    }

protected:
    void timerEvent(QTimerEvent*) override {
        // The task may destroy this timer.
        const auto current = task;
        (*current)();
    }

private:
    std::shared_ptr<Task> task;
};

} // namespace

void runOn(SerialQueue& queue, const Task& task) {
    auto* threadQueue = dynamic_cast<ThreadQueue*>(&queue);
    if (threadQueue == nullptr) {
        programmingError("the serial queue was not made by this platform");
    }
    threadQueue->run(task);
}

class X11Scheduler::MainTasks {
public:
    MainTasks() : mainThread(std::this_thread::get_id()), dispatcher(QAbstractEventDispatcher::instance()) {
        if (dispatcher == nullptr) {
            programmingError("the scheduler was made before the event loop's dispatcher");
        }
    }

    [[nodiscard]] bool isMainThread() const { return std::this_thread::get_id() == mainThread; }

    void add(Task task) {
        {
            const std::lock_guard lock(mutex);
            tasks.push_back(std::move(task));
        }
        if (!isMainThread()) {
            dispatcher->wakeUp();
        }
    }

    [[nodiscard]] std::size_t count() const {
        const std::lock_guard lock(mutex);
        return tasks.size();
    }

    /// Runs the first task; false when there is none.
    bool runFirst() {
        Task task;
        {
            const std::lock_guard lock(mutex);
            if (tasks.empty()) {
                return false;
            }
            task = std::move(tasks.front());
            tasks.pop_front();
        }
        task();
        return true;
    }

    void clear() {
        // What the tasks hold may submit others as it goes.
        std::deque<Task> dropped;
        const std::lock_guard lock(mutex);
        dropped.swap(tasks);
    }

private:
    std::thread::id mainThread;
    QAbstractEventDispatcher* dispatcher;
    mutable std::mutex mutex;
    std::deque<Task> tasks;
};

/// The one-shot delays, on one timer of the kernel: the event loop's own timers count whole milliseconds, which is
/// too coarse for the pace of frames. Main thread.
class X11Scheduler::DelayedTasks {
public:
    DelayedTasks()
        : descriptor(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)),
          notifier(descriptor, QSocketNotifier::Read) {
        QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { runDue(); });
    }
    DelayedTasks(const DelayedTasks&) = delete;
    DelayedTasks& operator=(const DelayedTasks&) = delete;
    ~DelayedTasks() {
        notifier.setEnabled(false);
        close(descriptor);
    }

    void add(SteadyTime deadline, Task task) {
        const auto entry = tasks.emplace(deadline, std::move(task));
        if (entry == tasks.begin()) {
            arm();
        }
    }

    void clear() {
        std::exchange(tasks, {});
        arm();
    }

private:
    void arm() const {
        using namespace std::chrono;
        itimerspec time{};
        if (!tasks.empty()) {
            // A time of zero would disarm the timer.
            const auto deadline = std::max(tasks.begin()->first.time_since_epoch(), SteadyTime::duration(1));
            const auto whole = floor<seconds>(deadline);
            time.it_value = {whole.count(), duration_cast<nanoseconds>(deadline - whole).count()};
        }
        timerfd_settime(descriptor, TFD_TIMER_ABSTIME, &time, nullptr);
    }

    void runDue() {
        std::uint64_t expirations = 0;
        [[maybe_unused]] const auto length = read(descriptor, &expirations, sizeof expirations);
        const auto now = std::chrono::steady_clock::now();
        while (!tasks.empty() && tasks.begin()->first <= now) {
            const auto task = std::move(tasks.begin()->second);
            tasks.erase(tasks.begin());
            task();
        }
        arm();
    }

    int descriptor;
    QSocketNotifier notifier;
    std::multimap<SteadyTime, Task> tasks;
};

X11Scheduler::X11Scheduler()
    : mainTasks(std::make_unique<MainTasks>()), delayedTasks(std::make_unique<DelayedTasks>()) {}

X11Scheduler::~X11Scheduler() = default;

void X11Scheduler::mainAsync(Task task) {
    mainTasks->add(std::move(task));
}

void X11Scheduler::mainAfter(Seconds delay, Task task) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::ceil<SteadyTime::duration>(delay);
    if (mainTasks->isMainThread()) {
        delayedTasks->add(deadline, std::move(task));
    } else {
        mainAsync([this, deadline, task = std::move(task)] { delayedTasks->add(deadline, task); });
    }
}

RegistrationToken X11Scheduler::scheduleRepeatingTimer(Seconds interval, Task task) {
    return std::make_unique<RepeatingTimer>(interval, std::move(task));
}

void X11Scheduler::sleep(Seconds duration) {
    if (mainTasks->isMainThread()) {
        programmingError("the main thread must not sleep");
    }
    std::this_thread::sleep_for(duration);
}

std::shared_ptr<SerialQueue> X11Scheduler::makeSerialQueue(const std::string& label) {
    return std::make_shared<ThreadQueue>(label);
}

bool X11Scheduler::runMainTasks() {
    auto remaining = mainTasks->count();
    const bool ranAny = remaining > 0;
    // A nested event loop in a task may have run some of them already.
    while (remaining > 0 && mainTasks->runFirst()) {
        --remaining;
    }
    return ranAny;
}

bool X11Scheduler::hasMainTasks() const {
    return mainTasks->count() > 0;
}

void X11Scheduler::dropTasks() {
    mainTasks->clear();
    delayedTasks->clear();
}

} // namespace quillon::x11
