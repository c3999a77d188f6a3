#include "ProgrammingError.h"

#include <cstdio>
#include <cstdlib>

namespace quillon {

void programmingError(std::string_view message) {
    std::fprintf(stderr, "quillon: programming error: %.*s\n", static_cast<int>(message.size()), message.data());
    std::abort();
}

} // namespace quillon
