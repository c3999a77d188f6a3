// What the settings window needs of a desktop beside its window.

#include "ContractTest.h"

#include "Platform/Accessibility.h"
#include "Platform/DistributedNotificationCenter.h"
#include "Platform/EventAccess.h"
#include "Platform/LoginItem.h"
#include "Platform/ScreenCapture.h"
#include "Platform/Screens.h"
#include "Platform/UserDefaults.h"

#include <string>

namespace quillon::contract {
namespace {

class LoginItemContract : public ContractTest {
protected:
    void SetUp() override {
        if (!world->canLaunchAtLogin()) {
            GTEST_SKIP() << "this process cannot be a login item";
        }
    }
    void TearDown() override { item().unregisterItem(); }

    LoginItem& item() { return desktop().loginItem(); }
};

TEST_F(LoginItemContract, IsEnabledFromItsRegistrationToItsEnd) {
    EXPECT_FALSE(item().isEnabled());
    EXPECT_TRUE(item().registerItem());
    EXPECT_TRUE(item().isEnabled());
    EXPECT_TRUE(item().unregisterItem());
    EXPECT_FALSE(item().isEnabled());
}

TEST_F(LoginItemContract, RegisteringAndUnregisteringTwiceIsNoFailure) {
    EXPECT_TRUE(item().registerItem());
    EXPECT_TRUE(item().registerItem());
    EXPECT_TRUE(item().isEnabled());
    EXPECT_TRUE(item().unregisterItem());
    EXPECT_TRUE(item().unregisterItem());
    EXPECT_FALSE(item().isEnabled());
}

TEST_F(LoginItemContract, IsOffWhenTheUserSwitchedItOffElsewhereAndCanBeSwitchedOnAgain) {
    ASSERT_TRUE(item().registerItem());
    if (!world->switchLoginItemOff()) {
        GTEST_SKIP() << "no program can switch it off on this desktop";
    }
    EXPECT_FALSE(item().isEnabled());
    EXPECT_TRUE(item().registerItem());
    EXPECT_TRUE(item().isEnabled());
}

class DefaultsObservingContract : public ContractTest {
protected:
    void TearDown() override {
        for (const auto* key : {one, two}) {
            desktop().userDefaults().remove(key);
        }
    }
    RegistrationToken count(const char* key, int& calls) {
        return desktop().userDefaults().observe(key, [&calls] { ++calls; });
    }

    static constexpr auto one = "contractObservedOne";
    static constexpr auto two = "contractObservedTwo";
};

TEST_F(DefaultsObservingContract, AChangeIsToldOnceWithTheNewValueInPlace) {
    auto& defaults = desktop().userDefaults();
    std::vector<std::optional<PropertyValue>> seen;
    const auto observer = defaults.observe(one, [&] { seen.push_back(defaults.object(one)); });
    defaults.set(one, 2.5);
    ASSERT_TRUE(eventually([&] { return seen.size() == 1; }));
    defaults.remove(one);
    ASSERT_TRUE(eventually([&] { return seen.size() == 2; }));
    EXPECT_TRUE(stays([&] { return seen.size() == 2; }));
    EXPECT_EQ(seen[0], std::optional<PropertyValue>(2.5));
    EXPECT_EQ(seen[1], std::nullopt);
}

TEST_F(DefaultsObservingContract, OtherKeysAndUnchangedValuesAreNotTold) {
    auto& defaults = desktop().userDefaults();
    defaults.set(one, true);
    pass(quietTime);
    int calls = 0;
    const auto observer = count(one, calls);
    defaults.set(one, true);
    defaults.set(two, std::string("altro"));
    defaults.remove(two);
    EXPECT_TRUE(stays([&] { return calls == 0; }));
}

TEST_F(DefaultsObservingContract, AnObserverThatIsGoneIsNotToldAndTheOthersAre) {
    int first = 0;
    int second = 0;
    auto gone = count(one, first);
    const auto stays = count(one, second);
    gone.reset();
    desktop().userDefaults().set(one, std::int64_t{7});
    EXPECT_TRUE(eventually([&] { return second == 1; }));
    EXPECT_EQ(first, 0);
}

TEST_F(DefaultsObservingContract, AnObserverMaySetAValue) {
    auto& defaults = desktop().userDefaults();
    int calls = 0;
    const auto chained = defaults.observe(one, [&] { defaults.set(two, true); });
    const auto observer = count(two, calls);
    defaults.set(one, true);
    EXPECT_TRUE(eventually([&] { return calls == 1; }));
    EXPECT_EQ(defaults.object(two), std::optional<PropertyValue>(true));
}

TEST_F(DefaultsObservingContract, AChangeByAnotherProgramIsTold) {
    int calls = 0;
    int others = 0;
    const auto observer = count(one, calls);
    const auto other = count(two, others);
    if (!world->writeDefault(one, "da fuori")) {
        GTEST_SKIP() << "no other program can change a setting of this desktop";
    }
    EXPECT_TRUE(eventually([&] { return calls == 1; }));
    EXPECT_EQ(desktop().userDefaults().object(one), std::optional<PropertyValue>(std::string("da fuori")));
    EXPECT_TRUE(stays([&] { return calls == 1 && others == 0; }));
}

using ScreenPlacesContract = ContractTest;

TEST_F(ScreenPlacesContract, TheVisibleFrameIsPartOfTheScreen) {
    for (const auto& screen : desktop().screens().screens()) {
        EXPECT_GT(screen.visibleFrame.size.width, 0);
        EXPECT_GT(screen.visibleFrame.size.height, 0);
        EXPECT_GE(screen.visibleFrame.minX(), screen.frame.minX());
        EXPECT_GE(screen.visibleFrame.minY(), screen.frame.minY());
        EXPECT_LE(screen.visibleFrame.maxX(), screen.frame.maxX());
        EXPECT_LE(screen.visibleFrame.maxY(), screen.frame.maxY());
    }
}

TEST_F(ScreenPlacesContract, ADockTakesItsHeightAwayFromTheVisibleFrame) {
    constexpr double height = 40;
    const auto before = desktop().screens().screens().front();
    if (!world->showDock(height)) {
        GTEST_SKIP() << "no program can change the Dock of this desktop";
    }
    const auto expected = ScreenRect{{before.visibleFrame.minX(), before.visibleFrame.minY() + height},
                                     {before.visibleFrame.size.width, before.visibleFrame.size.height - height}};
    EXPECT_TRUE(eventually([&] { return desktop().screens().screens().front().visibleFrame == expected; }));
    EXPECT_EQ(desktop().screens().screens().front().frame, before.frame);
    EXPECT_EQ(desktop().screens().mainScreen()->visibleFrame, expected);
}

TEST_F(ScreenPlacesContract, ThePointerIsWhereTheUserMovesItAndOnAScreenAtEveryEdge) {
    const auto frame = desktop().screens().screens().front().frame;
    for (const ScreenPoint point : {ScreenPoint{0, 0}, ScreenPoint{301, 202}, ScreenPoint{frame.maxX() - 1, 5},
                                    ScreenPoint{300, frame.maxY() - 1}}) {
        world->movePointer(point);
        ASSERT_TRUE(eventually([&] {
            const auto location = desktop().screens().mouseLocation();
            return ScreenRect{location, {}}.isNear({point, {}}, 2);
        })) << point.x
            << "," << point.y;
        EXPECT_TRUE(frame.contains(desktop().screens().mouseLocation())) << point.x << "," << point.y;
    }
}

class PermissionsContract : public ContractTest {
protected:
    bool isTrusted() { return desktop().accessibility().isProcessTrusted(); }
};

TEST_F(PermissionsContract, TheAccessibilityPermissionIsFollowedAndItsChangesAreAnnounced) {
    int announcements = 0;
    int others = 0;
    auto& center = desktop().distributedNotificationCenter();
    const auto observer = center.addObserver("com.apple.accessibility.api", [&] { ++announcements; });
    const auto other = center.addObserver("local.quillon.contract", [&] { ++others; });
    // It may be granted when the test begins.
    if (!world->setTrusted(false)) {
        GTEST_SKIP() << "no program can change permissions on this desktop";
    }
    ASSERT_TRUE(eventually([&] { return !isTrusted(); }));
    pass(quietTime);
    for (const bool trusted : {true, false}) {
        announcements = 0;
        ASSERT_TRUE(world->setTrusted(trusted));
        EXPECT_TRUE(eventually([&] { return isTrusted() == trusted && announcements == 1; }));
    }
    EXPECT_EQ(others, 0);
}

TEST_F(PermissionsContract, AnObserverOfAnnouncementsThatIsGoneIsNotTold) {
    int announcements = 0;
    auto observer =
        desktop().distributedNotificationCenter().addObserver("com.apple.accessibility.api", [&] { ++announcements; });
    observer.reset();
    if (!world->setTrusted(false)) {
        GTEST_SKIP() << "no program can change permissions on this desktop";
    }
    ASSERT_TRUE(world->setTrusted(true));
    EXPECT_TRUE(eventually([&] { return isTrusted(); }));
    EXPECT_EQ(announcements, 0);
}

TEST_F(PermissionsContract, WhatIsGrantedIsNotAskedForAgain) {
    if (!desktop().eventAccess().preflightPostEventAccess() || !desktop().screenCapture().preflightAccess()) {
        GTEST_SKIP() << "the permissions are missing";
    }
    EXPECT_TRUE(desktop().eventAccess().requestPostEventAccess());
    EXPECT_TRUE(desktop().screenCapture().requestAccess());
}

} // namespace
} // namespace quillon::contract
