#pragma once

#include "Platform/X11/Keyboard.h"

#include <memory>

namespace quillon::x11 {

/// A key combination that the server reports to this program instead of the window with the keyboard focus. It is held
/// whole or not at all: every state of the locks is part of it. Destroying it gives it back. Main thread.
///
/// A press stops all keyboards until it is answered. Every press that arrives must therefore be answered, also when
/// the grab has ended since.
class KeyGrab {
public:
    /// Null when another program holds some of it. Waits for the server.
    [[nodiscard]] static std::unique_ptr<KeyGrab> take(Connection& connection, const KeyCombination& combination);
    ~KeyGrab();
    KeyGrab(const KeyGrab&) = delete;
    KeyGrab& operator=(const KeyGrab&) = delete;

    [[nodiscard]] const KeyCombination& combination() const { return held; }

    /// The press goes on to whom it would have reached without the grab.
    static void replay(Connection& connection);
    /// Nobody else gets the press. The keyboard is free at once: a grab that lasted until the key's release would
    /// also take keys that are pressed meanwhile, and the releases of the modifiers. The window with the focus gets
    /// the key's release, which says nothing without its press; each repeat of a key held down starts a new grab.
    static void swallow(Connection& connection);

private:
    KeyGrab(Connection& connection, KeyCombination combination);

    Connection& connection;
    KeyCombination held;
};

} // namespace quillon::x11
