#include "Platform/X11/EventLoop.h"

#include "ExitStatus.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Scheduler.h"
#include "Platform/X11/StandardError.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdlib>

#include <unistd.h>

namespace quillon::x11 {

namespace {

/// While it serves a connection, the process ends by `exit` for one reason: Qt's own connection to the server broke,
/// and Qt saw it first.
EventLoop* current = nullptr;

} // namespace

EventLoop::EventLoop(Connection& connection, X11Scheduler& scheduler) : connection(connection), scheduler(scheduler) {
    auto* dispatcher = QAbstractEventDispatcher::instance();
    QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &context, [this] { serve(); });
    // Whoever turns the loop without letting it wait never reaches the signal above.
    QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &context, [this] { serve(); });
    // The notifier only ends the wait; what has arrived is served on the way to the next one.
    auto* notifier = new QSocketNotifier(xcb_get_file_descriptor(connection.xcb()), QSocketNotifier::Read, &context);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [this, notifier] {
        if (!this->connection.isAlive()) {
            notifier->setEnabled(false);
        }
    });
    [[maybe_unused]] static const int registered = std::atexit([] {
        if (current != nullptr) {
            current->reportEnd();
            _exit(ExitStatus::noDisplay);
        }
    });
    current = this;
}

EventLoop::~EventLoop() {
    current = nullptr;
}

void EventLoop::serve() {
    // Tasks that submit tasks go on at once, but not for ever: timers must get their turn.
    constexpr int mostRounds = 16;
    connection.processEvents();
    bool mayWait = false;
    for (int round = 0; round < mostRounds && !mayWait; ++round) {
        if (scheduler.runMainTasks()) {
            connection.processReadEvents();
        } else {
            // What the tasks asked of the server goes out together. Sending may read events, too.
            connection.flush();
            mayWait = !connection.processReadEvents();
        }
    }
    if (!connection.isAlive()) {
        endWhenServerIsGone();
    }
    if (!mayWait) {
        connection.flush();
        QAbstractEventDispatcher::instance()->wakeUp();
    }
}

void EventLoop::endWhenServerIsGone() {
    reportEnd();
    QCoreApplication::exit(ExitStatus::noDisplay);
}

void EventLoop::reportEnd() {
    if (!hasReportedEnd) {
        hasReportedEnd = true;
        complain("Il server X ha chiuso la connessione: Quillon termina");
    }
}

} // namespace quillon::x11
