#pragma once

#include "Platform/Accessibility.h"

namespace quillon::x11 {

class ClientWindows;
class Connection;

/// What the window manager and the server know of windows, in the shape of Accessibility elements. It needs no
/// permission, and its answers agree with the window list's.
class X11Accessibility final : public Accessibility {
public:
    X11Accessibility(Connection& connection, const ClientWindows& windows) : connection(connection), windows(windows) {}

    [[nodiscard]] bool isProcessTrusted() const override;
    void promptForTrust() override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const override;

private:
    Connection& connection;
    const ClientWindows& windows;
};

} // namespace quillon::x11
