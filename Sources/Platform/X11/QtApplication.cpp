#include "Platform/X11/QtApplication.h"

#include "ExitStatus.h"
#include "Platform/X11/StandardError.h"

#include <QApplication>
#include <QIcon>

#include <unistd.h>

/// The linker leaves out of a library what nothing refers to. Qt wants the call outside any namespace.
static void initialisePictures() {
    Q_INIT_RESOURCE(pictures);
}

namespace quillon::x11 {

namespace {

/// The library's own messages are for its developers; only what stops the program is worth a line.
void passOnFatalMessages(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtFatalMsg) {
        complain(text.simplified().toStdString());
        // Qt would abort, which looks like a crash.
        _exit(ExitStatus::failure);
    }
}

/// Read by Qt as long as the application lives.
struct CommandLineOfQt {
    int count = 1;
    char name[8] = "quillon";
    char* arguments[2] = {name, nullptr};
};

CommandLineOfQt& commandLine() {
    static CommandLineOfQt line;
    return line;
}

void setUp() {
    qInstallMessageHandler(passOnFatalMessages);
    // GLib's event dispatcher costs memory and time at every turn.
    qputenv("QT_NO_GLIB", "1");
}

} // namespace

std::unique_ptr<QCoreApplication> makeCoreApplication() {
    setUp();
    return std::make_unique<QCoreApplication>(commandLine().count, commandLine().arguments);
}

std::unique_ptr<QApplication> makeApplication(double scale) {
    setUp();
    // Qt would read the density of the screens by itself and round it otherwise than the rest of the program does.
    qputenv("QT_FONT_DPI", "96");
    qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
    qputenv("QT_QPA_PLATFORM", "xcb");
    // Nothing is drawn with OpenGL, whose libraries are large.
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    // Themes bring another toolkit into the process, and its warnings.
    qunsetenv("QT_QPA_PLATFORMTHEME");
    QApplication::setDesktopSettingsAware(false);
    // The session manager would ask whether to end and start the program; it ends by a signal and is started otherwise.
    qunsetenv("SESSION_MANAGER");
    auto application = std::make_unique<QApplication>(commandLine().count, commandLine().arguments);
    QApplication::setQuitOnLastWindowClosed(false);
    initialisePictures();
    QApplication::setWindowIcon(QIcon(":/local.quillon.floating.png"));
    return application;
}

} // namespace quillon::x11
