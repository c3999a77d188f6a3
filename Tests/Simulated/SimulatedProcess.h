#pragma once

#include "Platform/EventAccess.h"
#include "Platform/ProcessInfo.h"
#include "Simulated/SimulatedScheduler.h"

namespace quillon::simulated {

/// This process as its tests want it.
class SimulatedProcessInfo final : public ProcessInfo {
public:
    static constexpr ProcessID ownPID = 500;

    [[nodiscard]] ProcessID processIdentifier() const override { return ownPID; }
    [[nodiscard]] std::string processName() const override { return "quillon"; }
    [[nodiscard]] OperatingSystemVersion operatingSystemVersion() const override { return version; }
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const override { return bundle; }

    void setOperatingSystemVersion(OperatingSystemVersion newVersion) { version = newVersion; }
    void setBundleIdentifier(std::optional<std::string> identifier) { bundle = std::move(identifier); }

private:
    OperatingSystemVersion version{15, 0, 0};
    std::optional<std::string> bundle = "local.quillon.floating";
};

class SimulatedEventAccess final : public EventAccess {
public:
    SimulatedEventAccess(const SimulatedScheduler& scheduler, Journal& journal)
        : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] bool preflightPostEventAccess() const override {
        scheduler.requireMain("EventAccess::preflightPostEventAccess");
        return mayPost;
    }
    bool requestPostEventAccess() override {
        scheduler.requireMain("EventAccess::requestPostEventAccess");
        journal.record("eventAccess.requestPostEventAccess");
        mayPost = mayPost || grantsPost;
        return mayPost;
    }
    [[nodiscard]] bool preflightListenEventAccess() const override {
        scheduler.requireMain("EventAccess::preflightListenEventAccess");
        return mayListen;
    }

    void set(bool post, bool listen) {
        mayPost = post;
        mayListen = listen;
    }
    /// From now on the user grants what the program requests.
    void grantPostOnRequest() { grantsPost = true; }

private:
    const SimulatedScheduler& scheduler;
    Journal& journal;
    bool grantsPost = false;
    bool mayPost = true;
    bool mayListen = true;
};

} // namespace quillon::simulated
