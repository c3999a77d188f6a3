#pragma once

namespace quillon::PellamApplicationMenu {

/// Installs the application's main menu, which gives its own windows their editing shortcuts. Main thread.
void install();

} // namespace quillon::PellamApplicationMenu
