#pragma once

#include "Platform/WindowServer.h"

namespace quillon::x11 {

class ClientWindows;
class Connection;

/// Window numbers are those of the client windows, not of the frames that a window manager puts around them.
class X11WindowServer final : public WindowServer {
public:
    X11WindowServer(Connection& connection, const ClientWindows& windows) : connection(connection), windows(windows) {}

    [[nodiscard]] std::optional<std::vector<WindowDescription>> copyWindowInfo(WindowListOption options,
                                                                               WindowID relativeTo) const override;

private:
    Connection& connection;
    const ClientWindows& windows;
};

} // namespace quillon::x11
