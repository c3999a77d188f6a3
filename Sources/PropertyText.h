#pragma once

#include "Platform/UserDefaults.h"

#include <string>
#include <string_view>

namespace quillon {

/// The value that a user means by a text typed at a command line: true or false, a whole number, a number with
/// a point or an exponent, else a text. A text in double quotes is a text without them.
[[nodiscard]] PropertyValue parsePropertyText(std::string_view text);

/// The value as a user reads it; data as its length in bytes.
[[nodiscard]] std::string propertyText(const PropertyValue& value);

} // namespace quillon
