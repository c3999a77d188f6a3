#pragma once

#include "Platform/Registration.h"

#include <functional>
#include <string_view>

namespace quillon {

/// Notifications between processes (the default NSDistributedNotificationCenter). Main thread.
class DistributedNotificationCenter {
public:
    virtual ~DistributedNotificationCenter() = default;

    /// The callback runs on the main thread for every later notification of that name, from any sender, also while the
    /// program is not active (NSNotificationSuspensionBehaviorDeliverImmediately).
    [[nodiscard]] virtual RegistrationToken addObserver(std::string_view name, std::function<void()> callback) = 0;
};

} // namespace quillon
