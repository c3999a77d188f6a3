#pragma once

#include "PellamKit/PellamSettingsContent.h"

#include <functional>
#include <memory>
#include <string_view>

/// The settings window: the application's own content, the switch for launch at login and the button that closes it.
/// Main thread.
namespace quillon::PellamSettingsView {

/// Makes the application's content; called when the window is made.
using AppSettings = std::function<std::unique_ptr<PellamSettingsContent>()>;

/// Shows the one settings window of the application of that name.
void showWindow(std::string_view appName, bool showsLaunchAtLogin, const AppSettings& appSettings);

} // namespace quillon::PellamSettingsView
