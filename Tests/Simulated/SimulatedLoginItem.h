#pragma once

#include "Platform/LoginItem.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

/// Not enabled at first.
class SimulatedLoginItem final : public LoginItem {
public:
    SimulatedLoginItem(const SimulatedScheduler& scheduler, Journal& journal)
        : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] bool isEnabled() const override {
        scheduler.requireMain("LoginItem::isEnabled");
        return enabled;
    }
    bool registerItem() override { return change("registerItem", true); }
    bool unregisterItem() override { return change("unregisterItem", false); }

    /// The user switches it on or off in the system's own settings.
    void setEnabled(bool isEnabled) { enabled = isEnabled; }
    /// While true, the system refuses what the program asks for.
    void refuse(bool refuses) { refusesAll = refuses; }

private:
    bool change(std::string_view operation, bool isEnabled) {
        scheduler.requireMain(fmt::format("LoginItem::{}", operation));
        journal.record("loginItem.{}", operation);
        if (!refusesAll) {
            enabled = isEnabled;
        }
        return !refusesAll;
    }

    const SimulatedScheduler& scheduler;
    Journal& journal;
    bool enabled = false;
    bool refusesAll = false;
};

} // namespace quillon::simulated
