#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quillon::x11 {

/// When two clicks are a double-click. Without a word of the desktop, what GTK takes then.
struct ClickSettings {
    /// Between the presses, in milliseconds.
    std::uint32_t doubleClickTime = 400;
    /// In pixels, in each direction.
    int doubleClickDistance = 5;
};

/// What the desktop says (XSETTINGS, Net/DoubleClickTime and Net/DoubleClickDistance) at the moment. Main thread.
[[nodiscard]] ClickSettings readClickSettings(Connection& connection);

/// The whole numbers in the property of an XSETTINGS manager, by name; those before the first mistake.
[[nodiscard]] std::unordered_map<std::string, std::int32_t> parseXSettings(std::string_view bytes);

} // namespace quillon::x11
