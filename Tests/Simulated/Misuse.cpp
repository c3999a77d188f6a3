#include "Simulated/Misuse.h"

#include <cstdio>
#include <cstdlib>

namespace quillon::simulated {

void misuse(std::string_view what) {
    std::fprintf(stderr, "simulated desktop: misuse: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

} // namespace quillon::simulated
