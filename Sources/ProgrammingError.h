#pragma once

#include <string_view>

namespace quillon {

/// Stops the process on something that cannot happen unless the program is wrong. The message names it and
/// goes to the standard error.
[[noreturn]] void programmingError(std::string_view message);

} // namespace quillon
