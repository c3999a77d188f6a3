#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <variant>

namespace quillon::x11 {

/// The file that keeps the user's settings: one JSON object, which users may edit by hand. It knows nothing of the
/// values' meaning. Any thread, one at a time.
class SettingsFile {
public:
    explicit SettingsFile(std::string path) : path(std::move(path)) {}

    /// What the file holds; an empty object when there is no file. The text says what is wrong with it, in Italian.
    [[nodiscard]] std::variant<nlohmann::json, std::string> read() const;

    /// Changes the file as it is at the moment, while no other process of this program does, and replaces it at
    /// once. A damaged file is kept beside it, with ".damaged" added to its name, and `fallback` is changed in its
    /// stead. Returns what is wrong, in Italian, when it could not be written.
    [[nodiscard]] std::optional<std::string> change(const nlohmann::json& fallback,
                                                    const std::function<void(nlohmann::json&)>& apply) const;

    [[nodiscard]] const std::string& filePath() const { return path; }
    [[nodiscard]] std::string directory() const { return path.substr(0, path.rfind('/')); }

private:
    [[nodiscard]] std::optional<std::string> write(const nlohmann::json& document) const;
    [[nodiscard]] std::string damagedText(const std::string& problem) const;

    std::string path;
};

} // namespace quillon::x11
