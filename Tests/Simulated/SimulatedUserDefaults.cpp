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
    change(key, value);
}

void SimulatedUserDefaults::remove(std::string_view key) {
    requireKey(key, "remove");
    journal.record("userDefaults.remove {}", key);
    change(key, std::nullopt);
}

RegistrationToken SimulatedUserDefaults::observe(std::string_view key, std::function<void()> callback) {
    requireKey(key, "observe");
    scheduler.requireMain("UserDefaults::observe");
    journal.record("userDefaults.observe {}", key);
    const auto checkRelease = [this, key = std::string(key)] {
        scheduler.requireMain("ending an observation of a setting");
        journal.record("userDefaults.endObserving {}", key);
    };
    return observers.try_emplace(std::string(key), checkRelease).first->second.add(std::move(callback));
}

void SimulatedUserDefaults::store(std::string_view key, PropertyValue value) {
    change(key, std::move(value));
}

void SimulatedUserDefaults::change(std::string_view key, std::optional<PropertyValue> value) {
    const auto entry = values.find(key);
    if (value == (entry == values.end() ? std::nullopt : std::optional(entry->second))) {
        return;
    }
    if (value) {
        values.insert_or_assign(std::string(key), *std::move(value));
    } else {
        values.erase(entry);
    }
    if (scheduler.currentQueue() == mainQueue) {
        notify(std::string(key));
    } else {
        scheduler.mainAsync([this, key = std::string(key)] { notify(key); });
    }
}

void SimulatedUserDefaults::notify(const std::string& key) const {
    if (const auto entry = observers.find(key); entry != observers.end()) {
        entry->second.notify();
    }
}

} // namespace quillon::simulated
