#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// Text of other programs, made fit for menus, terminals and files. Pure functions.
namespace quillon::x11 {

/// The longest text that is taken from another program, in bytes.
inline constexpr std::size_t longestForeignText = 1024;

/// Well-formed UTF-8 on one line: each byte that is not UTF-8 becomes U+FFFD, each control character or line
/// separator a blank; of a run of combining marks the first 30 stay, the most that Unicode's stream-safe text has;
/// cut to `longestForeignText` bytes at a character's boundary.
[[nodiscard]] std::string safeText(std::string_view bytes);

/// The UTF-8 form of text in ISO 8859-1.
[[nodiscard]] std::string latin1ToUTF8(std::string_view bytes);

/// The UTF-8 form of an X compound text, as far as it is in ISO 8859-1 or marked as UTF-8; the escape sequences
/// are left out, and other character sets are read as if they were ISO 8859-1.
[[nodiscard]] std::string compoundTextToUTF8(std::string_view bytes);

} // namespace quillon::x11
