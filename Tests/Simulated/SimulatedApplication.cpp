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
