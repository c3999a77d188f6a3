#pragma once

namespace quillon {

/// Whether this process may post and listen to input events. A preflight only checks. Main thread.
class EventAccess {
public:
    virtual ~EventAccess() = default;

    /// CGPreflightPostEventAccess.
    [[nodiscard]] virtual bool preflightPostEventAccess() const = 0;
    /// CGRequestPostEventAccess: the system asks the user when it has to. True when access is granted now.
    virtual bool requestPostEventAccess() = 0;
    /// CGPreflightListenEventAccess.
    [[nodiscard]] virtual bool preflightListenEventAccess() const = 0;
};

} // namespace quillon
