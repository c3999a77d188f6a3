#pragma once

#include "Platform/NotificationCenter.h"

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace quillon {

/// A notification centre for platforms that bring none. Observers are called in the order in which they were
/// added; one that is added or removed during a delivery is not called for it.
class InProcessNotificationCenter final : public NotificationCenter {
public:
    [[nodiscard]] RegistrationToken addObserver(std::string_view name, std::function<void()> callback) override;
    void post(std::string_view name) override;

private:
    struct Observer {
        std::string name;
        std::function<void()> callback;
    };
    using Observers = std::map<std::uint64_t, Observer>;
    class Token;

    /// Shared with the tokens, which may outlive the centre.
    std::shared_ptr<Observers> observers = std::make_shared<Observers>();
    std::uint64_t nextNumber = 0;
};

} // namespace quillon
