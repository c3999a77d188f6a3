#include "ContractTest.h"

#include <algorithm>
#include <array>
#include <vector>

namespace quillon::contract {
namespace {

constexpr EventFlags control = eventFlagMaskControl;
constexpr EventFlags command = eventFlagMaskCommand;
constexpr EventFlags allModifiers = eventFlagMaskShift | control | eventFlagMaskAlternate | command;

// Key codes
constexpr std::uint16_t space = 49;
constexpr std::uint16_t tab = 48;
/// No key has it.
constexpr std::uint16_t unknownKey = 200;

class EventTapContract : public ContractTest {
protected:
    /// A tap that is switched on.
    std::unique_ptr<EventTap> makeTap(EventTapOptions options = EventTapOptions::defaultTap,
                                      EventMask events = eventMaskBit(SystemEventType::keyDown)) {
        auto tap = makeTapThatIsOff(options, events);
        tap->addToMainRunLoop();
        tap->setEnabled(true);
        return tap;
    }
    /// It sees and swallows `shortcut`, whatever else the window server shows it.
    std::unique_ptr<EventTap> makeTapThatIsOff(EventTapOptions options = EventTapOptions::defaultTap,
                                               EventMask events = eventMaskBit(SystemEventType::keyDown)) {
        auto tap = desktop().eventTaps().create(
            EventTapLocation::annotatedSession, EventTapPlacement::tailAppend, options, events,
            [this](SystemEventType type, const SystemEvent& event) { return decide(type, event); });
        EXPECT_NE(tap, nullptr);
        return tap;
    }

    void expectShortcut(EventTap& tap, const KeyPress& press) {
        shortcut = press;
        tap.expect(press);
    }

    testing::AssertionResult isSwallowed(const KeyPress& press) {
        const auto before = std::pair(seen, world->keyPressesOf(front, press.keyCode));
        world->pressKey(press);
        if (!markerArrives()) {
            return testing::AssertionFailure() << "the keyboard is stuck";
        }
        if (seen != before.first + 1) {
            return testing::AssertionFailure() << "the tap has seen it " << seen - before.first << " times";
        }
        if (world->keyPressesOf(front, press.keyCode) != before.second) {
            return testing::AssertionFailure() << "the window in front has got it";
        }
        return testing::AssertionSuccess();
    }
    /// Without being seen, unless the tap only listens.
    testing::AssertionResult passes(const KeyPress& press, int timesSeen = 0) {
        const auto before = std::pair(seen, world->keyPressesOf(front, press.keyCode));
        world->pressKey(press);
        if (!markerArrives()) {
            return testing::AssertionFailure() << "the keyboard is stuck";
        }
        if (seen != before.first + timesSeen) {
            return testing::AssertionFailure() << "the tap has seen it " << seen - before.first << " times";
        }
        if (world->keyPressesOf(front, press.keyCode) != before.second + 1) {
            return testing::AssertionFailure() << "the window in front has not got it";
        }
        return testing::AssertionSuccess();
    }

    /// Presses a key that no tap expects and waits for it, and thereby for all that was pressed before.
    bool markerArrives() {
        const KeyPress marker{shortcut.keyCode == space ? tab : space, 0};
        const auto before = world->keyPressesOf(front, marker.keyCode);
        world->pressKey(marker);
        return eventually([&] { return world->keyPressesOf(front, marker.keyCode) == before + 1; });
    }

    OtherWindow front = world->openWindow("Davanti", {{100, 100}, {400, 300}});
    KeyPress shortcut = controlCommandP;
    /// How often the tap has seen the shortcut.
    int seen = 0;

private:
    TappedEvent decide(SystemEventType type, const SystemEvent& event) {
        const bool isShortcut = type == SystemEventType::keyDown &&
                                event.integerValueField(SystemEventField::keyboardEventKeycode) == shortcut.keyCode &&
                                (event.flags() & allModifiers) == shortcut.modifiers;
        seen += isShortcut ? 1 : 0;
        return isShortcut ? TappedEvent::swallowed : TappedEvent::passes;
    }
};

TEST_F(EventTapContract, SwallowsThePressThatItExpects) {
    const auto tap = makeTap();
    expectShortcut(*tap, controlCommandP);
    EXPECT_EQ(tap->reach(), KeyPressReach::reaches);
    EXPECT_TRUE(isSwallowed(controlCommandP));
    EXPECT_TRUE(isSwallowed(controlCommandP));
}

TEST_F(EventTapContract, LetsPassWhatItsCallbackLetsPass) {
    const auto tap = makeTap();
    tap->expect(controlCommandP);
    shortcut = {unknownKey, 0};
    EXPECT_TRUE(passes(controlCommandP));
}

TEST_F(EventTapContract, LetsOneModifierMoreOrLessPass) {
    const auto tap = makeTap();
    expectShortcut(*tap, controlCommandP);
    EXPECT_TRUE(passes({controlCommandP.keyCode, control}));
    EXPECT_TRUE(passes({controlCommandP.keyCode, command}));
    EXPECT_TRUE(passes({controlCommandP.keyCode, 0}));
    EXPECT_TRUE(passes({controlCommandP.keyCode, control | command | eventFlagMaskShift}));
    EXPECT_TRUE(passes({controlCommandP.keyCode, control | command | eventFlagMaskAlternate}));
    EXPECT_TRUE(isSwallowed(controlCommandP));
}

TEST_F(EventTapContract, SeesNothingBeforeItIsInTheRunLoopAndSwitchedOn) {
    const auto tap = makeTapThatIsOff();
    expectShortcut(*tap, controlCommandP);
    EXPECT_TRUE(passes(controlCommandP));
    tap->addToMainRunLoop();
    EXPECT_TRUE(passes(controlCommandP));
    tap->setEnabled(true);
    EXPECT_TRUE(isSwallowed(controlCommandP));
}

TEST_F(EventTapContract, SeesNothingOnceSwitchedOffOrGone) {
    auto tap = makeTap();
    expectShortcut(*tap, controlCommandP);
    tap->setEnabled(false);
    EXPECT_TRUE(passes(controlCommandP));
    tap->setEnabled(true);
    EXPECT_TRUE(isSwallowed(controlCommandP));
    tap.reset();
    EXPECT_TRUE(passes(controlCommandP));
}

TEST_F(EventTapContract, AnswersAPressThatItWasSwitchedOffInTheMiddleOf) {
    auto tap = makeTap();
    expectShortcut(*tap, controlCommandP);
    world->pressKey(controlCommandP);
    tap.reset();
    EXPECT_TRUE(markerArrives());
}

TEST_F(EventTapContract, FollowsAnotherExpectationAtOnce) {
    const KeyPress alternateO{31, eventFlagMaskAlternate};
    const auto tap = makeTap();
    expectShortcut(*tap, controlCommandP);
    expectShortcut(*tap, alternateO);
    EXPECT_TRUE(passes(controlCommandP));
    EXPECT_TRUE(isSwallowed(alternateO));
    expectShortcut(*tap, controlCommandP);
    EXPECT_TRUE(passes(alternateO));
    EXPECT_TRUE(isSwallowed(controlCommandP));
}

TEST_F(EventTapContract, ExpectsNothingWhenTold) {
    const auto tap = makeTap();
    expectShortcut(*tap, controlCommandP);
    tap->expect(std::nullopt);
    shortcut = {unknownKey, 0};
    EXPECT_EQ(tap->reach(), KeyPressReach::reaches);
    EXPECT_TRUE(passes(controlCommandP));
}

TEST_F(EventTapContract, OnlyListensWhenMadeSo) {
    const auto tap = makeTap(EventTapOptions::listenOnly);
    expectShortcut(*tap, controlCommandP);
    EXPECT_TRUE(passes(controlCommandP, 1));
}

TEST_F(EventTapContract, SeesOnlyTheKindsOfEventsThatItWasMadeFor) {
    constexpr EventMask keyUp = EventMask{1} << 11; // kCGEventKeyUp
    const auto tap = makeTap(EventTapOptions::defaultTap, keyUp);
    expectShortcut(*tap, controlCommandP);
    EXPECT_TRUE(passes(controlCommandP));
}

TEST_F(EventTapContract, GetsAPressOnceAnotherProgramGivesItBack) {
    if (!world->claim(controlCommandP)) {
        GTEST_SKIP() << "no program can keep a key press from a tap here";
    }
    const auto tap = makeTap();
    bool isInExpect = false;
    int changes = 0;
    tap->setOnReachChange([&] {
        EXPECT_FALSE(isInExpect);
        ++changes;
    });
    isInExpect = true;
    expectShortcut(*tap, controlCommandP);
    isInExpect = false;
    EXPECT_EQ(tap->reach(), KeyPressReach::heldByAnotherProgram);
    EXPECT_TRUE(eventually([&] { return changes == 1; }));

    // Another press, meanwhile, is not affected.
    const KeyPress alternateO{31, eventFlagMaskAlternate};
    expectShortcut(*tap, alternateO);
    EXPECT_EQ(tap->reach(), KeyPressReach::reaches);
    EXPECT_TRUE(isSwallowed(alternateO));
    expectShortcut(*tap, controlCommandP);
    EXPECT_EQ(tap->reach(), KeyPressReach::heldByAnotherProgram);
    EXPECT_TRUE(eventually([&] { return changes == 3; }));

    world->giveBack(controlCommandP);
    EXPECT_TRUE(eventually([&] { return tap->reach() == KeyPressReach::reaches; }));
    EXPECT_TRUE(eventually([&] { return changes == 4; }));
    EXPECT_TRUE(isSwallowed(controlCommandP));
}

TEST_F(EventTapContract, FollowsTheKeyboard) {
    const auto tap = makeTap();
    int changes = 0;
    tap->setOnReachChange([&] { ++changes; });
    expectShortcut(*tap, controlCommandP);
    ASSERT_TRUE(isSwallowed(controlCommandP));
    if (!world->changeKeyboard(false)) {
        GTEST_SKIP() << "every keyboard has all keys here";
    }
    EXPECT_TRUE(eventually([&] { return tap->reach() == KeyPressReach::missingOnKeyboard; }));
    EXPECT_TRUE(eventually([&] { return changes == 1; }));
    ASSERT_TRUE(world->changeKeyboard(true));
    EXPECT_TRUE(eventually([&] { return tap->reach() == KeyPressReach::reaches; }));
    EXPECT_TRUE(eventually([&] { return changes == 2; }));
    EXPECT_TRUE(isSwallowed(controlCommandP));
}

/// Each key code grabs the key that is in its place, and that key reports the same key code.
TEST_F(EventTapContract, KnowsEveryKeyThatIsNoModifierByItsPlace) {
    // HIToolbox/Events.h has these for no key.
    constexpr std::array<std::uint16_t, 7> otherCodes{52, 66, 68, 70, 77, 108, 112};
    constexpr std::uint16_t lastCode = 126;
    const auto tap = makeTap();
    for (std::uint16_t keyCode = 0; keyCode <= lastCode; ++keyCode) {
        const bool isModifier = keyCode >= 54 && keyCode <= 63;
        if (isModifier || std::find(otherCodes.begin(), otherCodes.end(), keyCode) != otherCodes.end()) {
            continue;
        }
        const KeyPress press{keyCode, control | command};
        expectShortcut(*tap, press);
        EXPECT_EQ(tap->reach(), KeyPressReach::reaches) << keyCode;
        EXPECT_TRUE(isSwallowed(press)) << keyCode;
    }
}

} // namespace
} // namespace quillon::contract
