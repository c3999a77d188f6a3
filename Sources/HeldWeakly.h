#pragma once

#include <memory>
#include <utility>

namespace quillon {

/// Base of a type whose callbacks hold it weakly: `weakly` wraps a callback so that it does nothing once the
/// owner is gone. The wrapped callback may be copied and dropped on any thread, but called only on the main
/// thread, where owners live and die.
template <class Owner>
class HeldWeakly {
protected:
    HeldWeakly() = default;
    HeldWeakly(const HeldWeakly&) = delete;
    HeldWeakly& operator=(const HeldWeakly&) = delete;
    ~HeldWeakly() = default;

    /// `callback` is called with the owner and then with whatever the wrapper was called with.
    template <class Callback>
    [[nodiscard]] auto weakly(Callback callback) {
        return [lifetime = std::weak_ptr<void>(lifetime), owner = static_cast<Owner*>(this),
                callback = std::move(callback)](auto&&... arguments) {
            if (!lifetime.expired()) {
                callback(*owner, std::forward<decltype(arguments)>(arguments)...);
            }
        };
    }

private:
    std::shared_ptr<void> lifetime = std::make_shared<char>();
};

} // namespace quillon
