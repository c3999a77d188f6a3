#pragma once

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace quillon {

/// A value that is made once, on first use, and kept for the rest of the run. It belongs to the platform in
/// use, so installing another one drops it.
class OneTimeValueBase {
public:
    OneTimeValueBase() { all().push_back(this); }
    OneTimeValueBase(const OneTimeValueBase&) = delete;
    OneTimeValueBase& operator=(const OneTimeValueBase&) = delete;

    /// Drops every one-time value. While no other thread uses one.
    static void resetAll() {
        for (auto* value : all()) {
            value->reset();
        }
    }

protected:
    ~OneTimeValueBase() { std::erase(all(), this); }

private:
    virtual void reset() = 0;

    static std::vector<OneTimeValueBase*>& all() {
        static std::vector<OneTimeValueBase*> values;
        return values;
    }
};

/// Meant for objects of static storage duration. `get` may be called from any thread.
template <class T>
class OneTimeValue final : public OneTimeValueBase {
public:
    template <class Make>
    T& get(Make&& make) {
        std::call_once(*once, [&] { value = std::make_unique<T>(std::forward<Make>(make)()); });
        return *value;
    }

private:
    void reset() override {
        value.reset();
        once = std::make_unique<std::once_flag>();
    }

    std::unique_ptr<std::once_flag> once = std::make_unique<std::once_flag>();
    std::unique_ptr<T> value;
};

} // namespace quillon
