#pragma once

/// Main thread.
namespace quillon::PellamApplicationMenu {

/// Installs the application's main menu, which gives its own windows their editing shortcuts and Quit.
void install();

} // namespace quillon::PellamApplicationMenu
