#include "Platform/X11/DistributedNotificationCenter.h"

#include "Platform/X11/AccessibilityStatus.h"

#include <utility>

namespace quillon::x11 {

RegistrationToken X11DistributedNotificationCenter::addObserver(std::string_view name, std::function<void()> callback) {
    if (name == "com.apple.accessibility.api") {
        return status.observe(std::move(callback));
    }
    return makeEndToken([] {});
}

} // namespace quillon::x11
