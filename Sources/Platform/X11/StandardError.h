#pragma once

#include <string_view>

namespace quillon::x11 {

/// Writes one line for the user on the standard error: the program's name, a colon and the text. Any thread.
void complain(std::string_view text);

} // namespace quillon::x11
