#include "Simulated/SimulatedAccessibility.h"

#include "Simulated/Misuse.h"

#include <fmt/format.h>

namespace quillon::simulated {

namespace {

AccessibilityRead failure(AccessibilityError error) {
    return {error, {}};
}

AccessibilityRead success(AccessibilityValue value) {
    return {AccessibilityError::success, std::move(value)};
}

AccessibilityError hasNoActions(std::string_view /*action*/) {
    return AccessibilityError::attributeUnsupported;
}

AccessibilityRead saysNothing(std::string_view /*attribute*/) {
    return failure(AccessibilityError::attributeUnsupported);
}

std::string text(const AccessibilityValue& value) {
    const auto* number = std::get_if<double>(&value);
    return number != nullptr ? fmt::format("{}", *number) : fmt::format("value of type {}", value.index());
}

} // namespace

AccessibilityError SimulatedElement::availability() const {
    return isGone ? AccessibilityError::invalidUIElement : nature.availability();
}

AccessibilityError SimulatedElement::begin(std::string_view operation, std::string_view attribute) const {
    accessibility.calls.push_back(fmt::format("{} {} {}", name, operation, attribute));
    accessibility.queues.insert(accessibility.scheduler.currentQueue());
    if (const auto error = availability(); error != AccessibilityError::success) {
        return error;
    }
    const auto entry = attributes.find(attribute);
    if (entry != attributes.end() && !entry->second.isAnswered) {
        accessibility.scheduler.block(messagingTimeout);
        return AccessibilityError::cannotComplete;
    }
    return AccessibilityError::success;
}

AccessibilityRead SimulatedElement::copyAttributeValue(std::string_view attribute) const {
    readAttributes.emplace_back(attribute);
    if (const auto error = begin("copyAttributeValue", attribute); error != AccessibilityError::success) {
        return failure(error);
    }
    const auto entry = attributes.find(attribute);
    return entry != attributes.end() && entry->second.read ? *entry->second.read : nature.read(attribute);
}

AccessibilitySettable SimulatedElement::isAttributeSettable(std::string_view attribute) const {
    if (const auto error = begin("isAttributeSettable", attribute); error != AccessibilityError::success) {
        return {error, false};
    }
    const auto entry = attributes.find(attribute);
    return entry != attributes.end() ? entry->second.settable
                                     : AccessibilitySettable{AccessibilityError::attributeUnsupported, false};
}

AccessibilityError SimulatedElement::setAttributeValue(std::string_view attribute, const AccessibilityValue& value) {
    accessibility.journal.record("accessibility.setAttributeValue {} {} {}", name, attribute, text(value));
    if (const auto error = begin("setAttributeValue", attribute); error != AccessibilityError::success) {
        return error;
    }
    const auto entry = attributes.find(attribute);
    if (entry == attributes.end() || !entry->second.settable.isSettable) {
        return AccessibilityError::attributeUnsupported;
    }
    if (entry->second.setting) {
        return *entry->second.setting;
    }
    entry->second.read = success(value);
    return AccessibilityError::success;
}

AccessibilityError SimulatedElement::performAction(std::string_view action) {
    accessibility.journal.record("accessibility.performAction {} {}", name, action);
    if (const auto error = begin("performAction", action); error != AccessibilityError::success) {
        return error;
    }
    const auto entry = actionErrors.find(action);
    return entry != actionErrors.end() ? entry->second : nature.perform(action);
}

void SimulatedElement::setMessagingTimeout(Seconds timeout) {
    if (timeout.count() <= 0) {
        misuse(fmt::format("AccessibilityElement::setMessagingTimeout of {} s", timeout.count()));
    }
    accessibility.calls.push_back(fmt::format("{} setMessagingTimeout {}", name, timeout.count()));
    accessibility.queues.insert(accessibility.scheduler.currentQueue());
    messagingTimeout = timeout;
}

void SimulatedElement::setAttribute(std::string_view attribute, AccessibilityValue value) {
    this->attribute(attribute).read = success(std::move(value));
}

void SimulatedElement::failAttribute(std::string_view attribute, AccessibilityError error) {
    this->attribute(attribute).read = failure(error);
}

void SimulatedElement::setSettable(std::string_view attribute, bool settable) {
    this->attribute(attribute).settable = {AccessibilityError::success, settable};
}

void SimulatedElement::failSettable(std::string_view attribute, AccessibilityError error) {
    this->attribute(attribute).settable = {error, false};
}

void SimulatedElement::overrideSetting(std::string_view attribute, AccessibilityError result) {
    this->attribute(attribute).setting = result;
}

void SimulatedElement::stopAnswering(std::string_view attribute) {
    this->attribute(attribute).isAnswered = false;
}

void SimulatedElement::failAction(std::string_view action, AccessibilityError error) {
    actionErrors.insert_or_assign(std::string(action), error);
}

SimulatedElement& SimulatedElement::addChild(const std::string& role) {
    auto& children = attribute("AXChildren").read;
    if (!children) {
        children = success(AccessibilityElements());
    }
    auto& list = std::get<AccessibilityElements>(children->value);
    const auto child = accessibility.makeElement(fmt::format("{} > {} {}", name, role, list.size()),
                                                 {[this] { return availability(); }, saysNothing, hasNoActions});
    child->setAttribute("AXRole", role);
    list.push_back(child);
    return *child;
}

SimulatedElement& SimulatedElement::addScrollArea(const DisplayRect& frame) {
    auto& area = addChild("AXScrollArea");
    area.setAttribute("AXPosition", frame.origin);
    area.setAttribute("AXSize", frame.size);
    return area;
}

SimulatedElement& SimulatedElement::addVerticalScrollBar(double value) {
    auto& bar = addChild("AXScrollBar");
    setAttribute("AXVerticalScrollBar", std::get<AccessibilityElements>(attribute("AXChildren").read->value).back());
    bar.setAttribute("AXMinValue", 0.0);
    bar.setAttribute("AXMaxValue", 1.0);
    bar.setAttribute("AXValue", value);
    bar.setSettable("AXValue", true);
    return bar;
}

double SimulatedElement::number(std::string_view attribute) const {
    const auto entry = attributes.find(attribute);
    const auto* value = entry != attributes.end() && entry->second.read ? entry->second.read->get<double>() : nullptr;
    if (value == nullptr) {
        misuse(fmt::format("{} of {} is no number", attribute, name));
    }
    return *value;
}

SimulatedAccessibility::~SimulatedAccessibility() {
    // Elements may hold each other in a circle.
    for (const auto& element : elements) {
        element->attributes.clear();
    }
}

bool SimulatedAccessibility::isProcessTrusted() const {
    return isTrusted;
}

bool SimulatedAccessibility::promptForTrust() {
    scheduler.requireMain("Accessibility::promptForTrust");
    journal.record("accessibility.promptForTrust");
    return isTrusted;
}

std::shared_ptr<AccessibilityElement> SimulatedAccessibility::applicationElement(ProcessID pid) const {
    return application(pid);
}

std::shared_ptr<SimulatedElement> SimulatedAccessibility::application(ProcessID pid) const {
    auto& element = applications[pid];
    if (!element) {
        element = makeElement(fmt::format("application {}", pid),
                              {[this, pid] { return availability(model.findApplication(pid) != nullptr); },
                               [this, pid](std::string_view attribute) { return readApplication(pid, attribute); },
                               hasNoActions});
    }
    return element;
}

std::shared_ptr<SimulatedElement> SimulatedAccessibility::window(WindowID windowID) const {
    auto& element = windows[windowID];
    if (!element) {
        element =
            makeElement(fmt::format("window {}", windowID),
                        {[this, windowID] { return availability(model.findWindow(windowID) != nullptr); },
                         [this, windowID](std::string_view attribute) { return readWindow(windowID, attribute); },
                         [this, windowID](std::string_view action) { return performOnWindow(windowID, action); }});
    }
    return element;
}

std::shared_ptr<SimulatedElement> SimulatedAccessibility::makeElement(std::string name,
                                                                      SimulatedElement::Nature nature) const {
    return elements.emplace_back(std::make_shared<SimulatedElement>(*this, std::move(name), std::move(nature)));
}

AccessibilityError SimulatedAccessibility::availability(bool exists) const {
    if (!isTrusted) {
        return AccessibilityError::apiDisabled;
    }
    return exists ? AccessibilityError::success : AccessibilityError::invalidUIElement;
}

AccessibilityRead SimulatedAccessibility::readApplication(ProcessID pid, std::string_view attribute) const {
    if (attribute == "AXFocusedWindow") {
        const auto* focused = model.focusedWindow(pid);
        return focused == nullptr ? failure(AccessibilityError::noValue)
                                  : success(std::shared_ptr<AccessibilityElement>(window(focused->windowID)));
    }
    if (attribute == "AXWindows") {
        AccessibilityElements owned;
        for (const auto& entry : model.windows) {
            if (entry.ownerPID == pid && entry.layer == 0) {
                owned.push_back(window(entry.windowID));
            }
        }
        return success(std::move(owned));
    }
    return failure(AccessibilityError::attributeUnsupported);
}

AccessibilityRead SimulatedAccessibility::readWindow(WindowID windowID, std::string_view attribute) const {
    const auto& found = model.window(windowID);
    if (attribute == "AXRole") {
        return success(std::string("AXWindow"));
    }
    if (attribute == "AXTitle") {
        return success(found.title.value_or(""));
    }
    if (attribute == "AXPosition") {
        return success(found.bounds.origin);
    }
    if (attribute == "AXSize") {
        return success(found.bounds.size);
    }
    if (attribute == "AXChildren") {
        return success(AccessibilityElements());
    }
    return failure(AccessibilityError::attributeUnsupported);
}

AccessibilityError SimulatedAccessibility::performOnWindow(WindowID windowID, std::string_view action) const {
    if (action != "AXRaise") {
        return AccessibilityError::attributeUnsupported;
    }
    model.raise(windowID);
    return AccessibilityError::success;
}

} // namespace quillon::simulated
