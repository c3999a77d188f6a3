#include "Platform/X11/Application.h"

#include "ExitStatus.h"
#include "Platform/NotificationCenter.h"
#include "Platform/X11/RemoteControl.h"
#include "Platform/X11/TerminationSignals.h"

#include <QGuiApplication>

namespace quillon::x11 {

X11Application::X11Application(RemoteControl* remoteControl, NotificationCenter& notifications)
    : remoteControl(remoteControl) {
    // A command that shows nothing has no application with windows.
    if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        QObject::connect(application, &QGuiApplication::applicationStateChanged, &context,
                         [&notifications](Qt::ApplicationState state) {
                             if (state == Qt::ApplicationActive) {
                                 notifications.post(applicationDidBecomeActiveNotification);
                             }
                         });
    }
}

X11Application::~X11Application() = default;

void X11Application::setDelegate(std::weak_ptr<ApplicationDelegate> newDelegate) {
    delegate = std::move(newDelegate);
}

void X11Application::setActivationPolicy(ActivationPolicy /*policy*/) {}

void X11Application::setMainMenu(std::shared_ptr<Menu> menu) {
    mainMenu = std::move(menu);
}

void X11Application::connectRemoteControl() {
    if (remoteControl == nullptr) {
        return;
    }
    auto& service = remoteControl->service();
    service.onCommand = [weak = delegate](const ScriptCommand& command) {
        const auto alive = weak.lock();
        return alive ? alive->performScriptCommand(command) : ScriptReply{ExitStatus::notRunning, {}};
    };
    service.onReopen = [weak = delegate] {
        if (const auto alive = weak.lock()) {
            alive->applicationShouldHandleReopen(false);
        }
    };
}

void X11Application::run() {
    signals = std::make_unique<TerminationSignals>([this] { terminate(); });
    connectRemoteControl();
    if (const auto alive = delegate.lock()) {
        alive->applicationDidFinishLaunching();
    }
    // The loop cannot be told to end before it runs.
    if (!hasEnded) {
        status = QCoreApplication::exec();
    }
    if (const auto alive = delegate.lock()) {
        alive->applicationWillTerminate();
    }
}

/// A program without windows has nothing that could be active.
void X11Application::activateIgnoringOtherApps() {
    if (onActivate) {
        onActivate();
    }
}

void X11Application::terminate() {
    hasEnded = true;
    QCoreApplication::exit(ExitStatus::success);
}

} // namespace quillon::x11
