#pragma once

#include "Platform/Application.h"
#include "Simulated/SimulatedWorkspace.h"

#include <functional>

namespace quillon::simulated {

/// The application object. `run` launches the delegate, does what the test has planned for the time in which the
/// application runs, and terminates.
class SimulatedApplication final : public Application {
public:
    SimulatedApplication(SimulatedWorkspace& workspace, SimulatedScheduler& scheduler, Journal& journal)
        : workspace(workspace), scheduler(scheduler), journal(journal) {}

    void setDelegate(std::weak_ptr<ApplicationDelegate> newDelegate) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void setMainMenu(std::shared_ptr<Menu> menu) override;
    void run() override;
    void activateIgnoringOtherApps() override;
    void terminate() override;

    [[nodiscard]] const std::shared_ptr<Menu>& mainMenu() const { return currentMainMenu; }
    /// The user presses the key of an item of the main menu; "Z" stands for Shift and Z.
    void pressKeyEquivalent(std::string_view key);
    /// What happens while the application runs; it has to lead to `terminate`.
    void whileRunning(std::function<void()> events) { planned = std::move(events); }
    [[nodiscard]] std::shared_ptr<ApplicationDelegate> delegate() const { return currentDelegate.lock(); }

private:
    void perform(StandardAction action);
    /// Stops the test when the delegate is gone.
    [[nodiscard]] std::shared_ptr<ApplicationDelegate> requireDelegate() const;

    SimulatedWorkspace& workspace;
    SimulatedScheduler& scheduler;
    Journal& journal;
    std::weak_ptr<ApplicationDelegate> currentDelegate;
    std::shared_ptr<Menu> currentMainMenu;
    std::function<void()> planned = [] {};
    bool wasRun = false;
    bool isTerminating = false;
};

} // namespace quillon::simulated
