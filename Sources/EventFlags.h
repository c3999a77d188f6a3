#pragma once

#include "Platform/Panel.h"
#include "Platform/SystemEvent.h"

namespace quillon {

/// Command, Option, Control and Shift. Caps Lock and the Function key are not among them.
inline constexpr EventFlags eventFlagsOfModifiers =
    eventFlagMaskCommand | eventFlagMaskAlternate | eventFlagMaskControl | eventFlagMaskShift;

/// These four of a panel's event as those of a system event, which has the same bits for them.
[[nodiscard]] constexpr EventFlags eventFlags(ModifierFlags modifiers) {
    static_assert(eventFlagMaskCommand == modifierFlagCommand && eventFlagMaskAlternate == modifierFlagOption &&
                  eventFlagMaskControl == modifierFlagControl && eventFlagMaskShift == modifierFlagShift);
    return modifiers & eventFlagsOfModifiers;
}

} // namespace quillon
