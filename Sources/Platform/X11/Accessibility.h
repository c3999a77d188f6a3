#pragma once

#include "Platform/Accessibility.h"
#include "Platform/X11/AccessibilityBus.h"

#include <memory>

namespace quillon::x11 {

class AccessPrompt;
class AccessibilityStatus;
class WindowAccess;

/// Applications and their windows as the window manager and the server know them, which needs no permission and no
/// answer of the application and agrees with the window list; and what is in a window as the application tells it on
/// the accessibility bus (AT-SPI). Without that bus, windows cannot tell their "AXChildren" (`apiDisabled`); an
/// application that is not on it has none (`noValue`).
///
/// The process is trusted while the session's accessibility is switched on, since programs may tell nothing otherwise.
/// Only what they tell depends on it.
///
/// An element waits 1.5 s for its application, unless it is told otherwise, and the elements got from it as long as it
/// does itself.
class X11Accessibility final : public Accessibility {
public:
    X11Accessibility(const WindowAccess& access, AccessibilityStatus& status);
    ~X11Accessibility() override;

    [[nodiscard]] bool isProcessTrusted() const override;
    /// Switches accessibility on when one of the program's windows is active, where the user has just asked for it;
    /// else shows a window that offers to.
    bool promptForTrust() override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const override;

private:
    const WindowAccess& access;
    AccessibilityStatus& status;
    mutable AccessibilityBus bus;
    std::unique_ptr<AccessPrompt> prompt;
};

} // namespace quillon::x11
