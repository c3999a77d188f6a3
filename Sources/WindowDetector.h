#pragma once

#include "ForeignWindow.h"

#include <optional>
#include <unordered_set>

/// Finds other applications' windows. Nothing here fails loudly: what cannot be read only narrows what is
/// known. Main thread.
namespace quillon::WindowDetector {

/// The window that the user works in, unless it is this program's own: the frontmost application's focused
/// window, found in the window list by title, else by frame, else its frontmost ordinary window.
[[nodiscard]] std::optional<ForeignWindow> getFrontmostForeignWindow();

/// The other application's ordinary window of that number, whether it is on screen or not.
[[nodiscard]] std::optional<ForeignWindow> foreignWindow(WindowID windowID);

/// Every ordinary window of another application, on screen or not, front to back.
[[nodiscard]] std::vector<ForeignWindow> allForeignWindows();

/// The numbers of all windows that exist, minimised, hidden and on other Spaces too. Empty also when the
/// window server does not answer.
[[nodiscard]] std::unordered_set<WindowID> allOnScreenWindowIDs();

} // namespace quillon::WindowDetector
