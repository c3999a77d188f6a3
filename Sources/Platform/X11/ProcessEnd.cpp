#include "Platform/X11/ProcessEnd.h"

#include <cerrno>
#include <csignal>

#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillon::x11 {

namespace {

/// The system call itself: the C library declares a function for it only in its newer releases.
int openProcess(ProcessID pid) {
    return static_cast<int>(syscall(SYS_pidfd_open, pid, 0));
}

} // namespace

std::unique_ptr<ProcessEnd> ProcessEnd::watch(ProcessID pid, std::function<void()> ended) {
    const int descriptor = openProcess(pid);
    if (descriptor < 0) {
        return nullptr;
    }
    return std::unique_ptr<ProcessEnd>(new ProcessEnd(descriptor, std::move(ended)));
}

ProcessEnd::ProcessEnd(int descriptor, std::function<void()> ended)
    : descriptor(descriptor), notifier(descriptor, QSocketNotifier::Read) {
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this, ended = std::move(ended)] {
        notifier.setEnabled(false);
        // The call may destroy this object, and the function with it.
        const auto call = ended;
        call();
    });
}

ProcessEnd::~ProcessEnd() {
    notifier.setEnabled(false);
    close(descriptor);
}

bool isRunning(ProcessID pid) {
    const int descriptor = openProcess(pid);
    if (descriptor < 0) {
        // ESRCH and the like; any other failure says nothing about the process.
        return errno != ESRCH && errno != EINVAL && (kill(pid, 0) == 0 || errno == EPERM);
    }
    pollfd state{descriptor, POLLIN, 0};
    const bool hasEnded = poll(&state, 1, 0) > 0;
    close(descriptor);
    return !hasEnded;
}

} // namespace quillon::x11
