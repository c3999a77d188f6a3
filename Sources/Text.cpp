#include "Text.h"

#include <fmt/format.h>
#include <utf8proc.h>

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
