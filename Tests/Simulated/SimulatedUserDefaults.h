#pragma once

#include "Platform/UserDefaults.h"
#include "Simulated/Journal.h"

#include <functional>
#include <map>
#include <string>

namespace quillon::simulated {

/// Settings in memory. What the program writes is in the journal; what a test puts here with `store`, as the
/// user does by hand, is not.
class SimulatedUserDefaults final : public UserDefaults {
public:
    explicit SimulatedUserDefaults(Journal& journal) : journal(journal) {}

    [[nodiscard]] std::optional<PropertyValue> object(std::string_view key) const override;
    void set(std::string_view key, const PropertyValue& value) override;
    void remove(std::string_view key) override;

    void store(std::string_view key, PropertyValue value);
    /// How often any value was read.
    [[nodiscard]] int reads() const { return readCount; }

private:
    Journal& journal;
    std::map<std::string, PropertyValue, std::less<>> values;
    mutable int readCount = 0;
};

} // namespace quillon::simulated
