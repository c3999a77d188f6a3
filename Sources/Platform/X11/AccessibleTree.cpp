#include "Platform/X11/AccessibleTree.h"

#include <QDBusArgument>

#include <algorithm>
#include <climits>

namespace quillon::x11 {

namespace {

// AT-SPI's numbers of roles (atspi-constants.h).
constexpr std::uint32_t menuRole = 33;
constexpr std::uint32_t menuBarRole = 34;
constexpr std::uint32_t menuItemRole = 35;
constexpr std::uint32_t popupMenuRole = 41;
constexpr std::uint32_t scrollBarRole = 48;
constexpr std::uint32_t scrollPaneRole = 49;
// AT-SPI's numbers of states.
constexpr unsigned horizontalState = 14;
constexpr unsigned verticalState = 29;

/// What has more children is content, such as a table or a document, in which no scroll areas are looked for. (A
/// spreadsheet says that it has two thousand million.)
constexpr int mostChildren = 500;
/// A large document of an office program has about 2,000 nodes.
constexpr std::size_t mostNodes = 5000;
/// How long all questions about what a window consists of may take together. 2,000 nodes take about a quarter of it.
constexpr std::chrono::seconds longestWalk{2};

/// Menus are large and hold no scroll areas.
bool isMenu(std::uint32_t role) {
    return role == menuRole || role == menuBarRole || role == menuItemRole || role == popupMenuRole;
}

/// The bits of GetState's answer.
std::uint64_t statesIn(const QDBusMessage& answer) {
    if (resultOf(answer, "au") != AccessibilityError::success) {
        return 0;
    }
    const auto words = qdbus_cast<QList<uint>>(answer.arguments().front());
    std::uint64_t bits = 0;
    for (qsizetype index = std::min<qsizetype>(words.size(), 2); index > 0; --index) {
        bits = bits << 32 | words[index - 1];
    }
    return bits;
}

bool has(std::uint64_t states, unsigned state) {
    return (states >> state & 1) != 0;
}

} // namespace

AccessibleTree::Children AccessibleTree::children(AccessibleNode& node, Deadline deadline) {
    const std::lock_guard lock(mutex);
    const auto error = load(node, deadline);
    return {error, error == AccessibilityError::success ? *node.children : AccessibleNodes()};
}

AccessibilityError AccessibleTree::load(AccessibleNode& node, Deadline deadline) {
    if (node.children) {
        return AccessibilityError::success;
    }
    if (node.childCount <= 0 || node.childCount > mostChildren || isMenu(node.role)) {
        node.children.emplace();
        return AccessibilityError::success;
    }
    if (nodeCount >= mostNodes || waited >= longestWalk) {
        return AccessibilityError::cannotComplete;
    }
    const auto start = std::chrono::steady_clock::now();
    const auto error = request(node, std::min(deadline, start + (longestWalk - waited)));
    waited += std::chrono::steady_clock::now() - start;
    return error;
}

AccessibilityError AccessibleTree::request(AccessibleNode& node, Deadline deadline) {
    const auto [error, references] = childrenOf(bus, node.reference, mostChildren, deadline);
    if (error != AccessibilityError::success) {
        return error;
    }
    // All at once: asked for one by one, they would take most of the time of a walk.
    std::vector<QDBusMessage> questions;
    for (const auto& reference : references) {
        questions.push_back(methodCall(reference, accessibleInterface, "GetRole"));
        questions.push_back(propertyRead(reference, accessibleInterface, "ChildCount"));
    }
    const auto answers = bus.call(questions, deadline);
    AccessibleNodes nodes;
    for (std::size_t index = 0; index < references.size(); ++index) {
        const auto role = numberIn(answers[2 * index]);
        const auto count = propertyNumber(answers[2 * index + 1]);
        if (role) {
            nodes.push_back(std::make_shared<AccessibleNode>(AccessibleNode{
                references[index], *role, static_cast<int>(std::clamp(count.value_or(0), 0.0, double{INT_MAX}))}));
        }
    }
    nodeCount += nodes.size();
    node.children = std::move(nodes);
    return AccessibilityError::success;
}

bool AccessibleTree::isScrollBar(const AccessibleNode& node) {
    return node.role == scrollBarRole;
}

bool AccessibleTree::isScrollArea(AccessibleNode& node, Deadline deadline) {
    if (node.role == scrollPaneRole) {
        return true;
    }
    const std::lock_guard lock(mutex);
    return verticalBar(node, deadline).node != nullptr;
}

AccessibleTree::Bar AccessibleTree::verticalScrollBar(AccessibleNode& node, Deadline deadline) {
    const std::lock_guard lock(mutex);
    return verticalBar(node, deadline);
}

AccessibleTree::Bar AccessibleTree::verticalBar(AccessibleNode& node, Deadline deadline) {
    AccessibleNodes bars;
    // What holds a bar and nothing else belongs to the area around it.
    if (node.childCount > 1) {
        if (const auto error = load(node, deadline); error != AccessibilityError::success) {
            return {error, nullptr};
        }
        for (const auto& child : *node.children) {
            if (const auto bar = barIn(child, deadline)) {
                bars.push_back(bar);
            }
        }
    }
    return firstVertical(bars, deadline);
}

/// The scroll bar that the node is or that it holds alone, as Qt's scroll areas hold theirs; null for none.
std::shared_ptr<AccessibleNode> AccessibleTree::barIn(const std::shared_ptr<AccessibleNode>& node, Deadline deadline) {
    if (isScrollBar(*node)) {
        return node;
    }
    const bool isHolder = node->childCount == 1 && load(*node, deadline) == AccessibilityError::success &&
                          node->children->size() == 1 && isScrollBar(*node->children->front());
    return isHolder ? node->children->front() : nullptr;
}

AccessibleTree::Bar AccessibleTree::firstVertical(const AccessibleNodes& bars, Deadline deadline) {
    std::vector<QDBusMessage> questions;
    for (const auto& bar : bars) {
        questions.push_back(methodCall(bar->reference, accessibleInterface, "GetState"));
        questions.push_back(extentsCall(bar->reference));
    }
    const auto answers = bus.call(questions, deadline);
    auto error = AccessibilityError::success;
    for (std::size_t index = 0; index < bars.size(); ++index) {
        const auto states = statesIn(answers[2 * index]);
        const auto extents = extentsIn(answers[2 * index + 1]);
        // Qt does not tell the direction.
        if (has(states, verticalState) ||
            (!has(states, horizontalState) && extents && extents->height > extents->width)) {
            return {AccessibilityError::success, bars[index]};
        }
        if (error == AccessibilityError::success) {
            error = resultOf(answers[2 * index], "au");
        }
    }
    return {error, nullptr};
}

AccessibleTree::Frame AccessibleTree::frame(const AccessibleNode& node, Deadline deadline) {
    const auto answer = bus.call(extentsCall(node.reference), deadline);
    const auto extents = extentsIn(answer);
    if (!extents) {
        return {resultOf(answer, "(iiii)"), {}};
    }
    // GTK's place for what is not shown.
    constexpr int nowhere = INT_MIN;
    if (extents->x == nowhere || extents->y == nowhere) {
        return {AccessibilityError::noValue, {}};
    }
    const auto moved = [](int coordinate, int distance) {
        return static_cast<int>(std::clamp<std::int64_t>(std::int64_t{coordinate} + distance, INT_MIN, INT_MAX));
    };
    return {AccessibilityError::success,
            {moved(extents->x, offset.x), moved(extents->y, offset.y), extents->width, extents->height}};
}

} // namespace quillon::x11
