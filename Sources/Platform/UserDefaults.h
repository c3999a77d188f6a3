#pragma once

#include "Platform/Registration.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace quillon {

using PropertyData = std::vector<std::byte>;

/// A stored value with the type it was stored with.
using PropertyValue = std::variant<bool, std::int64_t, double, std::string, PropertyData>;

/// The user's persistent settings (the standard NSUserDefaults). There are no registered defaults. Any
/// thread; a value written on one thread is seen by every later read on any thread. A change made by hand
/// from outside is seen by reads soon afterwards. Values that cannot be stored or read count as absent; the
/// platform reports why, nothing else is lost by it.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// None when the key is absent or its value has a type that `PropertyValue` does not have.
    [[nodiscard]] virtual std::optional<PropertyValue> object(std::string_view key) const = 0;
    virtual void set(std::string_view key, const PropertyValue& value) = 0;
    virtual void remove(std::string_view key) = 0;
    /// Called on the main thread after the value of the key has changed, whoever changed it (key-value observing of
    /// NSUserDefaults); a change made on the main thread may be told before the call that makes it returns. Main
    /// thread.
    [[nodiscard]] virtual RegistrationToken observe(std::string_view key, std::function<void()> callback) = 0;
};

} // namespace quillon
