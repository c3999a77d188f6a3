#pragma once

#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace quillon {

/// A value that is made once, on first use, and kept for the rest of the run. It belongs to the platform in
/// use, so installing another one drops it. Only for objects of static storage duration: what is left at the
/// end of the process is not destroyed, since other threads may still be using it then.
class OneTimeValueBase {
public:
    OneTimeValueBase(const OneTimeValueBase&) = delete;
    OneTimeValueBase& operator=(const OneTimeValueBase&) = delete;

    /// Drops every one-time value. While no other thread uses one.
    static void resetAll() {
        for (auto* value : all()) {
            value->reset();
        }
    }

protected:
    OneTimeValueBase() { all().push_back(this); }
    ~OneTimeValueBase() = default;

private:
    virtual void reset() = 0;

    static std::vector<OneTimeValueBase*>& all() {
        static auto* const values = new std::vector<OneTimeValueBase*>();
        return *values;
    }
};

/// `get` may be called from any thread.
template <class T>
class OneTimeValue final : public OneTimeValueBase {
public:
    template <class Make>
    T& get(Make&& make) {
        std::call_once(slot->once, [&] { slot->value.emplace(std::forward<Make>(make)()); });
        return *slot->value;
    }

private:
    struct Slot {
        std::once_flag once;
        std::optional<T> value;
    };

    void reset() override {
        delete slot;
        slot = new Slot();
    }

    Slot* slot = new Slot();
};

} // namespace quillon
