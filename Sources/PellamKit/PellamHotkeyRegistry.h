#pragma once

#include "PellamKit/PellamHotkey.h"

#include <vector>

/// Where the shortcuts that an application has in use can be read from outside of it: the user default
/// "PellamRegisteredHotkeys" holds them as `encodeHotkeys` writes them. Main thread.
namespace quillon::PellamHotkeyRegistry {

/// Replaces what is published. When a hotkey cannot be encoded, what was published before stays.
void publish(const std::vector<PellamHotkey>& hotkeys);

} // namespace quillon::PellamHotkeyRegistry
