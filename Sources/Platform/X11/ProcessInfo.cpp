#include "Platform/X11/ProcessInfo.h"

#include "Platform/X11/ProgramName.h"

#include <cerrno>

#include <unistd.h>

namespace quillon::x11 {

ProcessID X11ProcessInfo::processIdentifier() const {
    return getpid();
}

std::string X11ProcessInfo::processName() const {
    return program_invocation_short_name;
}

OperatingSystemVersion X11ProcessInfo::operatingSystemVersion() const {
    return {inputRouting == InputRouting::scroll ? 27 : 26, 0, 0};
}

std::optional<std::string> X11ProcessInfo::bundleIdentifier() const {
    return programIdentifier;
}

} // namespace quillon::x11
