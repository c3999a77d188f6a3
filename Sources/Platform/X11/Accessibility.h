#pragma once

#include "Platform/Accessibility.h"
#include "Platform/X11/AccessibilityBus.h"

namespace quillon::x11 {

class WindowAccess;

/// Applications and their windows as the window manager and the server know them, which needs no permission and no
/// answer of the application and agrees with the window list; and what is in a window as the application tells it on
/// the accessibility bus (AT-SPI). Without that bus, windows cannot tell their "AXChildren" (`apiDisabled`); an
/// application that is not on it has none (`noValue`).
///
/// An element waits 1.5 s for its application, unless it is told otherwise, and the elements got from it as long as it
/// does itself.
class X11Accessibility final : public Accessibility {
public:
    explicit X11Accessibility(const WindowAccess& access) : access(access) {}

    [[nodiscard]] bool isProcessTrusted() const override;
    void promptForTrust() override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const override;

private:
    const WindowAccess& access;
    mutable AccessibilityBus bus;
};

} // namespace quillon::x11
