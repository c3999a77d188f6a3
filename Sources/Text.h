#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The text when it has at most `limit` user-perceived characters (extended grapheme clusters), else its
/// first `limit` of them and "…". Bytes that are not UTF-8 count as one character each.
[[nodiscard]] std::string cutToCharacters(std::string_view text, std::size_t limit);

/// The text's Unicode scalar values, canonically composed (NFC), by whose numbers texts are ordered; it is how macOS
/// orders them without a locale. Each byte that is not UTF-8 counts as U+FFFD.
[[nodiscard]] std::u32string canonicalComposition(std::string_view text);

/// True when the text is well-formed UTF-8.
[[nodiscard]] bool isValidUTF8(std::string_view text);

/// A decimal number at the start of a text and how many bytes it takes.
struct LeadingNumber {
    double value = 0;
    std::size_t length = 0;
};

/// None when the text does not start with a number: a sign, digits with a point among them, an exponent. A
/// number too large for a double is infinite. Independent of the locale.
[[nodiscard]] std::optional<LeadingNumber> readLeadingNumber(std::string_view text);

/// The shortest decimal text that reads back as the number, with ".0" when it is whole: 30.0, 0.05.
[[nodiscard]] std::string describe(double number);

/// "true" or "false".
[[nodiscard]] std::string_view describe(bool truth);

} // namespace quillon
