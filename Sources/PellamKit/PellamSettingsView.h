#pragma once

#include <string_view>

/// The settings window. Main thread.
namespace quillon::PellamSettingsView {

/// Shows the one settings window of the application of that name.
void showWindow(std::string_view appName, bool showsLaunchAtLogin);

} // namespace quillon::PellamSettingsView
