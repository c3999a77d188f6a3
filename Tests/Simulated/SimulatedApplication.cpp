#include "Simulated/SimulatedApplication.h"

#include "Simulated/Misuse.h"

namespace quillon::simulated {

void SimulatedApplication::setDelegate(std::weak_ptr<ApplicationDelegate> newDelegate) {
    scheduler.requireMain("Application::setDelegate");
    journal.record("application.setDelegate");
    currentDelegate = std::move(newDelegate);
}

void SimulatedApplication::setActivationPolicy(ActivationPolicy policy) {
    scheduler.requireMain("Application::setActivationPolicy");
    journal.record("application.setActivationPolicy {}",
                   policy == ActivationPolicy::accessory ? "accessory" : "regular");
}

void SimulatedApplication::setMainMenu(std::shared_ptr<Menu> menu) {
    scheduler.requireMain("Application::setMainMenu");
    journal.record("application.setMainMenu");
    currentMainMenu = std::move(menu);
}

void SimulatedApplication::pressKeyEquivalent(std::string_view key) {
    for (const auto& top : currentMainMenu ? currentMainMenu->items : std::vector<MenuItem>()) {
        for (const auto& item : top.submenu ? top.submenu->items : std::vector<MenuItem>()) {
            if (item.keyEquivalent != key || !item.isEnabled) {
                continue;
            }
            const auto* action = std::get_if<StandardAction>(&item.action);
            if (action == nullptr) {
                misuse(fmt::format("the item «{}» of the main menu does nothing that is simulated", item.title));
            }
            perform(*action);
            return;
        }
    }
    misuse(fmt::format("no item of the main menu has the key {}", key));
}

void SimulatedApplication::perform(StandardAction action) {
    switch (action) {
    case StandardAction::terminate:
        return terminate();
    case StandardAction::undo:
        return journal.record("firstResponder.undo");
    case StandardAction::redo:
        return journal.record("firstResponder.redo");
    case StandardAction::cut:
        return journal.record("firstResponder.cut");
    case StandardAction::copy:
        return journal.record("firstResponder.copy");
    case StandardAction::paste:
        return journal.record("firstResponder.paste");
    case StandardAction::selectAll:
        return journal.record("firstResponder.selectAll");
    }
}

void SimulatedApplication::run() {
    scheduler.requireMain("Application::run");
    if (std::exchange(wasRun, true)) {
        misuse("Application::run for the second time");
    }
    journal.record("application.run");
    requireDelegate()->applicationDidFinishLaunching();
    scheduler.runUntilIdle();
    planned();
    scheduler.runUntilIdle();
    if (!isTerminating) {
        misuse("Application::run would never end: nothing called terminate");
    }
    requireDelegate()->applicationWillTerminate();
}

void SimulatedApplication::activateIgnoringOtherApps() {
    scheduler.requireMain("Application::activateIgnoringOtherApps");
    journal.record("application.activateIgnoringOtherApps");
    workspace.setFrontmost(SimulatedProcessInfo::ownPID);
}

void SimulatedApplication::terminate() {
    scheduler.requireMain("Application::terminate");
    journal.record("application.terminate");
    isTerminating = true;
}

std::shared_ptr<ApplicationDelegate> SimulatedApplication::requireDelegate() const {
    const auto alive = delegate();
    if (!alive) {
        misuse("Application::run without a living delegate");
    }
    return alive;
}

} // namespace quillon::simulated
