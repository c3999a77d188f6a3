#include "Platform/X11/AccessibilityStatus.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <limits>
#include <utility>

namespace quillon::x11 {

namespace {

constexpr auto service = "org.a11y.Bus";
constexpr auto path = "/org/a11y/bus";
constexpr auto statusInterface = "org.a11y.Status";
constexpr auto enabledProperty = "IsEnabled";
constexpr auto propertiesInterface = "org.freedesktop.DBus.Properties";

/// For the first answer, which the start of the program waits for.
constexpr int patience = 250; // ms
/// The service may have to be started first.
constexpr int patienceForStart = 3000; // ms
constexpr int noTimeout = std::numeric_limits<int>::max();

QDBusMessage propertyCall(const char* method, QVariantList arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, propertiesInterface, method);
    message.setArguments(QVariantList{statusInterface, enabledProperty} + std::move(arguments));
    message.setAutoStartService(false);
    return message;
}

QDBusMessage question() {
    return propertyCall("Get", {});
}

} // namespace

AccessibilityStatus::AccessibilityStatus() : bus(QDBusConnection::sessionBus()) {}

bool AccessibilityStatus::isEnabled() {
    follow();
    return enabled;
}

bool AccessibilityStatus::isInstalled() const {
    const QDBusReply<QStringList> startable = bus.interface()->activatableServiceNames();
    return startable.value().contains(service) || bus.interface()->isServiceRegistered(service).value();
}

bool AccessibilityStatus::switchOn() {
    auto message = propertyCall("Set", {QVariant::fromValue(QDBusVariant(true))});
    message.setAutoStartService(true);
    if (bus.call(message, QDBus::Block, patienceForStart).type() == QDBusMessage::ReplyMessage) {
        set(true);
    }
    return isEnabled();
}

RegistrationToken AccessibilityStatus::observe(std::function<void()> changed) {
    follow();
    return observers.add(0, std::move(changed));
}

void AccessibilityStatus::follow() {
    if (std::exchange(isFollowing, true) || !hasSessionBus()) {
        return;
    }
    auto* watcher = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, [this] { ask(); });
    bus.connect(service, path, propertiesInterface, "PropertiesChanged", this,
                SLOT(propertiesChanged(QString, QVariantMap, QStringList)));
    const auto answer = bus.call(question(), QDBus::Block, patience);
    take(answer);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        // It may only be busy.
        ask();
    }
}

void AccessibilityStatus::ask() {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question(), noTimeout), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        take(watcher->reply());
    });
}

/// Without the service nothing is switched on.
void AccessibilityStatus::take(const QDBusMessage& answer) {
    const QDBusReply<QDBusVariant> value = answer;
    set(value.isValid() && value.value().variant().toBool());
}

void AccessibilityStatus::propertiesChanged(const QString& interface, const QVariantMap& changed,
                                            const QStringList& /*invalidated*/) {
    if (interface == statusInterface && changed.contains(enabledProperty)) {
        set(changed.value(enabledProperty).toBool());
    }
}

void AccessibilityStatus::set(bool newEnabled) {
    if (enabled.exchange(newEnabled) != newEnabled) {
        observers.call(0);
    }
}

} // namespace quillon::x11
