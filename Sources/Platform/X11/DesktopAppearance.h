#pragma once

#include "Platform/Images.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <functional>

namespace quillon::x11 {

/// Whether the user wants light or dark looks, as the desktop's portal tells programs (org.freedesktop.portal.Settings,
/// "color-scheme"); light where no portal runs or it has no preference. Nothing waits for the portal. Gives the
/// application's menus and windows colours to match. Main thread.
class DesktopAppearance final : public QObject {
    Q_OBJECT

public:
    DesktopAppearance();

    [[nodiscard]] Appearance current() const { return appearance; }
    /// Called after each change.
    std::function<void()> onChange;

private Q_SLOTS:
    void settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);

private:
    void ask();
    void take(QVariant value);

    QDBusConnection bus;
    Appearance appearance = Appearance::aqua;
};

} // namespace quillon::x11
