#include "Platform/X11/EventLoop.h"

#include "ExitStatus.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Scheduler.h"
#include "Platform/X11/StandardError.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QSocketNotifier>

namespace quillon::x11 {

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
    if (!hasReportedEnd) {
        hasReportedEnd = true;
        complain("Il server X ha chiuso la connessione: Quillon termina");
    }
    QCoreApplication::exit(ExitStatus::noDisplay);
}

} // namespace quillon::x11
