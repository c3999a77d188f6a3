#pragma once

#include <string_view>

namespace quillon::simulated {

/// Stops the test: the program, or the test itself, used the desktop in a way that its ports forbid. The message
/// goes to the standard error and names the operation.
[[noreturn]] void misuse(std::string_view what);

} // namespace quillon::simulated
