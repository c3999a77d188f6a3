#pragma once

#include "Platform/Registration.h"

#import <Foundation/Foundation.h>

#include <functional>

namespace quillon::macos {

/// Calls back on the main operation queue for every later notification of that name, from the sender or, for nil, from
/// any, until the token is destroyed.
[[nodiscard]] RegistrationToken observe(NSNotificationCenter* _Nonnull center, NSNotificationName _Nonnull name,
                                        id _Nullable sender, std::function<void(NSNotification* _Nonnull)> callback);

} // namespace quillon::macos
