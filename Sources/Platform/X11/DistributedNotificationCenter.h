#pragma once

#include "Platform/DistributedNotificationCenter.h"

namespace quillon::x11 {

class AccessibilityStatus;

/// Announces by its macOS name what the session bus tells: that accessibility was switched on or off. Nothing else is
/// ever announced.
class X11DistributedNotificationCenter final : public DistributedNotificationCenter {
public:
    explicit X11DistributedNotificationCenter(AccessibilityStatus& status) : status(status) {}

    [[nodiscard]] RegistrationToken addObserver(std::string_view name, std::function<void()> callback) override;

private:
    AccessibilityStatus& status;
};

} // namespace quillon::x11
