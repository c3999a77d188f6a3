#include "Text.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <locale>
#include <sstream>
#include <vector>

namespace quillon {

namespace {

/// Reads the code point at the start of a text that is not empty and returns its length in bytes. Negative
/// in `codepoint` stands for a byte that is not UTF-8.
std::size_t readCodePoint(std::string_view text, utf8proc_int32_t& codepoint) {
    const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                         static_cast<utf8proc_ssize_t>(text.size()), &codepoint);
    if (length < 0) {
        codepoint = -1;
        return 1;
    }
    return static_cast<std::size_t>(length);
}

/// The text with U+FFFD in the place of each byte that is not UTF-8.
std::string withoutInvalidBytes(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        utf8proc_int32_t codepoint = -1;
        const auto length = readCodePoint(text, codepoint);
        result += codepoint < 0 ? "\uFFFD" : text.substr(0, length);
        text.remove_prefix(length);
    }
    return result;
}

std::size_t countDigits(std::string_view text) {
    return std::min(text.find_first_not_of("0123456789"), text.size());
}

std::size_t countSign(std::string_view text) {
    return text.starts_with('+') || text.starts_with('-') ? 1 : 0;
}

/// The length of the number at the start of the text; 0 when there is none.
std::size_t numberLength(std::string_view text) {
    auto length = countSign(text);
    auto digits = countDigits(text.substr(length));
    length += digits;
    if (text.substr(length).starts_with('.')) {
        const auto decimals = countDigits(text.substr(length + 1));
        length += 1 + decimals;
        digits += decimals;
    }
    if (digits == 0) {
        return 0;
    }
    if (const auto rest = text.substr(length); rest.starts_with('e') || rest.starts_with('E')) {
        const auto sign = countSign(rest.substr(1));
        const auto exponent = countDigits(rest.substr(1 + sign));
        length += exponent == 0 ? 0 : 1 + sign + exponent;
    }
    return length;
}

} // namespace

std::string cutToCharacters(std::string_view text, std::size_t limit) {
    std::size_t characters = 0;
    utf8proc_int32_t previous = -1;
    utf8proc_int32_t breakState = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        utf8proc_int32_t codepoint = -1;
        const auto length = readCodePoint(text.substr(offset), codepoint);
        const bool startsCharacter =
            previous < 0 || codepoint < 0 || utf8proc_grapheme_break_stateful(previous, codepoint, &breakState);
        if (startsCharacter && characters++ == limit) {
            return std::string(text.substr(0, offset)) + "…";
        }
        if (codepoint < 0) {
            breakState = 0;
        }
        previous = codepoint;
        offset += length;
    }
    return std::string(text);
}

std::u32string canonicalComposition(std::string_view text) {
    const auto repaired = withoutInvalidBytes(text);
    const auto decompose = [&](std::vector<utf8proc_int32_t>& buffer) {
        return utf8proc_decompose(reinterpret_cast<const utf8proc_uint8_t*>(repaired.data()),
                                  static_cast<utf8proc_ssize_t>(repaired.size()), buffer.data(),
                                  static_cast<utf8proc_ssize_t>(buffer.size()),
                                  static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_DECOMPOSE));
    };
    std::vector<utf8proc_int32_t> scalars;
    // A buffer that is too small tells the size that is needed.
    scalars.resize(static_cast<std::size_t>(decompose(scalars)));
    decompose(scalars);
    const auto length = utf8proc_normalize_utf32(scalars.data(), static_cast<utf8proc_ssize_t>(scalars.size()),
                                                 static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE));
    scalars.resize(static_cast<std::size_t>(length));
    return {scalars.begin(), scalars.end()};
}

bool isValidUTF8(std::string_view text) {
    while (!text.empty()) {
        utf8proc_int32_t codepoint = -1;
        const auto length = readCodePoint(text, codepoint);
        if (codepoint < 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::optional<LeadingNumber> readLeadingNumber(std::string_view text) {
    const auto length = numberLength(text);
    if (length == 0) {
        return std::nullopt;
    }
    std::istringstream stream{std::string(text.substr(0, length))};
    stream.imbue(std::locale::classic());
    LeadingNumber number{0, length};
    stream >> number.value;
    if (stream.fail() && std::abs(number.value) == std::numeric_limits<double>::max()) {
        // The stream's way to say that the number is out of range.
        number.value = std::copysign(std::numeric_limits<double>::infinity(), number.value);
    }
    return number;
}

std::string describe(double number) {
    auto text = fmt::format("{}", number);
    if (text.find_first_not_of("-0123456789") == std::string::npos) {
        text += ".0";
    }
    return text;
}

std::string_view describe(bool truth) {
    return truth ? "true" : "false";
}

} // namespace quillon
