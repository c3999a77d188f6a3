#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <utility>

namespace quillon::macos {

/// Owns one reference to a Core Foundation object, or nothing. How the reference came about is said where it
/// is made.
template <class Ref>
class Retained {
public:
    /// Takes over the reference that the caller was given (by a function with Create or Copy in its name).
    [[nodiscard]] static Retained adopt(Ref object) { return Retained(object); }
    /// Adds a reference to an object that belongs to someone else.
    [[nodiscard]] static Retained retain(Ref object) {
        if (object != nullptr) {
            CFRetain(object);
        }
        return Retained(object);
    }
    Retained(Retained&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Retained& operator=(Retained&& other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~Retained() {
        if (object != nullptr) {
            CFRelease(object);
        }
    }

    [[nodiscard]] Ref get() const { return object; }

private:
    explicit Retained(Ref object) : object(object) {}

    Ref object;
};

} // namespace quillon::macos
