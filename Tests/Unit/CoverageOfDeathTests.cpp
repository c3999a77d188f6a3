// Part of coverage builds only: writes the coverage of a process that aborts, as the children of death tests do.

#include <csignal>

extern "C" void __gcov_dump();

namespace {

void writeCoverage(int /*signal*/) {
    __gcov_dump();
}

[[maybe_unused]] const auto previousHandler = std::signal(SIGABRT, writeCoverage);

} // namespace
