#pragma once

#include "Platform/X11/AccessibilityBus.h"
#include "Platform/X11/Connection.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace quillon::x11 {

/// A part of a window's user interface, as it was when the one that holds it was asked for it.
struct AccessibleNode {
    AccessibleReference reference;
    /// AT-SPI's number of its role.
    std::uint32_t role = 0;
    int childCount = 0;
    /// None until they were asked for.
    std::optional<std::vector<std::shared_ptr<AccessibleNode>>> children{};
};

using AccessibleNodes = std::vector<std::shared_ptr<AccessibleNode>>;

/// The user interface of one window on the accessibility bus. What is in it is asked for once, when it is first
/// needed, and up to a limit in number and time, since applications may describe it wrongly or without end. Any
/// thread.
class AccessibleTree {
public:
    /// `offset` leads from the application's coordinates to pixels of the root window.
    AccessibleTree(AccessibilityBus& bus, PixelPoint offset) : bus(bus), offset(offset) {}

    struct Children {
        AccessibilityError error = AccessibilityError::failure;
        AccessibleNodes nodes{};
    };
    [[nodiscard]] Children children(AccessibleNode& node, Deadline deadline);

    [[nodiscard]] static bool isScrollBar(const AccessibleNode& node);
    /// Whether it has the role, or, for toolkits that do not use it, holds a vertical scroll bar beside what it
    /// scrolls.
    [[nodiscard]] bool isScrollArea(AccessibleNode& node, Deadline deadline);

    struct Bar {
        AccessibilityError error = AccessibilityError::failure;
        /// Null when there is none, which is no error.
        std::shared_ptr<AccessibleNode> node;
    };
    [[nodiscard]] Bar verticalScrollBar(AccessibleNode& node, Deadline deadline);

    struct Frame {
        AccessibilityError error = AccessibilityError::failure;
        PixelRect pixels;
    };
    [[nodiscard]] Frame frame(const AccessibleNode& node, Deadline deadline);

    [[nodiscard]] AccessibilityBus& accessibilityBus() const { return bus; }

private:
    // With the mutex held.
    [[nodiscard]] AccessibilityError load(AccessibleNode& node, Deadline deadline);
    [[nodiscard]] AccessibilityError request(AccessibleNode& node, Deadline deadline);
    [[nodiscard]] Bar verticalBar(AccessibleNode& node, Deadline deadline);
    [[nodiscard]] std::shared_ptr<AccessibleNode> barIn(const std::shared_ptr<AccessibleNode>& node, Deadline deadline);
    [[nodiscard]] Bar firstVertical(const AccessibleNodes& bars, Deadline deadline);

    AccessibilityBus& bus;
    const PixelPoint offset;
    /// Guards the nodes' children and what follows; held while the application is waited for.
    std::mutex mutex;
    std::size_t nodeCount = 0;
    std::chrono::steady_clock::duration waited{};
};

} // namespace quillon::x11
