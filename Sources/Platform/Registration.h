#pragma once

#include <memory>

namespace quillon {

/// Something that was registered and is still in force: an observer, a timer. Destroying it ends it; no
/// callback arrives once the destructor has returned on the thread that the callbacks use.
class Registration {
public:
    Registration() = default;
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;
    virtual ~Registration() = default;
};

/// Owns a registration; empty when there is none.
using RegistrationToken = std::unique_ptr<Registration>;

} // namespace quillon
