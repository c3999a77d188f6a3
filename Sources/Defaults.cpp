#include "Defaults.h"

#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"
#include "Text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string>

namespace quillon::Defaults {

namespace {

constexpr std::string_view blanks = " \t\n\v\f\r";

std::string_view withoutLeadingBlanks(std::string_view text) {
    const auto start = text.find_first_not_of(blanks);
    return start == std::string_view::npos ? std::string_view() : text.substr(start);
}

bool boolValue(std::string_view text) {
    text = withoutLeadingBlanks(text);
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        text.remove_prefix(1);
    }
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    return !text.empty() && std::string_view("YyTt123456789").find(text.front()) != std::string_view::npos;
}

double doubleValue(std::string_view text) {
    const auto number = readLeadingNumber(withoutLeadingBlanks(text));
    return number ? number->value : 0;
}

using IntegerLimits = std::numeric_limits<std::int64_t>;

std::int64_t integerValue(std::string_view text) {
    text = withoutLeadingBlanks(text);
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range) {
        return text.starts_with('-') ? IntegerLimits::min() : IntegerLimits::max();
    }
    return number;
}

std::int64_t integerValue(double number) {
    constexpr double tooLarge = 0x1p63;
    if (std::isnan(number)) {
        return 0;
    }
    if (number >= tooLarge) {
        return IntegerLimits::max();
    }
    return number < -tooLarge ? IntegerLimits::min() : static_cast<std::int64_t>(number);
}

struct AsBool {
    bool operator()(const std::string& text) const { return boolValue(text); }
    bool operator()(const PropertyData&) const { return false; }
    bool operator()(auto number) const { return number != 0; }
};

struct AsDouble {
    double operator()(const std::string& text) const { return doubleValue(text); }
    double operator()(const PropertyData&) const { return 0; }
    double operator()(auto number) const { return static_cast<double>(number); }
};

struct AsInteger {
    std::int64_t operator()(const std::string& text) const { return integerValue(text); }
    std::int64_t operator()(double number) const { return integerValue(number); }
    std::int64_t operator()(const PropertyData&) const { return 0; }
    std::int64_t operator()(auto number) const { return static_cast<std::int64_t>(number); }
};

} // namespace

std::optional<bool> storedBool(std::string_view key) {
    const auto value = platform().userDefaults().object(key);
    const auto* truth = value ? std::get_if<bool>(&*value) : nullptr;
    return truth != nullptr ? std::optional(*truth) : std::nullopt;
}

bool boolForKey(std::string_view key) {
    const auto value = platform().userDefaults().object(key);
    return value && std::visit(AsBool(), *value);
}

double doubleForKey(std::string_view key) {
    const auto value = platform().userDefaults().object(key);
    return value ? std::visit(AsDouble(), *value) : 0;
}

std::int64_t integerForKey(std::string_view key) {
    const auto value = platform().userDefaults().object(key);
    return value ? std::visit(AsInteger(), *value) : 0;
}

} // namespace quillon::Defaults
