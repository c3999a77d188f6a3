#pragma once

#include "Platform/EventAccess.h"

namespace quillon::x11 {

class Connection;

class X11EventAccess final : public EventAccess {
public:
    explicit X11EventAccess(Connection& connection) : connection(connection) {}

    /// Whether the server has the XTEST extension.
    [[nodiscard]] bool preflightPostEventAccess() const override;
    /// Always; every client may.
    [[nodiscard]] bool preflightListenEventAccess() const override;

private:
    Connection& connection;
};

} // namespace quillon::x11
