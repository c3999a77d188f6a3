#include "HeldWeakly.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>

namespace quillon {
namespace {

class Owner : private HeldWeakly<Owner> {
    friend HeldWeakly<Owner>;

public:
    std::function<void(int)> adder() {
        return weakly([](Owner& self, int number) { self.sum += number; });
    }
    std::function<void(std::unique_ptr<int>)> taker() {
        return weakly([](Owner& self, std::unique_ptr<int> number) { self.sum += *number; });
    }

    int sum = 0;
};

TEST(HeldWeaklyTest, ACallbackReachesItsOwnerWithItsArguments) {
    Owner owner;
    owner.adder()(5);
    owner.taker()(std::make_unique<int>(2));
    EXPECT_EQ(owner.sum, 7);
}

TEST(HeldWeaklyTest, ACallbackDoesNothingWhenItsOwnerIsGone) {
    std::optional<Owner> owner(std::in_place);
    const auto callback = owner->adder();
    owner.reset();
    int calls = 0;
    callback(++calls);
    EXPECT_EQ(calls, 1);
}

TEST(HeldWeaklyTest, ACallbackOfAnEarlierOwnerDoesNotReachALaterOneInItsPlace) {
    std::optional<Owner> owner(std::in_place);
    const auto callback = owner->adder();
    owner.emplace();
    callback(5);
    EXPECT_EQ(owner->sum, 0);
}

} // namespace
} // namespace quillon
