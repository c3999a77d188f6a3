#pragma once

#include "HeldWeakly.h"
#include "Platform/EventTap.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/Handlers.h"

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace quillon::x11 {

/// A key with the modifier bits that stand for exactly one set of modifiers.
struct KeyCombination {
    xcb_keycode_t key = 0;
    std::uint16_t modifiers = 0;
    /// The bits that do not matter, in every mixture: Caps Lock and Num Lock on or off.
    std::vector<std::uint16_t> lockStates;

    bool operator==(const KeyCombination&) const = default;
};

/// The user's keyboard as the server describes it at the moment: the place of each key, and which bits of an event's
/// state stand for Command (the Super key), Alternate (the Alt key) and Num Lock, which every description may choose.
/// Asks the server on first use and after a change of layout or keyboard. Main thread.
class Keyboard final : private HeldWeakly<Keyboard> {
    friend HeldWeakly<Keyboard>;

public:
    /// Both must outlive the keyboard.
    Keyboard(Connection& connection, Scheduler& scheduler) : connection(connection), scheduler(scheduler) {}

    /// None when the keyboard has no such key, or no such modifier.
    [[nodiscard]] std::optional<KeyCombination> combinationFor(const KeyPress& press);
    /// The virtual key code of a key; none when macOS knows no such key.
    [[nodiscard]] std::optional<std::uint16_t> virtualKeyCode(xcb_keycode_t key);
    /// What an event's state says of Shift, Control, Alternate and Command.
    [[nodiscard]] EventFlags flags(std::uint16_t state);
    /// The bits of an event's state that say so; none for a modifier that no key sets.
    [[nodiscard]] std::uint16_t state(EventFlags flags);

    /// Calls back some time after the description has changed, once it has been used.
    [[nodiscard]] RegistrationToken observeChanges(Task changed);

private:
    struct Description {
        std::unordered_map<std::uint16_t, xcb_keycode_t> keys;
        std::unordered_map<xcb_keycode_t, std::uint16_t> virtualKeyCodes;
        /// The bit of each modifier; 0 for one that no key sets.
        std::array<std::pair<EventFlags, std::uint16_t>, 4> modifiers{};
        std::uint16_t numLock = 0;
    };

    const Description& described();
    void watch(std::uint8_t eventNumber);
    void describeKeys(Description& made) const;
    void describeModifiers(Description& made) const;

    Connection& connection;
    Scheduler& scheduler;
    std::optional<Description> description;
    Handlers<int> observers;
    RegistrationToken keyboardEvents;
};

} // namespace quillon::x11
