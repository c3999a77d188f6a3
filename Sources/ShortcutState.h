#pragma once

namespace quillon {

/// Whether the global shortcut works, and if not, what it lacks.
enum class ShortcutState {
    notSet,
    /// There is no event tap: the Accessibility permission is missing.
    waitingForPermission,
    active,
    heldByAnotherProgram,
    missingOnKeyboard,
};

} // namespace quillon
