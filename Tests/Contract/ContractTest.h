#pragma once

#include "World.h"

#include <gtest/gtest.h>

namespace quillon::contract {

/// More than anything takes on a slow machine.
inline constexpr Seconds patience{10};
/// How long to look for something that must not happen.
inline constexpr Seconds quietTime{0.5};

/// Base of the suites: a world of its own for each test, its platform installed.
class ContractTest : public testing::Test {
protected:
    Platform& desktop() { return world->platform(); }

    bool eventually(const std::function<bool()>& condition) { return world->runUntil(condition, patience); }
    bool stays(const std::function<bool()>& condition) {
        return !world->runUntil([&] { return !condition(); }, quietTime);
    }
    /// Lets the platform serve its events for a while.
    void pass(Seconds time) {
        world->runUntil([] { return false; }, time);
    }

    std::unique_ptr<World> world = makeWorld();
    PlatformScope scope{world->platform()};
};

} // namespace quillon::contract
