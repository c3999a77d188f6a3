#include "Platform/X11/Accessibility.h"

#include "Platform/X11/ClientWindows.h"

namespace quillon::x11 {

namespace {

AccessibilityRead success(AccessibilityValue value) {
    return {AccessibilityError::success, std::move(value)};
}

AccessibilityRead failure(AccessibilityError error) {
    return {error, {}};
}

class WindowElement final : public AccessibilityElement {
public:
    WindowElement(Connection& connection, const ClientWindows& windows, xcb_window_t window)
        : connection(connection), windows(windows), window(window) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override {
        const auto found = windows.describe(window);
        if (!found) {
            return failure(AccessibilityError::invalidUIElement);
        }
        const auto bounds = connection.toPoints(found->bounds);
        if (attribute == "AXTitle") {
            return found->title ? success(*found->title) : failure(AccessibilityError::noValue);
        }
        if (attribute == "AXPosition") {
            return success(bounds.origin);
        }
        if (attribute == "AXSize") {
            return success(bounds.size);
        }
        return failure(AccessibilityError::attributeUnsupported);
    }

private:
    Connection& connection;
    const ClientWindows& windows;
    xcb_window_t window;
};

class ApplicationElement final : public AccessibilityElement {
public:
    ApplicationElement(Connection& connection, const ClientWindows& windows, ProcessID pid)
        : connection(connection), windows(windows), pid(pid) {}

    [[nodiscard]] AccessibilityRead copyAttributeValue(std::string_view attribute) const override {
        if (attribute != "AXFocusedWindow") {
            return failure(AccessibilityError::attributeUnsupported);
        }
        const auto active = windows.activeWindow();
        const auto found = active ? windows.describe(*active) : std::nullopt;
        if (!found || found->owner != pid) {
            return failure(AccessibilityError::noValue);
        }
        return success(std::make_shared<WindowElement>(connection, windows, *active));
    }

private:
    Connection& connection;
    const ClientWindows& windows;
    ProcessID pid;
};

} // namespace

bool X11Accessibility::isProcessTrusted() const {
    return true;
}

void X11Accessibility::promptForTrust() {}

std::shared_ptr<AccessibilityElement> X11Accessibility::applicationElement(ProcessID pid) const {
    return std::make_shared<ApplicationElement>(connection, windows, pid);
}

} // namespace quillon::x11
