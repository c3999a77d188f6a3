#pragma once

#include "Platform/Registration.h"

#include <functional>
#include <string>
#include <string_view>

namespace quillon {

/// Posted by the platform when screens come, go or change (NSApplicationDidChangeScreenParametersNotification).
inline constexpr std::string_view screenParametersDidChangeNotification =
    "NSApplicationDidChangeScreenParametersNotification";
/// Posted by the platform when the program becomes the active one (NSApplicationDidBecomeActiveNotification).
inline constexpr std::string_view applicationDidBecomeActiveNotification = "NSApplicationDidBecomeActiveNotification";

/// Notifications inside this process (the default NSNotificationCenter). Main thread.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    /// The callback runs on the main thread for every later notification of that name, from any sender.
    [[nodiscard]] virtual RegistrationToken addObserver(std::string_view name, std::function<void()> callback) = 0;
    /// Delivers to every observer of the name before it returns.
    virtual void post(std::string_view name) = 0;
};

} // namespace quillon
