#include "Simulated/SimulatedAccessibility.h"

namespace quillon::simulated {

namespace {

AccessibilityRead failure(AccessibilityError error) {
    return {error, {}};
}

AccessibilityRead success(AccessibilityValue value) {
    return {AccessibilityError::success, std::move(value)};
}

} // namespace

AccessibilityRead SimulatedElement::copyAttributeValue(std::string_view attribute) const {
    readAttributes.emplace_back(attribute);
    auto derived = answer(attribute);
    const auto entry = attributes.find(attribute);
    // Without permission nothing that a test has set can be read either.
    return entry == attributes.end() || derived.error == AccessibilityError::apiDisabled ? derived : entry->second;
}

void SimulatedElement::setAttribute(std::string_view attribute, AccessibilityValue value) {
    attributes.insert_or_assign(std::string(attribute), success(std::move(value)));
}

void SimulatedElement::failAttribute(std::string_view attribute, AccessibilityError error) {
    attributes.insert_or_assign(std::string(attribute), failure(error));
}

bool SimulatedAccessibility::isProcessTrusted() const {
    scheduler.requireMain("Accessibility::isProcessTrusted");
    return isTrusted;
}

void SimulatedAccessibility::promptForTrust() {
    scheduler.requireMain("Accessibility::promptForTrust");
    journal.record("accessibility.promptForTrust");
}

std::shared_ptr<AccessibilityElement> SimulatedAccessibility::applicationElement(ProcessID pid) const {
    scheduler.requireMain("Accessibility::applicationElement");
    return application(pid);
}

std::shared_ptr<SimulatedElement> SimulatedAccessibility::application(ProcessID pid) const {
    auto& element = applications[pid];
    if (!element) {
        element = std::make_shared<SimulatedElement>(
            [this, pid](std::string_view attribute) { return readApplication(pid, attribute); });
    }
    return element;
}

std::shared_ptr<SimulatedElement> SimulatedAccessibility::window(WindowID windowID) const {
    auto& element = windows[windowID];
    if (!element) {
        element = std::make_shared<SimulatedElement>(
            [this, windowID](std::string_view attribute) { return readWindow(windowID, attribute); });
    }
    return element;
}

AccessibilityRead SimulatedAccessibility::readApplication(ProcessID pid, std::string_view attribute) const {
    if (!isTrusted) {
        return failure(AccessibilityError::apiDisabled);
    }
    if (model.findApplication(pid) == nullptr) {
        return failure(AccessibilityError::invalidUIElement);
    }
    if (attribute != "AXFocusedWindow") {
        return failure(AccessibilityError::attributeUnsupported);
    }
    const auto* focused = model.focusedWindow(pid);
    return focused == nullptr ? failure(AccessibilityError::noValue)
                              : success(std::shared_ptr<AccessibilityElement>(window(focused->windowID)));
}

AccessibilityRead SimulatedAccessibility::readWindow(WindowID windowID, std::string_view attribute) const {
    if (!isTrusted) {
        return failure(AccessibilityError::apiDisabled);
    }
    const auto* found = model.findWindow(windowID);
    if (found == nullptr) {
        return failure(AccessibilityError::invalidUIElement);
    }
    if (attribute == "AXTitle") {
        return success(found->title.value_or(""));
    }
    if (attribute == "AXPosition") {
        return success(found->bounds.origin);
    }
    if (attribute == "AXSize") {
        return success(found->bounds.size);
    }
    return failure(AccessibilityError::attributeUnsupported);
}

} // namespace quillon::simulated
