#pragma once

#include "Platform/Registration.h"

#include <functional>
#include <memory>
#include <utility>

namespace quillon::x11 {

/// A registration that ends by a call.
class EndToken final : public Registration {
public:
    explicit EndToken(std::function<void()> end) : end(std::move(end)) {}
    ~EndToken() override { end(); }

private:
    std::function<void()> end;
};

[[nodiscard]] inline RegistrationToken makeEndToken(std::function<void()> end) {
    return std::make_unique<EndToken>(std::move(end));
}

} // namespace quillon::x11
