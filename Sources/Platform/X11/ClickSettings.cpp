#include "Platform/X11/ClickSettings.h"

#include "Platform/X11/XSettings.h"

#include <optional>

namespace quillon::x11 {

ClickSettings readClickSettings(Connection& connection) {
    const auto numbers = readXSettings(connection).numbers;
    const auto positive = [&numbers](const char* name) -> std::optional<std::int32_t> {
        const auto found = numbers.find(name);
        return found != numbers.end() && found->second > 0 ? std::optional(found->second) : std::nullopt;
    };
    ClickSettings result;
    result.doubleClickTime =
        static_cast<std::uint32_t>(positive("Net/DoubleClickTime").value_or(static_cast<int>(result.doubleClickTime)));
    result.doubleClickDistance = positive("Net/DoubleClickDistance").value_or(result.doubleClickDistance);
    return result;
}

} // namespace quillon::x11
