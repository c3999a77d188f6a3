#pragma once

#include "Platform/ProcessInfo.h"

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace quillon::x11 {

/// Calls back on the main thread, from the event loop, when a process has ended. Main thread.
class ProcessEnd {
public:
    /// Null when the system does not let the process be watched, for instance because there is none.
    static std::unique_ptr<ProcessEnd> watch(ProcessID pid, std::function<void()> ended);
    ProcessEnd(const ProcessEnd&) = delete;
    ProcessEnd& operator=(const ProcessEnd&) = delete;
    ~ProcessEnd();

private:
    ProcessEnd(int descriptor, std::function<void()> ended);

    int descriptor;
    QSocketNotifier notifier;
};

/// Whether the process runs; one that has ended and waits for its parent does not.
[[nodiscard]] bool isRunning(ProcessID pid);

} // namespace quillon::x11
