#pragma once

#include "Platform/DistributedNotificationCenter.h"
#include "Platform/InProcessNotificationCenter.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

class SimulatedDistributedNotificationCenter final : public DistributedNotificationCenter {
public:
    SimulatedDistributedNotificationCenter(SimulatedScheduler& scheduler, Journal& journal)
        : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] RegistrationToken addObserver(std::string_view name, std::function<void()> callback) override {
        scheduler.requireMain("DistributedNotificationCenter::addObserver");
        journal.record("distributedNotificationCenter.addObserver {}", name);
        return center.addObserver(name, std::move(callback));
    }

    /// Another process posts it. It arrives as a task of the main queue.
    void postFromOutside(const std::string& name) {
        scheduler.mainAsync([this, name] { center.post(name); });
    }

private:
    SimulatedScheduler& scheduler;
    Journal& journal;
    InProcessNotificationCenter center;
};

} // namespace quillon::simulated
