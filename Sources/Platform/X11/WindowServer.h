#pragma once

#include "Platform/WindowServer.h"

namespace quillon::x11 {

class WindowAccess;

/// Window numbers are those of the client windows, not of the frames that a window manager puts around them.
class X11WindowServer final : public WindowServer {
public:
    explicit X11WindowServer(const WindowAccess& access) : access(access) {}

    [[nodiscard]] std::optional<std::vector<WindowDescription>> copyWindowInfo(WindowListOption options,
                                                                               WindowID relativeTo) const override;

private:
    const WindowAccess& access;
};

} // namespace quillon::x11
