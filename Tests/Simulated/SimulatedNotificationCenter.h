#pragma once

#include "Platform/InProcessNotificationCenter.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

class SimulatedNotificationCenter final : public NotificationCenter {
public:
    SimulatedNotificationCenter(const SimulatedScheduler& scheduler, Journal& journal)
        : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] RegistrationToken addObserver(std::string_view name, std::function<void()> callback) override {
        scheduler.requireMain("NotificationCenter::addObserver");
        journal.record("notificationCenter.addObserver {}", name);
        return center.addObserver(name, std::move(callback));
    }
    void post(std::string_view name) override {
        scheduler.requireMain("NotificationCenter::post");
        journal.record("notificationCenter.post {}", name);
        center.post(name);
    }

private:
    const SimulatedScheduler& scheduler;
    Journal& journal;
    InProcessNotificationCenter center;
};

} // namespace quillon::simulated
