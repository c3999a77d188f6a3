#pragma once

#include "Platform/Application.h"
#include "ShortcutState.h"

#include <functional>
#include <string>

namespace quillon {

class PinnedWindowTracker;

/// What scripts can ask of the running program: `pin [WINDOW|front]`, `unpin [WINDOW|front|all]`, `toggle`, `list`,
/// `menu`, `settings`, `about` and `status`. WINDOW is a window number, decimal or hexadecimal after 0x. Main thread.
namespace ScriptCommands {

/// What the commands need of the running program.
struct Program {
    PinnedWindowTracker& tracker;
    /// What the global shortcut does.
    std::function<void()> togglePinFrontmostWindow;
    /// False when the menu cannot be opened now.
    std::function<bool()> openMenuAtPointer;
    std::function<void()> openSettings;
    std::function<void()> openAbout;
    /// For the user to read.
    std::string shortcut;
    ShortcutState shortcutState = ShortcutState::notSet;
};

[[nodiscard]] ScriptReply perform(const ScriptCommand& command, const Program& program);

} // namespace ScriptCommands
} // namespace quillon
