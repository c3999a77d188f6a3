#include "Platform/X11/TerminationSignals.h"

#include <atomic>
#include <cerrno>

#include <sys/eventfd.h>
#include <unistd.h>

namespace quillon::x11 {

namespace {

/// What the signal handler writes to.
std::atomic<int> eventDescriptor = -1;
static_assert(std::atomic<int>::is_always_lock_free, "the signal handler must not wait for a lock");

void noteSignal(int /*number*/) {
    const int previousError = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(eventDescriptor, &one, sizeof one);
    errno = previousError;
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> asked)
    : descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)), notifier(descriptor, QSocketNotifier::Read) {
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this, asked = std::move(asked)] {
        std::uint64_t count = 0;
        [[maybe_unused]] const auto length = read(descriptor, &count, sizeof count);
        asked();
    });
    eventDescriptor = descriptor;
    struct sigaction action {};
    action.sa_handler = noteSignal;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t index = 0; index < handled.size(); ++index) {
        sigaction(handled[index], nullptr, &previous[index]);
        // nohup and shells that start a job in the background let some signals be ignored, which is to stay so.
        if (previous[index].sa_handler != SIG_IGN) {
            sigaction(handled[index], &action, nullptr);
        }
    }
}

TerminationSignals::~TerminationSignals() {
    for (std::size_t index = 0; index < handled.size(); ++index) {
        sigaction(handled[index], &previous[index], nullptr);
    }
    notifier.setEnabled(false);
    eventDescriptor = -1;
    close(descriptor);
}

} // namespace quillon::x11
