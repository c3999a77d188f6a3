#pragma once

#include "Platform/Accessibility.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// Reads of single attributes: what cannot be read or is of another type is absent. Any thread.
namespace quillon {

[[nodiscard]] std::optional<std::string> copyString(const AccessibilityElement& element, std::string_view attribute);
[[nodiscard]] std::optional<double> copyDouble(const AccessibilityElement& element, std::string_view attribute);
/// Null when it is absent.
[[nodiscard]] std::shared_ptr<AccessibilityElement> copyElement(const AccessibilityElement& element,
                                                                std::string_view attribute);

/// "AXPosition" and "AXSize"; the size is read only when there is a position.
[[nodiscard]] std::optional<DisplayRect> frameOf(const AccessibilityElement& element);

/// The result code as macOS describes it: "AXError(rawValue: -25204)".
[[nodiscard]] std::string describe(AccessibilityError error);

} // namespace quillon
