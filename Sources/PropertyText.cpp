#include "PropertyText.h"

#include "Text.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <optional>

namespace quillon {

namespace {

std::optional<std::int64_t> wholeInteger(std::string_view text) {
    std::int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

struct AsText {
    std::string operator()(bool truth) const { return std::string(describe(truth)); }
    std::string operator()(std::int64_t number) const { return fmt::format("{}", number); }
    std::string operator()(double number) const { return describe(number); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const PropertyData& data) const { return fmt::format("{} byte", data.size()); }
};

} // namespace

PropertyValue parsePropertyText(std::string_view text) {
    if (text == "true" || text == "false") {
        return text == "true";
    }
    if (const auto integer = wholeInteger(text)) {
        return *integer;
    }
    if (const auto number = readLeadingNumber(text);
        number && number->length == text.size() && std::isfinite(number->value)) {
        return number->value;
    }
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, text.size() - 2);
    }
    return std::string(text);
}

std::string propertyText(const PropertyValue& value) {
    return std::visit(AsText(), value);
}

} // namespace quillon
