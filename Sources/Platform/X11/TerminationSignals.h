#pragma once

#include <QSocketNotifier>

#include <array>
#include <functional>

#include <signal.h>

namespace quillon::x11 {

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into a call from the event loop. One at a
/// time. Main thread.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> asked);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    static constexpr std::array handled{SIGTERM, SIGINT, SIGHUP};

    int descriptor;
    QSocketNotifier notifier;
    std::array<struct sigaction, handled.size()> previous{};
};

} // namespace quillon::x11
