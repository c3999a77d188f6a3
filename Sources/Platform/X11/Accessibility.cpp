#include "Platform/X11/Accessibility.h"

#include "Platform/X11/AccessPrompt.h"
#include "Platform/X11/AccessibilityStatus.h"
#include "Platform/X11/AccessibleElement.h"
#include "Platform/X11/AccessibleWindow.h"
#include "Platform/X11/WindowAccess.h"
#include "Platform/X11/WindowManager.h"

#include <QApplication>

#include <algorithm>
#include <atomic>

namespace quillon::x11 {

namespace {

/// Before it is set. Longer than a program that is merely busy takes to answer, and short enough for one that hangs
/// not to hold up its caller for long.
constexpr Seconds defaultTimeout{1.5};

class WindowElement final : public AccessibilityElement {
public:
    WindowElement(const WindowAccess& access, AccessibilityBus& bus, xcb_window_t window, Seconds timeout)
        : access(access), bus(bus), window(window), timeout(timeout) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override {
        const auto found =
            access.with([this](Connection&, const ClientWindows& windows) { return windows.describe(window); });
        if (!found) {
            return failure(AccessibilityError::invalidUIElement);
        }
        if (attribute == "AXRole") {
            return success("AXWindow");
        }
        if (attribute == "AXTitle") {
            return found->title ? success(*found->title) : failure(AccessibilityError::noValue);
        }
        if (attribute == "AXPosition") {
            return success(access.toPoints(found->bounds).origin);
        }
        if (attribute == "AXSize") {
            return success(access.toPoints(found->bounds).size);
        }
        return attribute == "AXChildren" ? children(*found) : failure(AccessibilityError::attributeUnsupported);
    }

    [[nodiscard]] AccessibilitySettable isAttributeSettable(std::string_view /*attribute*/) const override {
        return {AccessibilityError::attributeUnsupported, false};
    }
    AccessibilityError setAttributeValue(std::string_view /*attribute*/, const AccessibilityValue& /*value*/) override {
        return AccessibilityError::attributeUnsupported;
    }
    AccessibilityError performAction(std::string_view action) override {
        if (action != "AXRaise") {
            return AccessibilityError::attributeUnsupported;
        }
        return access
            .with([this](Connection& connection, const ClientWindows& windows) {
                if (!windows.describe(window)) {
                    return std::optional(AccessibilityError::invalidUIElement);
                }
                raise(connection, window);
                access.setRaisedWindow(window);
                connection.flush();
                return std::optional(AccessibilityError::success);
            })
            .value_or(AccessibilityError::cannotComplete);
    }
    void setMessagingTimeout(Seconds value) override { timeout = value; }

private:
    [[nodiscard]] AccessibilityRead children(const ClientWindow& found) const {
        const auto traits = traitsOf(found);
        if (!traits) {
            return failure(AccessibilityError::noValue);
        }
        const auto match = findAccessibleWindow(bus, *traits, deadlineAfter(timeout));
        if (match.error != AccessibilityError::success) {
            return failure(match.error);
        }
        return AccessibleElement(match.tree, match.node, access, timeout).copyAttributeValue("AXChildren");
    }

    /// None when nobody knows whose window it is.
    [[nodiscard]] std::optional<AccessibleWindowTraits> traitsOf(const ClientWindow& found) const {
        if (!found.owner) {
            return std::nullopt;
        }
        return access.with([&](Connection&, const ClientWindows& windows) {
            const auto [frame, shadow] = windows.margins(window);
            const auto all = windows.list();
            const auto& client = found.bounds;
            return std::optional(AccessibleWindowTraits{
                *found.owner,
                found.title.value_or(""),
                client,
                {client.x - frame.left, client.y - frame.top, client.width + frame.left + frame.right,
                 client.height + frame.top + frame.bottom},
                {client.x + shadow.left, client.y + shadow.top, client.width - shadow.left - shadow.right,
                 client.height - shadow.top - shadow.bottom},
                std::count_if(all.begin(), all.end(), [&](const auto& other) { return other.owner == found.owner; }) ==
                    1});
        });
    }

    const WindowAccess& access;
    AccessibilityBus& bus;
    xcb_window_t window;
    std::atomic<Seconds> timeout;
};

class ApplicationElement final : public AccessibilityElement {
public:
    ApplicationElement(const WindowAccess& access, AccessibilityBus& bus, ProcessID pid)
        : access(access), bus(bus), pid(pid) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override {
        if (attribute == "AXRole") {
            return success("AXApplication");
        }
        if (attribute == "AXFocusedWindow") {
            return focusedWindow();
        }
        return attribute == "AXWindows" ? allWindows() : failure(AccessibilityError::attributeUnsupported);
    }

    [[nodiscard]] AccessibilitySettable isAttributeSettable(std::string_view /*attribute*/) const override {
        return {AccessibilityError::attributeUnsupported, false};
    }
    AccessibilityError setAttributeValue(std::string_view /*attribute*/, const AccessibilityValue& /*value*/) override {
        return AccessibilityError::attributeUnsupported;
    }
    AccessibilityError performAction(std::string_view /*action*/) override {
        return AccessibilityError::attributeUnsupported;
    }
    void setMessagingTimeout(Seconds value) override { timeout = value; }

private:
    [[nodiscard]] AccessibilityRead focusedWindow() const {
        const auto found = access.with([](Connection&, const ClientWindows& windows) {
            const auto active = windows.activeWindow();
            return active ? windows.describe(*active) : std::nullopt;
        });
        return found && found->owner == pid ? success(element(*found)) : failure(AccessibilityError::noValue);
    }

    /// Front to back, minimised ones too.
    [[nodiscard]] AccessibilityRead allWindows() const {
        const auto found = access.with([](Connection&, const ClientWindows& windows) { return windows.list(); });
        std::vector<std::shared_ptr<AccessibilityElement>> elements;
        for (const auto& window : found) {
            if (window.isOrdinaryOf(pid)) {
                elements.push_back(element(window));
            }
        }
        if (elements.empty() && !processName(pid)) {
            return failure(AccessibilityError::invalidUIElement);
        }
        return success(std::move(elements));
    }

    [[nodiscard]] std::shared_ptr<AccessibilityElement> element(const ClientWindow& of) const {
        return std::make_shared<WindowElement>(access, bus, of.window, timeout);
    }

    const WindowAccess& access;
    AccessibilityBus& bus;
    ProcessID pid;
    std::atomic<Seconds> timeout{defaultTimeout};
};

} // namespace

X11Accessibility::X11Accessibility(const WindowAccess& access, AccessibilityStatus& status)
    : access(access), status(status) {}

X11Accessibility::~X11Accessibility() = default;

bool X11Accessibility::isProcessTrusted() const {
    return status.isEnabled();
}

bool X11Accessibility::promptForTrust() {
    if (status.isEnabled() || (QApplication::activeWindow() != nullptr && status.switchOn())) {
        return true;
    }
    // Without a session bus, of which the program has told on its start, the user can do nothing here.
    if (status.hasSessionBus()) {
        prompt = std::make_unique<AccessPrompt>(status);
        prompt->show();
    }
    return false;
}

std::shared_ptr<AccessibilityElement> X11Accessibility::applicationElement(ProcessID pid) const {
    return std::make_shared<ApplicationElement>(access, bus, pid);
}

} // namespace quillon::x11
