#pragma once

#include "Platform/Accessibility.h"
#include "Simulated/DesktopModel.h"
#include "Simulated/SimulatedScheduler.h"

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace quillon::simulated {

/// One element. What a test sets goes before what the desktop says of itself.
class SimulatedElement final : public AccessibilityElement {
public:
    using Answer = std::function<AccessibilityRead(std::string_view)>;

    explicit SimulatedElement(Answer answer) : answer(std::move(answer)) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override;

    void setAttribute(std::string_view attribute, AccessibilityValue value);
    void failAttribute(std::string_view attribute, AccessibilityError error);
    /// The attributes that were read, in order.
    [[nodiscard]] const std::vector<std::string>& reads() const { return readAttributes; }

private:
    Answer answer;
    std::map<std::string, AccessibilityRead, std::less<>> attributes;
    mutable std::vector<std::string> readAttributes;
};

/// The Accessibility trees of the model's applications: each application has its focused window, each window its
/// title and frame. Without trust every read fails.
class SimulatedAccessibility final : public Accessibility {
public:
    SimulatedAccessibility(const DesktopModel& model, const SimulatedScheduler& scheduler, Journal& journal)
        : model(model), scheduler(scheduler), journal(journal) {}

    [[nodiscard]] bool isProcessTrusted() const override;
    void promptForTrust() override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const override;

    void setTrusted(bool trusted) { isTrusted = trusted; }
    /// The elements, kept for the whole life of the desktop.
    [[nodiscard]] std::shared_ptr<SimulatedElement> application(ProcessID pid) const;
    [[nodiscard]] std::shared_ptr<SimulatedElement> window(WindowID windowID) const;

private:
    [[nodiscard]] AccessibilityRead readApplication(ProcessID pid, std::string_view attribute) const;
    [[nodiscard]] AccessibilityRead readWindow(WindowID windowID, std::string_view attribute) const;

    const DesktopModel& model;
    const SimulatedScheduler& scheduler;
    Journal& journal;
    bool isTrusted = true;
    mutable std::map<ProcessID, std::shared_ptr<SimulatedElement>> applications;
    mutable std::map<WindowID, std::shared_ptr<SimulatedElement>> windows;
};

} // namespace quillon::simulated
