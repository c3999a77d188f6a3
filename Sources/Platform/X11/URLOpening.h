#pragma once

#include <string_view>

namespace quillon::x11 {

/// Opens the URL with a program of the desktop, which outlives this one; a page of macOS's System Settings with the
/// desktop's own settings. Waits for nothing. Nothing happens when the text is no URL or there is no such program.
void openURL(std::string_view url);

} // namespace quillon::x11
