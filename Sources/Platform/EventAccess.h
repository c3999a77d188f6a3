#pragma once

namespace quillon {

/// Whether this process may post and listen to input events. Checks only, nothing is requested. Main thread.
class EventAccess {
public:
    virtual ~EventAccess() = default;

    /// CGPreflightPostEventAccess.
    [[nodiscard]] virtual bool preflightPostEventAccess() const = 0;
    /// CGPreflightListenEventAccess.
    [[nodiscard]] virtual bool preflightListenEventAccess() const = 0;
};

} // namespace quillon
