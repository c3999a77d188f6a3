#include "Platform/Platform.h"

#include "Platform/OneTimeValue.h"
#include "ProgrammingError.h"

#include <utility>

namespace quillon {

namespace {
Platform* current = nullptr;
}

Platform& platform() {
    if (current == nullptr) {
        programmingError("no platform is installed");
    }
    return *current;
}

Application& sharedApplication() {
    auto* application = platform().sharedApplication();
    if (application == nullptr) {
        programmingError("there is no shared application");
    }
    return *application;
}

PlatformScope::PlatformScope(Platform& platform) : previous(std::exchange(current, &platform)) {
    OneTimeValueBase::resetAll();
}

PlatformScope::~PlatformScope() {
    OneTimeValueBase::resetAll();
    current = previous;
}

} // namespace quillon
