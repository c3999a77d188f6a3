#pragma once

#include <QObject>

namespace quillon::x11 {

class Connection;
class X11Scheduler;

/// Makes Qt's event loop serve the X connection and the main tasks. It serves them right before each wait, so that
/// neither an event that was read while a reply was waited for nor a task lies idle, and nothing wakes the process
/// for them in between. When the server has gone it says so and ends the loop with `ExitStatus::noDisplay`. Main
/// thread.
class EventLoop {
public:
    EventLoop(Connection& connection, X11Scheduler& scheduler);
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

private:
    void serve();
    void endWhenServerIsGone();
    void reportEnd();

    Connection& connection;
    X11Scheduler& scheduler;
    bool hasReportedEnd = false;
    /// Owns the notifier and the connections to the dispatcher, which end with it.
    QObject context;
};

} // namespace quillon::x11
