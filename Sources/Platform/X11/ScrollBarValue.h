#pragma once

#include "Platform/X11/AccessibleTree.h"

namespace quillon::x11 {

/// The position of a scroll bar. Toolkits count in pixels, lines or other units of their own, from a minimum to a
/// maximum; here it is the part of that way, 0 to 1.
struct ScrollBarValue {
    AccessibilityError error = AccessibilityError::failure;
    double minimum = 0;
    double maximum = 0;
    double current = 0;
    /// The object that has the value.
    AccessibleReference holder{};

    /// Whether there is anything to scroll.
    [[nodiscard]] bool hasRange() const { return error == AccessibilityError::success && maximum > minimum; }
    /// Only while there is a range.
    [[nodiscard]] double part() const;
    /// The toolkit's value for that part. Where values may be whole numbers, it is rounded away from the current one,
    /// so that small steps add up. Only while there is a range.
    [[nodiscard]] double valueAt(double part) const;
};

[[nodiscard]] ScrollBarValue readScrollBar(AccessibleTree& tree, AccessibleNode& bar, Deadline deadline);
/// Moves the bar to that part of its way; LibreOffice's only some lines towards it.
[[nodiscard]] AccessibilityError setScrollBar(AccessibleTree& tree, AccessibleNode& bar, double part,
                                              Deadline deadline);

} // namespace quillon::x11
