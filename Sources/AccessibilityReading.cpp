#include "AccessibilityReading.h"

#include <fmt/format.h>

namespace quillon {

namespace {

template <class T>
std::optional<T> copyValue(const AccessibilityElement& element, std::string_view attribute) {
    const auto read = element.copyAttributeValue(attribute);
    const auto* value = read.get<T>();
    return value != nullptr ? std::optional(*value) : std::nullopt;
}

} // namespace

std::optional<std::string> copyString(const AccessibilityElement& element, std::string_view attribute) {
    return copyValue<std::string>(element, attribute);
}

std::optional<double> copyDouble(const AccessibilityElement& element, std::string_view attribute) {
    return copyValue<double>(element, attribute);
}

std::shared_ptr<AccessibilityElement> copyElement(const AccessibilityElement& element, std::string_view attribute) {
    return copyValue<std::shared_ptr<AccessibilityElement>>(element, attribute).value_or(nullptr);
}

std::optional<DisplayRect> frameOf(const AccessibilityElement& element) {
    const auto origin = copyValue<DisplayPoint>(element, "AXPosition");
    if (!origin) {
        return std::nullopt;
    }
    const auto size = copyValue<Size>(element, "AXSize");
    return size ? std::optional(DisplayRect{*origin, *size}) : std::nullopt;
}

std::string describe(AccessibilityError error) {
    return fmt::format("AXError(rawValue: {})", static_cast<int>(error));
}

} // namespace quillon
