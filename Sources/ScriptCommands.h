#pragma once

#include "Platform/Application.h"

#include <functional>

namespace quillon {

class PinnedWindowTracker;

/// What scripts can ask of the running program: `pin [WINDOW|front]`, `unpin [WINDOW|front|all]`, `toggle` and
/// `list`. WINDOW is a window number, decimal or hexadecimal after 0x. Main thread.
namespace ScriptCommands {

/// `togglePinFrontmostWindow` is what the global shortcut does.
[[nodiscard]] ScriptReply perform(const ScriptCommand& command, PinnedWindowTracker& tracker,
                                  const std::function<void()>& togglePinFrontmostWindow);

} // namespace ScriptCommands
} // namespace quillon
