#include "Platform/X11/URLOpening.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>
#include <QUrl>

#include <array>

namespace quillon::x11 {

namespace {

/// A desktop's own settings; the pages are empty where the program has none of its own.
struct SettingsProgram {
    /// As it stands in XDG_CURRENT_DESKTOP.
    const char* desktop;
    const char* name;
    const char* accessibilityPage;
    const char* privacyPage;
};

constexpr std::array<SettingsProgram, 3> settingsPrograms{{
    {"GNOME", "gnome-control-center", "universal-access", "privacy"},
    {"KDE", "systemsettings", "kcm_access", ""},
    {"XFCE", "xfce4-settings-manager", "", ""},
}};

/// Empty when the program is not installed.
QString pathOf(const char* program) {
    return QStandardPaths::findExecutable(program);
}

/// That of the desktop in use if there is one, else any that is installed; null for none.
const SettingsProgram* settingsProgram() {
    const auto desktops = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(':');
    const SettingsProgram* found = nullptr;
    for (const auto& program : settingsPrograms) {
        if (pathOf(program.name).isEmpty()) {
            continue;
        }
        if (desktops.contains(program.desktop)) {
            return &program;
        }
        found = found != nullptr ? found : &program;
    }
    return found;
}

/// The environment that this process was given. Its own has been changed to what its windows need, which is not what
/// those of others do.
QProcessEnvironment givenEnvironment() {
    QProcessEnvironment environment;
    QFile file("/proc/self/environ");
    if (!file.open(QIODevice::ReadOnly)) {
        return QProcessEnvironment::systemEnvironment();
    }
    for (const auto& entry : file.readAll().split('\0')) {
        const auto sign = entry.indexOf('=');
        if (sign > 0) {
            environment.insert(QString::fromLocal8Bit(entry.left(sign)), QString::fromLocal8Bit(entry.mid(sign + 1)));
        }
    }
    return environment;
}

void start(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setProcessEnvironment(givenEnvironment());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.startDetached();
}

void openSettings(bool isAccessibility) {
    const auto* program = settingsProgram();
    if (program == nullptr) {
        return;
    }
    const QString page = isAccessibility ? program->accessibilityPage : program->privacyPage;
    start(pathOf(program->name), page.isEmpty() ? QStringList() : QStringList{page});
}

} // namespace

void openURL(std::string_view text) {
    const QUrl url(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())), QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty()) {
        return;
    }
    if (url.scheme() == "x-apple.systempreferences") {
        openSettings(url.query() == "Privacy_Accessibility");
    } else if (const auto opener = pathOf("xdg-open"); !opener.isEmpty()) {
        start(opener, {url.toString(QUrl::FullyEncoded)});
    }
}

} // namespace quillon::x11
