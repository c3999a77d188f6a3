// How clicks are counted, what the desktop says of them, and how scrolling becomes steps: what only X11 needs.

#include "Platform/X11/ClickCounter.h"
#include "Platform/X11/ScrollSteps.h"
#include "Platform/X11/XSettings.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <unordered_map>

namespace quillon::x11 {
namespace {

using namespace std::string_literals;

TEST(X11ClickCounter, CountsPressesThatFollowInOnePlace) {
    ClickCounter clicks;
    EXPECT_EQ(clicks.press(1, 1000, 50, 50, {}), 1);
    EXPECT_EQ(clicks.release(1), 1);
    EXPECT_EQ(clicks.press(1, 1400, 55, 45, {}), 2);
    EXPECT_EQ(clicks.release(1), 2);
    EXPECT_EQ(clicks.press(1, 1500, 55, 45, {}), 3);
}

TEST(X11ClickCounter, StartsAnewAfterAWhileElsewhereAndWithAnotherButton) {
    ClickCounter clicks;
    std::ignore = clicks.press(1, 1000, 50, 50, {});
    EXPECT_EQ(clicks.press(1, 1401, 50, 50, {}), 1);
    EXPECT_EQ(clicks.press(1, 1500, 56, 50, {}), 1);
    EXPECT_EQ(clicks.press(3, 1550, 56, 50, {}), 1);
    EXPECT_EQ(clicks.release(1), 0);
}

TEST(X11ClickCounter, ADragIsNoClick) {
    ClickCounter clicks;
    std::ignore = clicks.press(1, 1000, 50, 50, {});
    clicks.drag(55, 50);
    EXPECT_EQ(clicks.release(1), 1);
    clicks.drag(56, 50);
    EXPECT_EQ(clicks.release(1), 0);
    EXPECT_EQ(clicks.press(1, 1100, 50, 50, {}), 1);
}

TEST(X11ClickCounter, FollowsTheDesktopAndATimeThatWraps) {
    ClickCounter clicks;
    const ClickSettings quick{100, 0};
    EXPECT_EQ(clicks.press(1, 0xffffffe0, 50, 50, quick), 1);
    EXPECT_EQ(clicks.press(1, 0x20, 50, 50, quick), 2);
    EXPECT_EQ(clicks.press(1, 0x40, 51, 50, quick), 1);
}

/// A text, a colour and two numbers.
const std::string littleEndianSettings = "\0\0\0\0"
                                         "\1\0\0\0"
                                         "\4\0\0\0"
                                         "\1\0\3\0"
                                         "abc\0"
                                         "\0\0\0\0"
                                         "\5\0\0\0"
                                         "hello\0\0\0"
                                         "\2\0\2\0"
                                         "co\0\0"
                                         "\0\0\0\0"
                                         "\1\2\3\4\5\6\7\10"
                                         "\0\0\23\0"
                                         "Net/DoubleClickTime\0"
                                         "\0\0\0\0"
                                         "\372\0\0\0"
                                         "\0\0\1\0"
                                         "n\0\0\0"
                                         "\0\0\0\0"
                                         "\377\377\377\377"s;

TEST(X11Settings, NumbersAndTextsAreRead) {
    const auto settings = parseXSettings(littleEndianSettings);
    EXPECT_EQ(settings.numbers,
              (std::unordered_map<std::string, std::int32_t>{{"Net/DoubleClickTime", 250}, {"n", -1}}));
    EXPECT_EQ(settings.texts, (std::unordered_map<std::string, std::string>{{"abc", "hello"}}));
}

TEST(X11Settings, OfEitherByteOrder) {
    const auto settings = parseXSettings("\1\0\0\0"
                                         "\0\0\0\1"
                                         "\0\0\0\1"
                                         "\0\0\0\1"
                                         "n\0\0\0"
                                         "\0\0\0\0"
                                         "\0\0\1\372"s);
    EXPECT_EQ(settings.numbers.at("n"), 506);
}

TEST(X11Settings, WhatIsCutOffAnywhereDoesNoHarm) {
    for (std::size_t length = 0; length < littleEndianSettings.size(); ++length) {
        const auto settings = parseXSettings(std::string_view(littleEndianSettings).substr(0, length));
        EXPECT_FALSE(settings.numbers.contains("n")) << length;
        EXPECT_LE(settings.numbers.size(), 1U) << length;
        EXPECT_TRUE(settings.texts.empty() || settings.texts.at("abc") == "hello") << length;
    }
}

TEST(X11ScrollSteps, SmallMovementsAddUpForEachWindow) {
    ScrollSteps scrolling;
    using Steps = ScrollSteps::Steps;
    for (int movement = 0; movement < 14; ++movement) {
        EXPECT_EQ(scrolling.steps(1, 1, 0), Steps());
    }
    EXPECT_EQ(scrolling.steps(2, 1, 0), Steps());
    EXPECT_EQ(scrolling.steps(1, 1, 0), (Steps{1, 0}));
    EXPECT_EQ(scrolling.steps(1, -40, 31), (Steps{-2, 2}));
    EXPECT_EQ(scrolling.steps(1, -5, -1), (Steps{-1, 0}));
}

TEST(X11ScrollSteps, OneEventHasABoundedNumberOfSteps) {
    ScrollSteps scrolling;
    using Steps = ScrollSteps::Steps;
    constexpr int most = ScrollSteps::mostSteps;
    EXPECT_EQ(scrolling.steps(1, 1e9, -1e9), (Steps{most, -most}));
    EXPECT_EQ(ScrollSteps::ofLines(1'000'000'000, std::numeric_limits<std::int32_t>::min()), (Steps{most, -most}));
    EXPECT_EQ(ScrollSteps::ofLines(-3, most), (Steps{-3, most}));
    // What was left out is forgotten.
    EXPECT_EQ(scrolling.steps(1, 5, 25), (Steps{1, 1}));
}

} // namespace
} // namespace quillon::x11
