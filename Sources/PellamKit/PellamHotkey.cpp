#include "PellamKit/PellamHotkey.h"

#include "ProgrammingError.h"
#include "Text.h"

#include <nlohmann/json.hpp>

#include <array>
#include <limits>
#include <type_traits>
#include <utility>

namespace quillon {

namespace {

using Json = nlohmann::ordered_json;
using Error = PellamHotkeyDecodingError;
using Reason = PellamHotkeyDecodingError::Reason;

constexpr const char* actionTitleKey = "actionTitle";
constexpr const char* keyCodeKey = "keyCode";
constexpr const char* modifiersKey = "modifiers";
constexpr const char* activeContextKey = "activeContext";

constexpr std::array<std::pair<PellamHotkey::ActiveContext, std::string_view>, 2> rawValues{{
    {PellamHotkey::ActiveContext::anywhere, "anywhere"},
    {PellamHotkey::ActiveContext::browser, "browser"},
}};

std::optional<PellamHotkey::ActiveContext> contextNamed(std::string_view name) {
    for (const auto& [context, contextName] : rawValues) {
        if (contextName == name) {
            return context;
        }
    }
    return std::nullopt;
}

Json encode(const PellamHotkey& hotkey) {
    Json record;
    record[actionTitleKey] = hotkey.actionTitle;
    record[keyCodeKey] = hotkey.keyCode;
    record[modifiersKey] = hotkey.modifiers;
    record[activeContextKey] = rawValue(hotkey.activeContext);
    return record;
}

std::optional<Error> faultOfNumber(const Json& record, const char* key, std::uint64_t largest) {
    const auto& value = record[key];
    if (!value.is_number()) {
        return Error{Reason::wrongType, key};
    }
    // Whole numbers that are not negative are held unsigned.
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > largest) {
        return Error{Reason::numberDoesNotFit, key};
    }
    return std::nullopt;
}

/// Why the value is no record of a hotkey; none when it is one.
std::optional<Error> fault(const Json& record) {
    if (!record.is_object()) {
        return Error{Reason::wrongType, ""};
    }
    for (const auto* key : {actionTitleKey, keyCodeKey, modifiersKey, activeContextKey}) {
        if (!record.contains(key)) {
            return Error{Reason::missingKey, key};
        }
    }
    for (const auto* key : {actionTitleKey, activeContextKey}) {
        if (!record[key].is_string()) {
            return Error{Reason::wrongType, key};
        }
    }
    if (auto error = faultOfNumber(record, keyCodeKey, std::numeric_limits<std::uint16_t>::max())) {
        return error;
    }
    if (auto error = faultOfNumber(record, modifiersKey, std::numeric_limits<std::uint64_t>::max())) {
        return error;
    }
    if (!contextNamed(record[activeContextKey].get<std::string>())) {
        return Error{Reason::unknownContext, activeContextKey};
    }
    return std::nullopt;
}

/// Of a record without a fault.
PellamHotkey decode(const Json& record) {
    return {record[actionTitleKey].get<std::string>(), record[keyCodeKey].get<std::uint16_t>(),
            record[modifiersKey].get<std::uint64_t>(), *contextNamed(record[activeContextKey].get<std::string>())};
}

} // namespace

bool PellamHotkey::operator==(const PellamHotkey& other) const {
    return canonicalComposition(actionTitle) == canonicalComposition(other.actionTitle) && keyCode == other.keyCode &&
           modifiers == other.modifiers && activeContext == other.activeContext;
}

std::string_view rawValue(PellamHotkey::ActiveContext context) {
    for (const auto& [known, name] : rawValues) {
        if (known == context) {
            return name;
        }
    }
    programmingError("an unknown active context of a hotkey");
}

std::optional<std::string> encodeHotkeys(const std::vector<PellamHotkey>& hotkeys) {
    auto list = Json::array();
    for (const auto& hotkey : hotkeys) {
        if (!isValidUTF8(hotkey.actionTitle)) {
            return std::nullopt;
        }
        list.push_back(encode(hotkey));
    }
    return list.dump();
}

std::variant<std::vector<PellamHotkey>, PellamHotkeyDecodingError> decodeHotkeys(std::string_view json) {
    constexpr bool allowExceptions = false;
    const auto list = Json::parse(json, nullptr, allowExceptions);
    if (list.is_discarded()) {
        return Error{Reason::notJSON, ""};
    }
    if (!list.is_array()) {
        return Error{Reason::wrongType, ""};
    }
    std::vector<PellamHotkey> hotkeys;
    for (const auto& record : list) {
        if (auto error = fault(record)) {
            return *error;
        }
        hotkeys.push_back(decode(record));
    }
    return hotkeys;
}

} // namespace quillon

std::size_t std::hash<quillon::PellamHotkey>::operator()(const quillon::PellamHotkey& hotkey) const {
    std::size_t result = 0;
    const auto combine = [&](const auto& part) {
        // The golden ratio's bits keep equal parts at different places apart.
        result ^= std::hash<std::decay_t<decltype(part)>>()(part) + 0x9e3779b9 + (result << 6) + (result >> 2);
    };
    combine(quillon::canonicalComposition(hotkey.actionTitle));
    combine(hotkey.keyCode);
    combine(hotkey.modifiers);
    combine(quillon::rawValue(hotkey.activeContext));
    return result;
}
