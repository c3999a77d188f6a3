#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillon {

/// A global keyboard shortcut as an application declares it to others. Titles are equal when they are canonically
/// equivalent.
struct PellamHotkey {
    /// Where the shortcut works.
    enum class ActiveContext {
        anywhere,
        /// Only while a web browser is in front.
        browser,
    };

    /// What the shortcut does, in the user's language.
    std::string actionTitle;
    std::uint16_t keyCode = 0;   ///< virtual key code
    std::uint64_t modifiers = 0; ///< `ModifierFlags`, unmasked
    ActiveContext activeContext = ActiveContext::anywhere;

    bool operator==(const PellamHotkey& other) const;
};

/// The context's name in JSON, by which it is hashed too.
[[nodiscard]] std::string_view rawValue(PellamHotkey::ActiveContext context);

/// Why a text holds no hotkeys.
struct PellamHotkeyDecodingError {
    enum class Reason {
        notJSON,
        missingKey,
        wrongType,
        numberDoesNotFit,
        unknownContext,
    };

    Reason reason = Reason::notJSON;
    /// At which key; empty when the fault lies outside of all keys.
    std::string key;

    bool operator==(const PellamHotkeyDecodingError&) const = default;
};

/// A JSON array with a record for each hotkey: "actionTitle", "keyCode", "modifiers" and "activeContext", in this
/// order. None when a title is not UTF-8.
[[nodiscard]] std::optional<std::string> encodeHotkeys(const std::vector<PellamHotkey>& hotkeys);

/// Reads what `encodeHotkeys` writes. Every key is required, others are ignored.
[[nodiscard]] std::variant<std::vector<PellamHotkey>, PellamHotkeyDecodingError> decodeHotkeys(std::string_view json);

} // namespace quillon

template <>
struct std::hash<quillon::PellamHotkey> {
    std::size_t operator()(const quillon::PellamHotkey& hotkey) const;
};
