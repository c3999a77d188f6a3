#pragma once

#include "Platform/KeyMonitor.h"
#include "Simulated/Misuse.h"
#include "Simulated/Observers.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

class SimulatedKeyMonitors final : public KeyMonitors {
public:
    SimulatedKeyMonitors(const SimulatedScheduler& scheduler, Journal& journal)
        : scheduler(scheduler), journal(journal), monitors([this] {
              this->scheduler.requireMain("removing a key monitor");
              this->journal.record("keyMonitors.removeMonitor");
          }) {}

    [[nodiscard]] RegistrationToken addLocalMonitor(std::function<TappedEvent(const KeyEvent&)> handler) override {
        scheduler.requireMain("KeyMonitors::addLocalMonitor");
        if (!handler) {
            misuse("KeyMonitors::addLocalMonitor without a handler");
        }
        journal.record("keyMonitors.addLocalMonitor");
        if (refusesAll) {
            return nullptr;
        }
        return monitors.add([handler = std::move(handler)](const KeyEvent& event, TappedEvent& result) {
            if (result == TappedEvent::passes) {
                result = handler(event);
            }
        });
    }

    /// While true, the system installs no monitors.
    void refuse(bool refuses) { refusesAll = refuses; }
    [[nodiscard]] std::size_t count() const { return monitors.count(); }
    /// A key goes down in one of the program's windows. The first monitor that swallows it is the last to see it.
    [[nodiscard]] TappedEvent deliver(const KeyEvent& event) const {
        auto result = TappedEvent::passes;
        monitors.notify(event, result);
        return result;
    }

private:
    const SimulatedScheduler& scheduler;
    Journal& journal;
    Observers<const KeyEvent&, TappedEvent&> monitors;
    bool refusesAll = false;
};

} // namespace quillon::simulated
