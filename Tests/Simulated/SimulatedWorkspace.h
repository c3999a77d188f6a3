#pragma once

#include "Platform/Workspace.h"
#include "Simulated/DesktopModel.h"
#include "Simulated/Observers.h"
#include "Simulated/SimulatedNotificationCenter.h"
#include "Simulated/SimulatedProcess.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

/// The model's applications. Announcements arrive as tasks of the main queue.
class SimulatedWorkspace final : public Workspace {
public:
    SimulatedWorkspace(DesktopModel& model, SimulatedScheduler& scheduler,
                       SimulatedNotificationCenter& notificationCenter, Journal& journal);

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessID pid) const override;
    void activateApplication(ProcessID pid) override;
    void openURL(std::string_view url) override;
    [[nodiscard]] RegistrationToken observeDidActivateApplication(ApplicationCallback callback) override;
    [[nodiscard]] RegistrationToken observeDidTerminateApplication(ApplicationCallback callback) override;

    /// Makes a running application the frontmost one, and announces it if it was not.
    void setFrontmost(ProcessID pid);
    /// Whether the frontmost application is this program.
    [[nodiscard]] bool isProgramActive() const { return model.frontmost == SimulatedProcessInfo::ownPID; }
    /// None stands for a notification that carries no application.
    void announceActivation(std::optional<RunningApplication> application);
    void announceTermination(std::optional<RunningApplication> application);
    /// Registrations of both kinds that are in force.
    [[nodiscard]] std::size_t observers() const { return activations.count() + terminations.count(); }

private:
    using ApplicationObservers = Observers<const std::optional<RunningApplication>&>;

    [[nodiscard]] std::optional<RunningApplication> identityOf(ProcessID pid) const;

    DesktopModel& model;
    SimulatedScheduler& scheduler;
    SimulatedNotificationCenter& notificationCenter;
    Journal& journal;
    ApplicationObservers activations;
    ApplicationObservers terminations;
};

} // namespace quillon::simulated
