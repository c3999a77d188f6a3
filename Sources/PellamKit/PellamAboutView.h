#pragma once

#include <string_view>

/// The About window. Main thread.
namespace quillon::PellamAboutView {

/// Shows the one About window of the application of that name.
void showWindow(std::string_view appName);

} // namespace quillon::PellamAboutView
