#pragma once

#include "Platform/X11/AccessibleTree.h"
#include "Platform/X11/WindowAccess.h"

#include <atomic>

namespace quillon::x11 {

[[nodiscard]] AccessibilityRead success(AccessibilityValue value);
[[nodiscard]] AccessibilityRead failure(AccessibilityError error);
/// The end of a call that begins now.
[[nodiscard]] Deadline deadlineAfter(Seconds timeout);

/// A part of a window's user interface. Its role and what is in it are what they were when it was looked for; where it
/// is and the value of a scroll bar are asked for at each call.
class AccessibleElement final : public AccessibilityElement {
public:
    AccessibleElement(std::shared_ptr<AccessibleTree> tree, std::shared_ptr<AccessibleNode> node,
                      const WindowAccess& access, Seconds timeout)
        : tree(std::move(tree)), node(std::move(node)), access(access), timeout(timeout) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override;
    [[nodiscard]] AccessibilitySettable isAttributeSettable(std::string_view attribute) const override;
    AccessibilityError setAttributeValue(std::string_view attribute, const AccessibilityValue& value) override;
    AccessibilityError performAction(std::string_view action) override;
    void setMessagingTimeout(Seconds value) override { timeout = value; }

private:
    [[nodiscard]] Deadline deadline() const;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> element(std::shared_ptr<AccessibleNode> of) const;
    [[nodiscard]] std::string role() const;
    [[nodiscard]] AccessibilityRead children() const;
    [[nodiscard]] AccessibilityRead verticalScrollBar() const;
    [[nodiscard]] AccessibilityRead barValue() const;

    std::shared_ptr<AccessibleTree> tree;
    std::shared_ptr<AccessibleNode> node;
    const WindowAccess& access;
    std::atomic<Seconds> timeout;
};

} // namespace quillon::x11
