#pragma once

#include "Platform/Bundle.h"
#include "Simulated/SimulatedScheduler.h"

#include <map>
#include <utility>

namespace quillon::simulated {

/// What is installed with the program: at first the information list of the real one, and no texts.
class SimulatedBundle final : public Bundle {
public:
    explicit SimulatedBundle(const SimulatedScheduler& scheduler) : scheduler(scheduler) {}

    [[nodiscard]] std::optional<std::string> textForInfoDictionaryKey(std::string_view key) const override {
        scheduler.requireMain("Bundle::textForInfoDictionaryKey");
        const auto found = information.find(std::string(key));
        return found == information.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::optional<std::string> localizedString(std::string_view key,
                                                             std::string_view table) const override {
        scheduler.requireMain("Bundle::localizedString");
        const auto found = texts.find({std::string(table), std::string(key)});
        return found == texts.end() ? std::nullopt : std::optional(found->second);
    }

    void setInformation(const std::string& key, const std::string& text) { information[key] = text; }
    void removeInformation(const std::string& key) { information.erase(key); }
    void setLocalizedString(const std::string& table, const std::string& key, const std::string& text) {
        texts[{table, key}] = text;
    }

private:
    const SimulatedScheduler& scheduler;
    std::map<std::string, std::string> information{{"CFBundleName", "Quillon"},
                                                   {"CFBundleShortVersionString", "0.1.0"}};
    std::map<std::pair<std::string, std::string>, std::string> texts;
};

} // namespace quillon::simulated
