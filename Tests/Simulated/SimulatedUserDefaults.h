#pragma once

#include "Platform/UserDefaults.h"
#include "Simulated/Observers.h"
#include "Simulated/SimulatedScheduler.h"

#include <functional>
#include <map>
#include <string>

namespace quillon::simulated {

/// Settings in memory. What the program writes is in the journal; what a test puts here with `store`, as the
/// user does by hand, is not. A change made on the main thread is told before the call returns, another one as a task
/// of the main queue.
class SimulatedUserDefaults final : public UserDefaults {
public:
    SimulatedUserDefaults(SimulatedScheduler& scheduler, Journal& journal) : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] std::optional<PropertyValue> object(std::string_view key) const override;
    void set(std::string_view key, const PropertyValue& value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] RegistrationToken observe(std::string_view key, std::function<void()> callback) override;

    void store(std::string_view key, PropertyValue value);
    /// How often any value was read.
    [[nodiscard]] int reads() const { return readCount; }

private:
    void change(std::string_view key, std::optional<PropertyValue> value);
    void notify(const std::string& key) const;

    SimulatedScheduler& scheduler;
    Journal& journal;
    std::map<std::string, PropertyValue, std::less<>> values;
    std::map<std::string, Observers<>, std::less<>> observers;
    mutable int readCount = 0;
};

} // namespace quillon::simulated
