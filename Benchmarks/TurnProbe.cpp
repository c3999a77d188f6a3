// Loaded into the measured process (LD_PRELOAD): stands between it and the waits of its main thread, and writes down
// how long the thread did something else between two waits of the event loop, without the time that it waited for a
// processor. A wait for a reply of the X server belongs to the turn in which it happens; it is told apart by the one
// descriptor that it waits for.

#include "TurnProbe.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using quillon::benchmarks::TurnRecord;
using Clock = std::chrono::steady_clock;

/// Null when nobody wants a record.
TurnRecord* openRecord() {
    const char* path = std::getenv(quillon::benchmarks::turnRecordVariable);
    const int file = path != nullptr ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0) {
        return nullptr;
    }
    void* const mapped = mmap(nullptr, sizeof(TurnRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return mapped != MAP_FAILED ? static_cast<TurnRecord*>(mapped) : nullptr;
}

/// How long the main thread has waited for a processor so far.
std::chrono::nanoseconds runDelay() {
    // Time on a processor, time waited for one, and a count (the kernel's sched-stats).
    static const int file = open("/proc/self/schedstat", O_RDONLY | O_CLOEXEC);
    std::array<char, 64> text{};
    unsigned long long running = 0;
    unsigned long long waiting = 0;
    if (pread(file, text.data(), text.size() - 1, 0) <= 0 ||
        std::sscanf(text.data(), "%llu %llu", &running, &waiting) != 2) {
        return {};
    }
    return std::chrono::nanoseconds(waiting);
}

class LoopWait {
public:
    explicit LoopWait(nfds_t descriptors) : belongsToLoop(descriptors > 1 && gettid() == getpid()) {
        static TurnRecord* const record = openRecord();
        if (!belongsToLoop || record == nullptr || turnStart == Clock::time_point()) {
            return;
        }
        const std::chrono::duration<float, std::milli> length = (Clock::now() - turnStart) - (runDelay() - delayBefore);
        const auto index = record->count.load(std::memory_order_relaxed);
        if (index < TurnRecord::capacity) {
            record->milliseconds[index] = length.count();
            record->count.store(index + 1, std::memory_order_release);
        }
    }
    LoopWait(const LoopWait&) = delete;
    LoopWait& operator=(const LoopWait&) = delete;
    ~LoopWait() {
        if (belongsToLoop) {
            delayBefore = runDelay();
            turnStart = Clock::now();
        }
    }

private:
    /// Of the main thread alone.
    static inline Clock::time_point turnStart;
    static inline std::chrono::nanoseconds delayBefore{};
    bool belongsToLoop;
};

template <class Function>
Function next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" int poll(pollfd* descriptors, nfds_t count, int timeout) {
    static const auto original = next<int (*)(pollfd*, nfds_t, int)>("poll");
    const LoopWait wait(count);
    return original(descriptors, count, timeout);
}

extern "C" int ppoll(pollfd* descriptors, nfds_t count, const timespec* timeout, const sigset_t* signals) {
    static const auto original = next<int (*)(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll");
    const LoopWait wait(count);
    return original(descriptors, count, timeout, signals);
}
