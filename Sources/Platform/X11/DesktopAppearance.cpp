#include "Platform/X11/DesktopAppearance.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QPalette>

namespace quillon::x11 {

namespace {

constexpr auto portalService = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto settingsInterface = "org.freedesktop.portal.Settings";
constexpr auto appearanceNamespace = "org.freedesktop.appearance";
constexpr auto colorSchemeKey = "color-scheme";
constexpr uint prefersDark = 1;

QPalette darkPalette() {
    const QColor window(45, 45, 45);
    const QColor base(32, 32, 32);
    const QColor text(235, 235, 235);
    const QColor disabled(130, 130, 130);
    const QColor highlight(48, 110, 190);
    QPalette palette(window);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, disabled);
    }
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::Highlight, highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

} // namespace

DesktopAppearance::DesktopAppearance() : bus(QDBusConnection::sessionBus()) {
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(portalService, portalPath, settingsInterface, "SettingChanged", this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto* starts = new QDBusServiceWatcher(portalService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(starts, &QDBusServiceWatcher::serviceRegistered, this, &DesktopAppearance::ask);
    ask();
}

void DesktopAppearance::ask() {
    auto message = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, "Read");
    message.setArguments({appearanceNamespace, colorSchemeKey});
    message.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid()) {
            take(reply.value().variant());
        }
    });
}

void DesktopAppearance::settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value) {
    if (nameSpace == appearanceNamespace && key == colorSchemeKey) {
        take(value.variant());
    }
}

void DesktopAppearance::take(QVariant value) {
    // The method wraps the value once more than the signal does.
    if (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    const auto wanted = value.toUInt() == prefersDark ? Appearance::darkAqua : Appearance::aqua;
    if (wanted == appearance) {
        return;
    }
    appearance = wanted;
    QApplication::setPalette(appearance == Appearance::darkAqua ? darkPalette() : QPalette());
    if (onChange) {
        onChange();
    }
}

} // namespace quillon::x11
