#pragma once

#include "Platform/Images.h"
#include "Platform/Registration.h"

#include <QDBusVariant>
#include <QObject>

#include <functional>
#include <string_view>

class QFont;

namespace quillon::x11 {

class Connection;

/// How the user wants programs to look, and the application's menus and windows to match:
///
/// Light or dark, as the desktop's portal tells programs (org.freedesktop.portal.Settings, "color-scheme"); where no
/// portal runs or it has no preference, by the name of the desktop's theme (XSETTINGS, Net/ThemeName); else light.
/// The font, from the desktop's settings (XSETTINGS, Gtk/FontName). Changes are followed. Nothing waits for the portal.
/// Main thread.
class DesktopAppearance final : public QObject {
    Q_OBJECT

public:
    /// The connection must outlive this.
    explicit DesktopAppearance(Connection& connection) : connection(connection) {}

    /// Begins with the first call, for which there must be a QApplication: a command that shows nothing has none.
    void follow();

    [[nodiscard]] Appearance current() const { return appearance; }
    /// Called after each change.
    std::function<void()> onChange;

private Q_SLOTS:
    void settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value);

private:
    void followPortal();
    void askPortal();
    void takeColorScheme(QVariant value);
    void followSettings();
    void readSettings();
    void update();

    Connection& connection;
    bool isFollowing = false;
    /// The portal's values: 1 dark, 2 light, anything else no preference.
    unsigned colorScheme = 0;
    bool hasDarkTheme = false;
    Appearance appearance = Appearance::aqua;
    RegistrationToken managerSelection;
    RegistrationToken managerEvents;
};

/// The font of a description as the desktop's settings have it ("Cantarell 11"): the family and at the end the size in
/// points, either of which may be missing.
[[nodiscard]] QFont fontOf(std::string_view description);

} // namespace quillon::x11
