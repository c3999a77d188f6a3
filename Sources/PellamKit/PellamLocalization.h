#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

/// Looks texts for the user up in the main bundle's table "Localizable". Main thread.
namespace quillon::L10n {

using Argument = std::variant<std::string, std::int64_t>;

/// The table's text for the key; the default value, which is the Italian text, when it has no entry.
[[nodiscard]] std::string string(std::string_view key, std::string_view defaultValue);

[[nodiscard]] std::string formatWith(std::string_view key, std::string_view defaultValue,
                                     const std::vector<Argument>& arguments);

/// The same text with the arguments, texts and integers, in the places of its placeholders: %@ for a text; %d, %ld or
/// %lld for an integer; %2$@ for the second argument; %% for a percent sign. A text of the table that the arguments do
/// not fit counts as absent; a default value that they do not fit stops the process.
template <class... Arguments>
[[nodiscard]] std::string format(std::string_view key, std::string_view defaultValue, Arguments&&... arguments) {
    return formatWith(key, defaultValue, {Argument(std::forward<Arguments>(arguments))...});
}

} // namespace quillon::L10n
