#include "Platform/X11/DesktopAppearance.h"

#include "Platform/X11/Connection.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/XSettings.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QFont>
#include <QPalette>

namespace quillon::x11 {

namespace {

constexpr auto portalService = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto settingsInterface = "org.freedesktop.portal.Settings";
constexpr auto appearanceNamespace = "org.freedesktop.appearance";
constexpr auto colorSchemeKey = "color-scheme";
constexpr unsigned prefersDark = 1;
constexpr unsigned prefersLight = 2;

struct Colors {
    QColor window;
    /// Of what lies on a window: boxes, lists, text fields.
    QColor base;
    QColor button;
    QColor text;
    QColor disabled;
    QColor highlight;
};

QPalette paletteOf(const Colors& colors) {
    QPalette palette(colors.button, colors.window);
    palette.setColor(QPalette::Base, colors.base);
    palette.setColor(QPalette::AlternateBase, colors.window);
    palette.setColor(QPalette::ToolTipBase, colors.base);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, colors.text);
        palette.setColor(QPalette::Disabled, role, colors.disabled);
    }
    palette.setColor(QPalette::Highlight, colors.highlight);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

QPalette paletteFor(Appearance appearance) {
    static const Colors light{.window = {244, 244, 246},
                              .base = {255, 255, 255},
                              .button = {232, 232, 235},
                              .text = {28, 28, 30},
                              .disabled = {140, 140, 144},
                              .highlight = {28, 105, 212}};
    static const Colors dark{.window = {36, 36, 38},
                             .base = {50, 50, 53},
                             .button = {74, 74, 78},
                             .text = {238, 238, 240},
                             .disabled = {130, 130, 134},
                             .highlight = {64, 132, 226}};
    return paletteOf(appearance == Appearance::darkAqua ? dark : light);
}

bool isDarkTheme(const std::string& name) {
    return QString::fromStdString(name).contains("dark", Qt::CaseInsensitive);
}

} // namespace

void DesktopAppearance::follow() {
    if (isFollowing) {
        return;
    }
    isFollowing = true;
    QApplication::setPalette(paletteFor(appearance));
    followSettings();
    followPortal();
}

void DesktopAppearance::followSettings() {
    const auto manager = xSettingsManager(connection);
    if (manager != XCB_WINDOW_NONE) {
        managerEvents = connection.observeWindow(manager, [this](const auto& event) {
            if (eventType(event) == XCB_PROPERTY_NOTIFY) {
                readSettings();
            }
        });
        managerSelection = connection.selectInput(manager, XCB_EVENT_MASK_PROPERTY_CHANGE);
    }
    readSettings();
}

void DesktopAppearance::readSettings() {
    const auto texts = readXSettings(connection).texts;
    const auto text = [&texts](const char* name) {
        const auto found = texts.find(name);
        return found != texts.end() ? found->second : std::string();
    };
    if (const auto font = fontOf(text("Gtk/FontName")); font != QApplication::font()) {
        QApplication::setFont(font);
    }
    hasDarkTheme = isDarkTheme(text("Net/ThemeName"));
    update();
}

void DesktopAppearance::followPortal() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(portalService, portalPath, settingsInterface, "SettingChanged", this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    auto* starts = new QDBusServiceWatcher(portalService, bus, QDBusServiceWatcher::WatchForRegistration, this);
    connect(starts, &QDBusServiceWatcher::serviceRegistered, this, &DesktopAppearance::askPortal);
    askPortal();
}

void DesktopAppearance::askPortal() {
    auto message = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, "Read");
    message.setArguments({appearanceNamespace, colorSchemeKey});
    message.setAutoStartService(false);
    auto* answer = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(message), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
        answer->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *answer;
        if (reply.isValid()) {
            takeColorScheme(reply.value().variant());
        }
    });
}

void DesktopAppearance::settingChanged(const QString& nameSpace, const QString& key, const QDBusVariant& value) {
    if (nameSpace == appearanceNamespace && key == colorSchemeKey) {
        takeColorScheme(value.variant());
    }
}

void DesktopAppearance::takeColorScheme(QVariant value) {
    // The method wraps the value once more than the signal does.
    if (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    colorScheme = value.toUInt();
    update();
}

void DesktopAppearance::update() {
    const bool isDark = colorScheme == prefersDark || (colorScheme != prefersLight && hasDarkTheme);
    const auto wanted = isDark ? Appearance::darkAqua : Appearance::aqua;
    if (wanted == appearance) {
        return;
    }
    appearance = wanted;
    QApplication::setPalette(paletteFor(appearance));
    if (onChange) {
        onChange();
    }
}

QFont fontOf(std::string_view description) {
    // What GTK takes without a word of the desktop.
    QFont font("Sans Serif", 10);
    auto words = QString::fromUtf8(description.data(), static_cast<qsizetype>(description.size()))
                     .replace(',', ' ')
                     .split(' ', Qt::SkipEmptyParts);
    bool isNumber = false;
    const double size = words.isEmpty() ? 0 : words.back().toDouble(&isNumber);
    if (isNumber) {
        words.removeLast();
        if (size > 0) {
            font.setPointSizeF(size);
        }
    }
    // A weight or a slant for all texts is not worth its rules: the windows have styles of their own.
    static const QStringList styles{"Regular", "Book", "Medium", "Light", "Bold", "Semi-Bold", "Italic", "Oblique"};
    while (!words.isEmpty() && styles.contains(words.back(), Qt::CaseInsensitive)) {
        words.removeLast();
    }
    if (!words.isEmpty()) {
        font.setFamily(words.join(' '));
    }
    return font;
}

} // namespace quillon::x11
