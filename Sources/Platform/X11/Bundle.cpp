#include "Platform/Bundle.h"

#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/Directories.h"
#include "Platform/X11/StandardError.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <vector>

namespace quillon::x11 {

namespace {

using Texts = std::map<std::string, std::string, std::less<>>;

/// Far more than the texts need; keeps a wrong file from being read whole.
constexpr std::streamsize longestFile = 1'000'000; // bytes

/// The user's language, then the same without the country; none for a locale without a language.
std::vector<std::string> languages() {
    for (const auto* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const auto* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') {
            continue;
        }
        std::string locale(value);
        locale.resize(std::min(locale.find_first_of(".@"), locale.size()));
        if (locale == "C" || locale == "POSIX" || locale.find('/') != std::string::npos) {
            return {};
        }
        const auto language = locale.substr(0, locale.find('_'));
        return language == locale ? std::vector{locale} : std::vector{locale, language};
    }
    return {};
}

/// None when the file is damaged.
std::optional<Texts> readTexts(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::string content(static_cast<std::size_t>(longestFile), '\0');
    file.read(content.data(), longestFile);
    content.resize(static_cast<std::size_t>(file.gcount()));
    const auto table = nlohmann::json::parse(content, nullptr, false);
    if (!table.is_object()) {
        return std::nullopt;
    }
    Texts texts;
    for (const auto& [key, text] : table.items()) {
        if (text.is_string()) {
            texts.emplace(key, text.get<std::string>());
        }
    }
    return texts;
}

/// Texts in another language than the built-in ones: quillon/LANGUAGE/TABLE.json in a data directory, an object of
/// texts by key. The first file found counts, and is read once.
Texts findTexts(std::string_view table) {
    for (const auto& directory : dataDirectories()) {
        for (const auto& language : languages()) {
            const auto path = std::filesystem::path(directory) / "quillon" / language / fmt::format("{}.json", table);
            std::error_code ignored;
            if (!std::filesystem::is_regular_file(path, ignored)) {
                continue;
            }
            auto texts = readTexts(path);
            if (!texts) {
                complain(fmt::format("I testi in {} non sono leggibili: restano quelli incorporati", path.string()));
            }
            return texts.value_or(Texts());
        }
    }
    return {};
}

class X11Bundle final : public Bundle {
public:
    [[nodiscard]] std::optional<std::string> textForInfoDictionaryKey(std::string_view key) const override {
        if (key == "CFBundleName") {
            return "Quillon";
        }
        if (key == "CFBundleShortVersionString") {
            return QUILLON_VERSION;
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<std::string> localizedString(std::string_view key,
                                                             std::string_view table) const override {
        auto read = tables.find(table);
        if (read == tables.end()) {
            read = tables.emplace(table, findTexts(table)).first;
        }
        const auto text = read->second.find(key);
        return text != read->second.end() ? std::optional(text->second) : std::nullopt;
    }

private:
    mutable std::map<std::string, Texts, std::less<>> tables;
};

} // namespace

std::unique_ptr<Bundle> makeBundle() {
    return std::make_unique<X11Bundle>();
}

} // namespace quillon::x11
