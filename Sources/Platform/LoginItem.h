#pragma once

namespace quillon {

/// Whether the system starts the program when the user logs in (SMAppService.mainAppService). Main thread.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// The status is enabled; "requires approval" is not. The user can change it elsewhere at any time.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// False when it failed; the platform's log says why.
    virtual bool registerItem() = 0;
    /// The same.
    virtual bool unregisterItem() = 0;
};

} // namespace quillon
