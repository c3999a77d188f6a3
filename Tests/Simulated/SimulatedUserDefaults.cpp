#include "Simulated/SimulatedUserDefaults.h"

#include "Simulated/Misuse.h"

namespace quillon::simulated {

namespace {

struct AsText {
    std::string operator()(const std::string& text) const { return fmt::format("\"{}\"", text); }
    std::string operator()(const PropertyData& data) const { return fmt::format("<{} bytes>", data.size()); }
    std::string operator()(auto value) const { return fmt::format("{}", value); }
};

void requireKey(std::string_view key, std::string_view operation) {
    if (key.empty()) {
        misuse(fmt::format("UserDefaults::{} with an empty key", operation));
    }
}

} // namespace

std::optional<PropertyValue> SimulatedUserDefaults::object(std::string_view key) const {
    requireKey(key, "object");
    ++readCount;
    const auto entry = values.find(key);
    return entry == values.end() ? std::nullopt : std::optional(entry->second);
}

void SimulatedUserDefaults::set(std::string_view key, const PropertyValue& value) {
    requireKey(key, "set");
    journal.record("userDefaults.set {}={}", key, std::visit(AsText(), value));
    store(key, value);
}

void SimulatedUserDefaults::remove(std::string_view key) {
    requireKey(key, "remove");
    journal.record("userDefaults.remove {}", key);
    if (const auto entry = values.find(key); entry != values.end()) {
        values.erase(entry);
    }
}

void SimulatedUserDefaults::store(std::string_view key, PropertyValue value) {
    values.insert_or_assign(std::string(key), std::move(value));
}

} // namespace quillon::simulated
