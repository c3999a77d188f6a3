#pragma once

#include "Platform/Application.h"

#include <QObject>

#include <functional>
#include <memory>

namespace quillon {
class NotificationCenter;
}

namespace quillon::x11 {

class RemoteControl;
class TerminationSignals;

/// Qt's core application and event loop, which must exist. SIGTERM, SIGINT and SIGHUP end it in good order. There is
/// nothing like a Dock here, so the activation policy has no effect.
class X11Application final : public Application {
public:
    /// `remoteControl` carries the commands of scripts; null in a session without a bus.
    /// `notifications` tells that the program became the active one; it must outlive the application.
    X11Application(RemoteControl* remoteControl, NotificationCenter& notifications);
    ~X11Application() override;

    void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void setMainMenu(std::shared_ptr<Menu> menu) override;
    void run() override;
    void activateIgnoringOtherApps() override;
    void terminate() override;

    /// Null for none.
    [[nodiscard]] const std::shared_ptr<Menu>& currentMainMenu() const { return mainMenu; }
    /// Gives one of the program's windows the keyboard focus.
    std::function<void()> onActivate;
    /// What `run` ended with, for the process's caller.
    [[nodiscard]] int exitStatus() const { return status; }

private:
    void connectRemoteControl();

    std::weak_ptr<ApplicationDelegate> delegate;
    std::shared_ptr<Menu> mainMenu;
    RemoteControl* remoteControl;
    std::unique_ptr<TerminationSignals> signals;
    /// Ends the connection to Qt's application.
    QObject context;
    bool hasEnded = false;
    int status = 0;
};

} // namespace quillon::x11
