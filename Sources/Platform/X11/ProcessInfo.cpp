#include "Platform/X11/ProcessInfo.h"

#include "Platform/X11/ProgramName.h"

#include <unistd.h>

namespace quillon::x11 {

ProcessID X11ProcessInfo::processIdentifier() const {
    return getpid();
}

/// The last generation whose input is forwarded as synthetic events, which X11 can do for every window.
OperatingSystemVersion X11ProcessInfo::operatingSystemVersion() const {
    return {26, 0, 0};
}

std::optional<std::string> X11ProcessInfo::bundleIdentifier() const {
    return programIdentifier;
}

} // namespace quillon::x11
