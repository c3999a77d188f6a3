#pragma once

#include "Platform/Screens.h"
#include "Platform/TitledWindow.h"

#include <memory>
#include <optional>

/// Where the kit's windows appear and how they come and go. Main thread.
namespace quillon::PellamWindowHelper {

/// The first screen that the pointer is on, else the main one; none without a screen.
[[nodiscard]] std::optional<Screen> activeScreen();

/// Moves the window to the middle of what the active screen leaves free.
void centreOnActiveDisplay(TitledWindow& window);

/// Shows the window in front of all others, with the keyboard focus.
void bringForward(TitledWindow& window);

/// The same for a window that may have been closed: that one comes to the Space that the user is on, instead of taking
/// the user back to its own.
void bringForwardAgain(const std::shared_ptr<TitledWindow>& window);

/// What the buttons that end a window do.
void closeKeyWindow();

} // namespace quillon::PellamWindowHelper
