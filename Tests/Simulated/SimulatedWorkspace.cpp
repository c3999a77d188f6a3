#include "Simulated/SimulatedWorkspace.h"

namespace quillon::simulated {

SimulatedWorkspace::SimulatedWorkspace(DesktopModel& model, SimulatedScheduler& scheduler,
                                       SimulatedNotificationCenter& notificationCenter, Journal& journal)
    : model(model), scheduler(scheduler), notificationCenter(notificationCenter), journal(journal), activations([this] {
          this->scheduler.requireMain("ending an observation of activations");
          this->journal.record("workspace.endObservingActivations");
      }),
      terminations([this] {
          this->scheduler.requireMain("ending an observation of terminations");
          this->journal.record("workspace.endObservingTerminations");
      }) {}

std::optional<RunningApplication> SimulatedWorkspace::frontmostApplication() const {
    return model.frontmost ? identityOf(*model.frontmost) : std::nullopt;
}

std::optional<RunningApplication> SimulatedWorkspace::runningApplication(ProcessID pid) const {
    scheduler.requireMain("Workspace::runningApplication");
    return identityOf(pid);
}

void SimulatedWorkspace::activateApplication(ProcessID pid) {
    scheduler.requireMain("Workspace::activateApplication");
    journal.record("workspace.activateApplication {}", pid);
    if (!identityOf(pid)) {
        return;
    }
    if (const auto* window = model.focusedWindow(pid)) {
        model.bringToFront(window->windowID);
    }
    setFrontmost(pid);
}

void SimulatedWorkspace::openURL(std::string_view url) {
    scheduler.requireMain("Workspace::openURL");
    journal.record("workspace.openURL {}", url);
}

void SimulatedWorkspace::setFrontmost(ProcessID pid) {
    const auto& application = model.application(pid);
    if (model.frontmost == pid) {
        return;
    }
    model.frontmost = pid;
    announceActivation(application.identity);
    if (isProgramActive()) {
        scheduler.mainAsync([this] { notificationCenter.post(applicationDidBecomeActiveNotification); });
    }
}

RegistrationToken SimulatedWorkspace::observeDidActivateApplication(ApplicationCallback callback) {
    scheduler.requireMain("Workspace::observeDidActivateApplication");
    journal.record("workspace.observeDidActivateApplication");
    return activations.add(std::move(callback));
}

RegistrationToken SimulatedWorkspace::observeDidTerminateApplication(ApplicationCallback callback) {
    scheduler.requireMain("Workspace::observeDidTerminateApplication");
    journal.record("workspace.observeDidTerminateApplication");
    return terminations.add(std::move(callback));
}

std::optional<RunningApplication> SimulatedWorkspace::identityOf(ProcessID pid) const {
    const auto* found = model.findApplication(pid);
    return found == nullptr ? std::nullopt : std::optional(found->identity);
}

void SimulatedWorkspace::announceActivation(std::optional<RunningApplication> application) {
    scheduler.mainAsync([this, application = std::move(application)] { activations.notify(application); });
}

void SimulatedWorkspace::announceTermination(std::optional<RunningApplication> application) {
    scheduler.mainAsync([this, application = std::move(application)] { terminations.notify(application); });
}

} // namespace quillon::simulated
