#include "Platform/X11/SafeText.h"

#include <utf8proc.h>

#include <algorithm>

namespace quillon::x11 {

namespace {

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

bool isLineBreakOrControl(utf8proc_int32_t codepoint) {
    const auto category = utf8proc_category(codepoint);
    return category == UTF8PROC_CATEGORY_CC || category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
}

constexpr std::size_t longestMarkRun = 30;

bool isCombiningMark(utf8proc_int32_t codepoint) {
    const auto category = utf8proc_category(codepoint);
    return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_ME;
}

/// The length of the escape sequence at the start of a text that begins with the escape character: any number of
/// intermediate bytes, then a final one.
std::size_t escapeLength(std::string_view bytes) {
    const auto isIntermediate = [](char byte) { return byte >= 0x20 && byte <= 0x2f; };
    const auto last = std::find_if_not(bytes.begin() + 1, bytes.end(), isIntermediate);
    return std::min(static_cast<std::size_t>(last - bytes.begin()) + 1, bytes.size());
}

} // namespace

std::string safeText(std::string_view bytes) {
    std::string text;
    std::size_t markRun = 0;
    while (!bytes.empty()) {
        utf8proc_int32_t codepoint = -1;
        const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(bytes.data()),
                                             static_cast<utf8proc_ssize_t>(bytes.size()), &codepoint);
        const bool isValid = length > 0;
        const auto consumed = isValid ? static_cast<std::size_t>(length) : 1;
        auto addition = isValid ? bytes.substr(0, consumed) : replacementCharacter;
        if (isValid && isLineBreakOrControl(codepoint)) {
            addition = " ";
        }
        markRun = isValid && isCombiningMark(codepoint) ? markRun + 1 : 0;
        if (markRun > longestMarkRun) {
            addition = {};
        }
        if (text.size() + addition.size() > longestForeignText) {
            break;
        }
        text += addition;
        bytes.remove_prefix(consumed);
    }
    return text;
}

std::string latin1ToUTF8(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            text += byte;
        } else {
            text += static_cast<char>(0xc0 | (code >> 6));
            text += static_cast<char>(0x80 | (code & 0x3f));
        }
    }
    return text;
}

std::string compoundTextToUTF8(std::string_view bytes) {
    constexpr char escape = '\x1b';
    std::string text;
    bool isUTF8 = false;
    while (!bytes.empty()) {
        if (bytes.front() == escape) {
            const auto sequence = bytes.substr(0, escapeLength(bytes));
            isUTF8 = sequence == "\x1b%G" || (isUTF8 && sequence != "\x1b%@");
            bytes.remove_prefix(sequence.size());
            continue;
        }
        const auto run = bytes.substr(0, bytes.find(escape));
        text += isUTF8 ? std::string(run) : latin1ToUTF8(run);
        bytes.remove_prefix(run.size());
    }
    return text;
}

} // namespace quillon::x11
