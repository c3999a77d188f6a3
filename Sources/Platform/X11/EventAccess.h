#pragma once

#include "Platform/EventAccess.h"

#include <optional>

namespace quillon::x11 {

class Connection;

class X11EventAccess final : public EventAccess {
public:
    explicit X11EventAccess(Connection& connection) : connection(connection) {}

    /// Whether the server has the XTEST extension, which it is asked once.
    [[nodiscard]] bool preflightPostEventAccess() const override;
    /// The same; there is nobody to ask.
    bool requestPostEventAccess() override { return preflightPostEventAccess(); }
    /// Always; every client may.
    [[nodiscard]] bool preflightListenEventAccess() const override;

private:
    Connection& connection;
    mutable std::optional<bool> hasTestExtension;
};

} // namespace quillon::x11
