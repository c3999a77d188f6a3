#pragma once

#include "Platform/EventTap.h"
#include "Platform/Panel.h"
#include "Platform/Registration.h"

#include <cstdint>
#include <functional>

namespace quillon {

/// A key that went down while one of the program's own windows has the keyboard focus (NSEvent).
struct KeyEvent {
    std::uint16_t keyCode = 0;       ///< virtual key code, by position on a US keyboard (kVK_ANSI_P is 35)
    ModifierFlags modifierFlags = 0; ///< all bits that the platform has, also those without a name here
};

/// Sees the program's own key events before any of its windows does (NSEvent's local monitors). Main thread.
class KeyMonitors {
public:
    virtual ~KeyMonitors() = default;

    /// The handler sees every key that goes down, and each repetition of a held one. It may destroy the token. Null
    /// when the system refuses.
    [[nodiscard]] virtual RegistrationToken addLocalMonitor(std::function<TappedEvent(const KeyEvent&)> handler) = 0;
};

} // namespace quillon
