#include "Platform/X11/ScrollBarValue.h"

#include <QDBusVariant>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace quillon::x11 {

namespace {

constexpr auto valueInterface = "org.a11y.atspi.Value";
constexpr auto actionInterface = "org.a11y.atspi.Action";

ScrollBarValue failed(AccessibilityError error) {
    ScrollBarValue value;
    value.error = error;
    return value;
}

ScrollBarValue readValue(const AccessibleTree& tree, const AccessibleReference& holder, Deadline deadline) {
    const std::array questions{propertyRead(holder, valueInterface, "MinimumValue"),
                               propertyRead(holder, valueInterface, "MaximumValue"),
                               propertyRead(holder, valueInterface, "CurrentValue")};
    const auto answers = tree.accessibilityBus().call(questions, deadline);
    const auto minimum = propertyNumber(answers[0]);
    const auto maximum = propertyNumber(answers[1]);
    const auto current = propertyNumber(answers[2]);
    if (!minimum || !maximum || !current) {
        const auto error = resultOf(answers[2], "v");
        return failed(error != AccessibilityError::success ? error : AccessibilityError::failure);
    }
    return {AccessibilityError::success, *minimum, *maximum, *current, holder};
}

/// A bar of GTK 4: its one part has the value, which counts pixels and whose maximum is the content's end. The last
/// position is one length of the bar before it; a bar that is not needed has no length.
ScrollBarValue readCompoundBar(AccessibleTree& tree, AccessibleNode& bar, Deadline deadline) {
    const auto children = tree.children(bar, deadline);
    if (children.error != AccessibilityError::success || children.nodes.empty()) {
        return failed(children.error);
    }
    const auto frame = tree.frame(bar, deadline);
    if (frame.error != AccessibilityError::success) {
        return failed(frame.error);
    }
    auto value = readValue(tree, children.nodes.front()->reference, deadline);
    value.maximum = frame.pixels.height > 0 ? value.maximum - frame.pixels.height : value.minimum;
    return value;
}

/// The numbers of a bar's actions.
struct LineActions {
    int back = 0;
    int forth = 0;
};

/// LibreOffice's bars jump to the top when their value is set, and move by these actions only.
std::optional<LineActions> lineActions(const AccessibleTree& tree, const AccessibleReference& holder,
                                       Deadline deadline) {
    constexpr int mostActions = 4;
    std::vector<QDBusMessage> questions;
    for (int index = 0; index < mostActions; ++index) {
        questions.push_back(methodCall(holder, actionInterface, "GetName", {index}));
    }
    const auto answers = tree.accessibilityBus().call(questions, deadline);
    std::optional<int> back;
    std::optional<int> forth;
    for (int index = 0; index < mostActions; ++index) {
        const auto& answer = answers[static_cast<std::size_t>(index)];
        if (resultOf(answer, "s") == AccessibilityError::success) {
            const auto name = answer.arguments().front().toString();
            back = name == "decrementLine" ? index : back;
            forth = name == "incrementLine" ? index : forth;
        }
    }
    return back && forth ? std::optional(LineActions{*back, *forth}) : std::nullopt;
}

/// Moves line by line towards the value, as far as a call should take. How much a line is shows with the first one.
AccessibilityError moveByLines(const AccessibleTree& tree, const ScrollBarValue& value, double wanted,
                               const LineActions& actions, Deadline deadline) {
    // About a third of a page; each takes 1 to 10 ms.
    constexpr double mostLines = 12;
    const auto step =
        methodCall(value.holder, actionInterface, "DoAction", {wanted > value.current ? actions.forth : actions.back});
    auto& bus = tree.accessibilityBus();
    if (const auto error = resultOf(bus.call(step, deadline), "b"); error != AccessibilityError::success) {
        return error;
    }
    const auto moved = readValue(tree, value.holder, deadline);
    const double line = std::abs(moved.current - value.current);
    if (moved.error != AccessibilityError::success || line == 0) {
        return moved.error;
    }
    const double lines = std::floor(std::abs(wanted - value.current) / line) - 1;
    const std::vector<QDBusMessage> steps(static_cast<std::size_t>(std::clamp(lines, 0.0, mostLines - 1)), step);
    const auto answers = bus.call(steps, deadline);
    return answers.empty() ? AccessibilityError::success : resultOf(answers.back(), "b");
}

} // namespace

double ScrollBarValue::part() const {
    return std::clamp((current - minimum) / (maximum - minimum), 0.0, 1.0);
}

double ScrollBarValue::valueAt(double part) const {
    const double exact = minimum + std::clamp(part, 0.0, 1.0) * (maximum - minimum);
    // Qt's plain texts count lines, everything else that was looked at counts pixels.
    constexpr double shortestCountedRange = 2;
    if (maximum - minimum < shortestCountedRange) {
        return exact;
    }
    return std::clamp(exact > current ? std::ceil(exact) : std::floor(exact), minimum, maximum);
}

ScrollBarValue readScrollBar(AccessibleTree& tree, AccessibleNode& bar, Deadline deadline) {
    return bar.childCount == 1 ? readCompoundBar(tree, bar, deadline) : readValue(tree, bar.reference, deadline);
}

AccessibilityError setScrollBar(AccessibleTree& tree, AccessibleNode& bar, double part, Deadline deadline) {
    const auto value = readScrollBar(tree, bar, deadline);
    if (value.error != AccessibilityError::success) {
        return value.error;
    }
    if (!value.hasRange()) {
        return AccessibilityError::noValue;
    }
    const double wanted = value.valueAt(part);
    if (const auto actions = lineActions(tree, value.holder, deadline)) {
        return moveByLines(tree, value, wanted, *actions, deadline);
    }
    const auto setting =
        methodCall(value.holder, "org.freedesktop.DBus.Properties", "Set",
                   {QString(valueInterface), QString("CurrentValue"), QVariant::fromValue(QDBusVariant(wanted))});
    return resultOf(tree.accessibilityBus().call(setting, deadline), "");
}

} // namespace quillon::x11
