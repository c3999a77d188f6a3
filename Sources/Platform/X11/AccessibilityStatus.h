#pragma once

#include "Platform/X11/Handlers.h"

#include <QDBusConnection>
#include <QObject>
#include <QVariantMap>

#include <atomic>
#include <functional>

namespace quillon::x11 {

/// Whether the session's accessibility is switched on (org.a11y.Status on the session bus), which makes programs tell
/// what is in their windows. The service may come, go and come back at any time. Main thread.
class AccessibilityStatus final : public QObject {
    Q_OBJECT

public:
    AccessibilityStatus();

    /// The first call asks, a fraction of a second at most, and begins to follow the changes; the later ones only look
    /// it up and may come from any thread.
    [[nodiscard]] bool isEnabled();
    [[nodiscard]] bool hasSessionBus() const { return bus.isConnected(); }
    /// Whether there is a service to switch on, running or ready to be started by the session bus, which is there.
    [[nodiscard]] bool isInstalled() const;
    /// Starts the service if need be. True when it is on now. Waits for the answer, some seconds at most.
    bool switchOn();
    /// Called after each change from now on.
    [[nodiscard]] RegistrationToken observe(std::function<void()> changed);

private Q_SLOTS:
    void propertiesChanged(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);

private:
    void follow();
    void ask();
    void take(const QDBusMessage& answer);
    void set(bool enabled);

    QDBusConnection bus;
    bool isFollowing = false;
    std::atomic<bool> enabled = false;
    Handlers<int> observers;
};

} // namespace quillon::x11
