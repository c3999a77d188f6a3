#include "PellamKit/PellamLocalization.h"

#include "Platform/Bundle.h"
#include "Platform/Platform.h"
#include "ProgrammingError.h"

#include <fmt/format.h>

#include <charconv>
#include <optional>

namespace quillon::L10n {

namespace {

constexpr std::string_view table = "Localizable";

bool consume(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

/// Fills the placeholders of one text.
class Formatter {
public:
    explicit Formatter(const std::vector<Argument>& arguments) : arguments(arguments) {}

    /// None when the arguments do not fit the text.
    std::optional<std::string> format(std::string_view text) {
        std::string result;
        while (!text.empty()) {
            const auto percent = text.find('%');
            result += text.substr(0, percent);
            if (percent == std::string_view::npos) {
                break;
            }
            text.remove_prefix(percent + 1);
            const auto filled = fillPlaceholder(text);
            if (!filled) {
                return std::nullopt;
            }
            result += *filled;
        }
        return result;
    }

private:
    /// Takes a placeholder, whose percent sign is already taken, from the start of the text.
    std::optional<std::string> fillPlaceholder(std::string_view& text) {
        if (consume(text, "%")) {
            return "%";
        }
        const auto* argument = takeArgument(text);
        if (argument == nullptr) {
            return std::nullopt;
        }
        if (consume(text, "@")) {
            const auto* words = std::get_if<std::string>(argument);
            return words != nullptr ? std::optional(*words) : std::nullopt;
        }
        if (consume(text, "d") || consume(text, "ld") || consume(text, "lld")) {
            const auto* number = std::get_if<std::int64_t>(argument);
            return number != nullptr ? std::optional(fmt::format("{}", *number)) : std::nullopt;
        }
        return std::nullopt;
    }

    /// The argument of the number that the text starts with, as in 2$, else the next one. Null when there is none.
    const Argument* takeArgument(std::string_view& text) {
        std::size_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        if (error == std::errc()) {
            text.remove_prefix(static_cast<std::size_t>(end - text.data()));
            if (!consume(text, "$")) {
                return nullptr;
            }
        } else {
            number = ++taken;
        }
        return number >= 1 && number <= arguments.size() ? &arguments[number - 1] : nullptr;
    }

    const std::vector<Argument>& arguments;
    std::size_t taken = 0;
};

} // namespace

std::string string(std::string_view key, std::string_view defaultValue) {
    return platform().bundle().localizedString(key, table).value_or(std::string(defaultValue));
}

std::string formatWith(std::string_view key, std::string_view defaultValue, const std::vector<Argument>& arguments) {
    if (auto text = Formatter(arguments).format(string(key, defaultValue))) {
        return *std::move(text);
    }
    if (auto text = Formatter(arguments).format(defaultValue)) {
        return *std::move(text);
    }
    programmingError(fmt::format("the arguments do not fit the text \"{}\"", defaultValue));
}

} // namespace quillon::L10n
