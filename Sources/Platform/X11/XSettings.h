#pragma once

#include "Platform/X11/Connection.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace quillon::x11 {

/// What the desktop's settings manager tells programs, by name ("Gtk/FontName").
struct XSettings {
    std::unordered_map<std::string, std::int32_t> numbers;
    std::unordered_map<std::string, std::string> texts;
};

/// The property of an XSETTINGS manager; the settings before the first mistake.
[[nodiscard]] XSettings parseXSettings(std::string_view bytes);

/// The window of the desktop's settings manager; none when there is none. Main thread.
[[nodiscard]] xcb_window_t xSettingsManager(Connection& connection);
/// The settings at the moment; empty without a manager. Main thread.
[[nodiscard]] XSettings readXSettings(Connection& connection);

} // namespace quillon::x11
