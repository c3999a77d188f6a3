#pragma once

#include "Platform/Accessibility.h"
#include "Simulated/DesktopModel.h"
#include "Simulated/SimulatedScheduler.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quillon::simulated {

class SimulatedAccessibility;

using AccessibilityElements = std::vector<std::shared_ptr<AccessibilityElement>>;

/// One element. What a test sets goes before what the desktop says of itself, as long as the element can be asked at
/// all.
class SimulatedElement final : public AccessibilityElement {
public:
    /// What the desktop says of the element.
    struct Nature {
        /// An error while it cannot be asked at all.
        std::function<AccessibilityError()> availability;
        std::function<AccessibilityRead(std::string_view)> read;
        std::function<AccessibilityError(std::string_view)> perform;
    };

    SimulatedElement(const SimulatedAccessibility& accessibility, std::string name, Nature nature)
        : accessibility(accessibility), name(std::move(name)), nature(std::move(nature)) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override;
    [[nodiscard]] AccessibilitySettable isAttributeSettable(std::string_view attribute) const override;
    AccessibilityError setAttributeValue(std::string_view attribute, const AccessibilityValue& value) override;
    AccessibilityError performAction(std::string_view action) override;
    void setMessagingTimeout(Seconds timeout) override;

    void setAttribute(std::string_view attribute, AccessibilityValue value);
    void failAttribute(std::string_view attribute, AccessibilityError error);
    /// Whether the program may set the attribute; it may not unless a test says so.
    void setSettable(std::string_view attribute, bool settable);
    void failSettable(std::string_view attribute, AccessibilityError error);
    /// From now on setting the attribute fails; with `success` it is accepted and changes nothing.
    void overrideSetting(std::string_view attribute, AccessibilityError result);
    /// From now on every call about the attribute waits as long as the messaging time-out says and fails.
    void stopAnswering(std::string_view attribute);
    void failAction(std::string_view action, AccessibilityError error);
    /// From now on it is gone, and so is what was added below it.
    void disappear() { isGone = true; }

    /// A new element, at the end of "AXChildren".
    SimulatedElement& addChild(const std::string& role);
    SimulatedElement& addScrollArea(const DisplayRect& frame);
    /// A bar from 0 to 1 whose value can be set: the element's "AXVerticalScrollBar" and one of its children.
    SimulatedElement& addVerticalScrollBar(double value);

    /// The attributes that were read, in order.
    [[nodiscard]] const std::vector<std::string>& reads() const { return readAttributes; }
    /// The number that the attribute holds, without reading it; stops the test when it holds none.
    [[nodiscard]] double number(std::string_view attribute) const;

private:
    friend SimulatedAccessibility;

    struct Attribute {
        std::optional<AccessibilityRead> read;
        AccessibilitySettable settable{AccessibilityError::success, false};
        std::optional<AccessibilityError> setting;
        bool isAnswered = true;
    };

    [[nodiscard]] AccessibilityError availability() const;
    /// Records the call; an error when it gets no further.
    AccessibilityError begin(std::string_view operation, std::string_view attribute) const;
    Attribute& attribute(std::string_view name) { return attributes[std::string(name)]; }

    const SimulatedAccessibility& accessibility;
    std::string name;
    Nature nature;
    std::map<std::string, Attribute, std::less<>> attributes;
    std::map<std::string, AccessibilityError, std::less<>> actionErrors;
    /// "some seconds".
    Seconds messagingTimeout{6};
    bool isGone = false;
    mutable std::vector<std::string> readAttributes;
};

/// The Accessibility trees of the model's applications: each application has its windows and the focused one, each
/// window its title and frame and what a test adds to it. Without trust every call fails.
class SimulatedAccessibility final : public Accessibility {
public:
    SimulatedAccessibility(DesktopModel& model, SimulatedScheduler& scheduler, Journal& journal)
        : model(model), scheduler(scheduler), journal(journal) {}
    ~SimulatedAccessibility() override;

    [[nodiscard]] bool isProcessTrusted() const override;
    bool promptForTrust() override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const override;

    void setTrusted(bool trusted) { isTrusted = trusted; }
    /// The elements, kept for the whole life of the desktop.
    [[nodiscard]] std::shared_ptr<SimulatedElement> application(ProcessID pid) const;
    [[nodiscard]] std::shared_ptr<SimulatedElement> window(WindowID windowID) const;

    /// Every call about an element since the last time, as "window 101 copyAttributeValue AXTitle".
    std::vector<std::string> takeCalls() { return std::exchange(calls, {}); }
    /// The queues on which elements were ever called.
    [[nodiscard]] const std::set<std::string>& callingQueues() const { return queues; }

private:
    friend SimulatedElement;

    std::shared_ptr<SimulatedElement> makeElement(std::string name, SimulatedElement::Nature nature) const;
    [[nodiscard]] AccessibilityError availability(bool exists) const;
    [[nodiscard]] AccessibilityRead readApplication(ProcessID pid, std::string_view attribute) const;
    [[nodiscard]] AccessibilityRead readWindow(WindowID windowID, std::string_view attribute) const;
    AccessibilityError performOnWindow(WindowID windowID, std::string_view action) const;

    DesktopModel& model;
    SimulatedScheduler& scheduler;
    Journal& journal;
    bool isTrusted = true;
    mutable std::vector<std::shared_ptr<SimulatedElement>> elements;
    mutable std::map<ProcessID, std::shared_ptr<SimulatedElement>> applications;
    mutable std::map<WindowID, std::shared_ptr<SimulatedElement>> windows;
    mutable std::vector<std::string> calls;
    mutable std::set<std::string> queues;
};

} // namespace quillon::simulated
