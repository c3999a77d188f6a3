#pragma once

#include "Platform/Registration.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace quillon::simulated {

/// Callbacks that live as long as their tokens. `checkRelease` is called when a token goes.
template <class... Arguments>
class Observers {
public:
    using Callback = std::function<void(Arguments...)>;

    explicit Observers(std::function<void()> checkRelease) : state(std::make_shared<State>(std::move(checkRelease))) {}

    [[nodiscard]] RegistrationToken add(Callback callback) {
        const auto number = state->next++;
        state->callbacks.emplace(number, std::move(callback));
        return std::make_unique<Token>(state, number);
    }

    void notify(Arguments... arguments) const {
        std::vector<std::uint64_t> numbers;
        for (const auto& [number, callback] : state->callbacks) {
            numbers.push_back(number);
        }
        for (const auto number : numbers) {
            if (const auto entry = state->callbacks.find(number); entry != state->callbacks.end()) {
                const auto callback = entry->second;
                callback(arguments...);
            }
        }
    }

    [[nodiscard]] std::size_t count() const { return state->callbacks.size(); }

private:
    struct State {
        explicit State(std::function<void()> checkRelease) : checkRelease(std::move(checkRelease)) {}

        std::function<void()> checkRelease;
        std::map<std::uint64_t, Callback> callbacks;
        std::uint64_t next = 0;
    };

    class Token final : public Registration {
    public:
        Token(const std::shared_ptr<State>& state, std::uint64_t number) : state(state), number(number) {}
        ~Token() override {
            if (const auto alive = state.lock()) {
                alive->checkRelease();
                alive->callbacks.erase(number);
            }
        }

    private:
        std::weak_ptr<State> state;
        std::uint64_t number;
    };

    std::shared_ptr<State> state;
};

} // namespace quillon::simulated
