#pragma once

#include "Platform/Application.h"

#include <QObject>

#include <memory>

namespace quillon::x11 {

class RemoteControl;
class TerminationSignals;

/// Qt's core application and event loop, which must exist. SIGTERM, SIGINT and SIGHUP end it in good order. There is
/// nothing like a Dock here, so the activation policy has no effect.
class X11Application final : public Application {
public:
    /// `remoteControl` carries the commands of scripts; null in a session without a bus.
    explicit X11Application(RemoteControl* remoteControl);
    ~X11Application() override;

    void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void setMainMenu(std::shared_ptr<Menu> menu) override;
    void run() override;
    void terminate() override;

    /// What `run` ended with, for the process's caller.
    [[nodiscard]] int exitStatus() const { return status; }

private:
    void connectRemoteControl();

    std::weak_ptr<ApplicationDelegate> delegate;
    std::shared_ptr<Menu> mainMenu;
    RemoteControl* remoteControl;
    std::unique_ptr<TerminationSignals> signals;
    bool hasEnded = false;
    int status = 0;
};

} // namespace quillon::x11
