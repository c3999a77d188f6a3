#include "Platform/InProcessNotificationCenter.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace quillon {
namespace {

class InProcessNotificationCenterTest : public testing::Test {
protected:
    /// An observer that writes its name down.
    RegistrationToken observe(const std::string& name, const std::string& observer) {
        return center->addObserver(name, [this, observer] { heard.push_back(observer); });
    }

    std::optional<InProcessNotificationCenter> center{std::in_place};
    std::vector<std::string> heard;
};

TEST_F(InProcessNotificationCenterTest, ObserversOfTheNameAreCalledInTheOrderOfTheirAddition) {
    const auto first = observe("one", "first");
    const auto other = observe("two", "other");
    const auto second = observe("one", "second");
    center->post("one");
    EXPECT_EQ(heard, (std::vector<std::string>{"first", "second"}));
}

TEST_F(InProcessNotificationCenterTest, ADestroyedTokenEndsTheObservation) {
    auto token = observe("one", "first");
    token.reset();
    center->post("one");
    EXPECT_TRUE(heard.empty());
}

TEST_F(InProcessNotificationCenterTest, AnObserverThatIsRemovedDuringADeliveryIsNotCalledForIt) {
    RegistrationToken second;
    const auto first = center->addObserver("one", [&] { second.reset(); });
    second = observe("one", "second");
    center->post("one");
    EXPECT_TRUE(heard.empty());
}

TEST_F(InProcessNotificationCenterTest, AnObserverMayRemoveItself) {
    RegistrationToken token;
    token = center->addObserver("one", [&] {
        token.reset();
        heard.emplace_back("once");
    });
    center->post("one");
    center->post("one");
    EXPECT_EQ(heard, std::vector<std::string>{"once"});
}

TEST_F(InProcessNotificationCenterTest, AnObserverThatIsAddedDuringADeliveryIsNotCalledForIt) {
    RegistrationToken second;
    const auto first = center->addObserver("one", [&] {
        if (!second) {
            second = observe("one", "second");
        }
    });
    center->post("one");
    EXPECT_TRUE(heard.empty());
    center->post("one");
    EXPECT_EQ(heard, std::vector<std::string>{"second"});
}

TEST_F(InProcessNotificationCenterTest, AnObserverMayPost) {
    const auto inner = observe("two", "inner");
    const auto outer = center->addObserver("one", [&] { center->post("two"); });
    center->post("one");
    EXPECT_EQ(heard, std::vector<std::string>{"inner"});
}

TEST_F(InProcessNotificationCenterTest, ATokenMayOutliveTheCentre) {
    auto token = observe("one", "first");
    center.reset();
    token.reset();
    EXPECT_TRUE(heard.empty());
}

} // namespace
} // namespace quillon
