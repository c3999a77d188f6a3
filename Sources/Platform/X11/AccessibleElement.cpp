#include "Platform/X11/AccessibleElement.h"

#include "Platform/X11/ScrollBarValue.h"

#include <algorithm>
#include <array>

namespace quillon::x11 {

namespace {

/// Of all elements.
constexpr std::array<std::string_view, 5> commonAttributes{"AXRole", "AXChildren", "AXPosition", "AXSize",
                                                           "AXVerticalScrollBar"};

} // namespace

AccessibilityRead success(AccessibilityValue value) {
    return {AccessibilityError::success, std::move(value)};
}

AccessibilityRead failure(AccessibilityError error) {
    return {error, {}};
}

Deadline deadlineAfter(Seconds timeout) {
    return std::chrono::steady_clock::now() + std::chrono::ceil<Deadline::duration>(timeout);
}

Deadline AccessibleElement::deadline() const {
    return deadlineAfter(timeout);
}

std::shared_ptr<AccessibilityElement> AccessibleElement::element(std::shared_ptr<AccessibleNode> of) const {
    return std::make_shared<AccessibleElement>(tree, std::move(of), access, timeout);
}

AccessibilityRead AccessibleElement::copyAttributeValue(std::string_view attribute) const {
    if (attribute == "AXRole") {
        return success(role());
    }
    if (attribute == "AXChildren") {
        return children();
    }
    if (attribute == "AXVerticalScrollBar") {
        return verticalScrollBar();
    }
    if (attribute == "AXPosition" || attribute == "AXSize") {
        const auto frame = tree->frame(*node, deadline());
        if (frame.error != AccessibilityError::success) {
            return failure(frame.error);
        }
        const auto points = access.toPoints(frame.pixels);
        return attribute == "AXSize" ? success(points.size) : success(points.origin);
    }
    if (AccessibleTree::isScrollBar(*node)) {
        if (attribute == "AXValue") {
            return barValue();
        }
        if (attribute == "AXMinValue" || attribute == "AXMaxValue") {
            return success(attribute == "AXMinValue" ? 0.0 : 1.0);
        }
    }
    return failure(AccessibilityError::attributeUnsupported);
}

std::string AccessibleElement::role() const {
    if (AccessibleTree::isScrollBar(*node)) {
        return "AXScrollBar";
    }
    return tree->isScrollArea(*node, deadline()) ? "AXScrollArea" : "AXUnknown";
}

AccessibilityRead AccessibleElement::children() const {
    const auto found = tree->children(*node, deadline());
    if (found.error != AccessibilityError::success) {
        return failure(found.error);
    }
    std::vector<std::shared_ptr<AccessibilityElement>> elements;
    for (const auto& child : found.nodes) {
        elements.push_back(element(child));
    }
    return success(std::move(elements));
}

AccessibilityRead AccessibleElement::verticalScrollBar() const {
    const auto bar = tree->verticalScrollBar(*node, deadline());
    if (bar.error != AccessibilityError::success) {
        return failure(bar.error);
    }
    return bar.node ? success(element(bar.node)) : failure(AccessibilityError::noValue);
}

AccessibilityRead AccessibleElement::barValue() const {
    const auto value = readScrollBar(*tree, *node, deadline());
    if (value.error != AccessibilityError::success) {
        return failure(value.error);
    }
    return value.hasRange() ? success(value.part()) : failure(AccessibilityError::noValue);
}

AccessibilitySettable AccessibleElement::isAttributeSettable(std::string_view attribute) const {
    if (attribute == "AXValue" && AccessibleTree::isScrollBar(*node)) {
        const auto value = readScrollBar(*tree, *node, deadline());
        return {value.error, value.hasRange()};
    }
    const bool isKnown =
        std::find(commonAttributes.begin(), commonAttributes.end(), attribute) != commonAttributes.end();
    return {isKnown ? AccessibilityError::success : AccessibilityError::attributeUnsupported, false};
}

AccessibilityError AccessibleElement::setAttributeValue(std::string_view attribute, const AccessibilityValue& value) {
    if (attribute != "AXValue" || !AccessibleTree::isScrollBar(*node)) {
        return AccessibilityError::attributeUnsupported;
    }
    const auto* part = std::get_if<double>(&value);
    return part != nullptr ? setScrollBar(*tree, *node, *part, deadline()) : AccessibilityError::illegalArgument;
}

AccessibilityError AccessibleElement::performAction(std::string_view /*action*/) {
    return AccessibilityError::attributeUnsupported;
}

} // namespace quillon::x11
