#include "Platform/X11/StandardError.h"

#include <fmt/format.h>

#include <unistd.h>

namespace quillon::x11 {

void complain(std::string_view text) {
    const auto line = fmt::format("quillon: {}\n", text);
    // One call, so that lines of several threads stay whole. There is nobody to tell of a failure.
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace quillon::x11
