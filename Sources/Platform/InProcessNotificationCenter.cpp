#include "Platform/InProcessNotificationCenter.h"

#include <vector>

namespace quillon {

class InProcessNotificationCenter::Token final : public Registration {
public:
    Token(const std::shared_ptr<Observers>& observers, std::uint64_t number) : observers(observers), number(number) {}
    ~Token() override {
        if (const auto alive = observers.lock()) {
            alive->erase(number);
        }
    }

private:
    std::weak_ptr<Observers> observers;
    std::uint64_t number;
};

RegistrationToken InProcessNotificationCenter::addObserver(std::string_view name, std::function<void()> callback) {
    const auto number = nextNumber++;
    observers->emplace(number, Observer{std::string(name), std::move(callback)});
    return std::make_unique<Token>(observers, number);
}

void InProcessNotificationCenter::post(std::string_view name) {
    std::vector<std::uint64_t> numbers;
    for (const auto& [number, observer] : *observers) {
        if (observer.name == name) {
            numbers.push_back(number);
        }
    }
    for (const auto number : numbers) {
        const auto entry = observers->find(number);
        if (entry != observers->end()) {
            const auto callback = entry->second.callback;
            callback();
        }
    }
}

} // namespace quillon
