#include "Platform/X11/NotifierHost.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QTimer>

#include <chrono>
#include <limits>

namespace quillon::x11 {

namespace {

constexpr auto watcherService = "org.kde.StatusNotifierWatcher";
constexpr auto watcherPath = "/StatusNotifierWatcher";
constexpr auto watcherInterface = "org.kde.StatusNotifierWatcher";
/// A panel that does not answer for so long, as may be while the desktop starts, counts as absent until it does.
constexpr std::chrono::seconds patience{2};
constexpr int noTimeout = std::numeric_limits<int>::max();

QDBusMessage callOf(const char* interface, const char* method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(watcherService, watcherPath, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

} // namespace

NotifierHost::NotifierHost() : bus(QDBusConnection::sessionBus()) {
    if (!bus.isConnected()) {
        return;
    }
    auto* watcher = new QDBusServiceWatcher(watcherService, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { ask(); });
    for (const auto* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus.connect(watcherService, watcherPath, watcherInterface, signal, this, SLOT(ask()));
    }
    hostState = State::unknown;
    ask();
    QTimer::singleShot(patience, this, [this] {
        if (hostState == State::unknown) {
            set(State::absent);
        }
    });
}

void NotifierHost::ask() {
    const int question = ++questions;
    const auto call = bus.asyncCall(
        callOf("org.freedesktop.DBus.Properties", "Get", {watcherInterface, "IsStatusNotifierHostRegistered"}),
        noTimeout);
    auto* answer = new QDBusPendingCallWatcher(call, this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer, question] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (question == questions) {
            set(reply.isValid() && reply.value().variant().toBool() ? State::present : State::absent);
        }
    });
}

void NotifierHost::set(State state) {
    hostState = state;
    if (onChange) {
        onChange();
    }
}

void NotifierHost::registerItem(const QString& service) const {
    bus.send(callOf(watcherInterface, "RegisterStatusNotifierItem", {service}));
}

} // namespace quillon::x11
