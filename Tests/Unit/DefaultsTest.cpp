#include "Defaults.h"

#include "UnitTest.h"

#include <limits>

namespace quillon {
namespace {

class DefaultsTest : public UnitTest {
protected:
    void store(PropertyValue value) { desktop.userDefaults().store("key", std::move(value)); }
};

TEST_F(DefaultsTest, AnAbsentKeyIsFalseAndZero) {
    EXPECT_FALSE(Defaults::boolForKey("key"));
    EXPECT_EQ(Defaults::storedBool("key"), std::nullopt);
    EXPECT_EQ(Defaults::doubleForKey("key"), 0);
    EXPECT_EQ(Defaults::integerForKey("key"), 0);
}

TEST_F(DefaultsTest, OnlyATruthIsAStoredTruth) {
    for (const bool truth : {true, false}) {
        store(truth);
        EXPECT_EQ(Defaults::storedBool("key"), truth);
    }
    for (const auto& other : {PropertyValue(std::int64_t{1}), PropertyValue(1.0), PropertyValue("true"),
                              PropertyValue(PropertyData{std::byte{1}})}) {
        store(other);
        EXPECT_EQ(Defaults::storedBool("key"), std::nullopt) << other.index();
    }
}

TEST_F(DefaultsTest, TruthsAndNumbers) {
    struct Case {
        PropertyValue value;
        bool truth;
        double number;
        std::int64_t integer;
    };
    const Case cases[] = {
        {true, true, 1, 1},
        {false, false, 0, 0},
        {std::int64_t{0}, false, 0, 0},
        {std::int64_t{-7}, true, -7, -7},
        {0.0, false, 0, 0},
        {0.05, true, 0.05, 0},
        {-3.9, true, -3.9, -3},
        {PropertyData{std::byte{1}}, false, 0, 0},
    };
    for (const auto& [value, truth, number, integer] : cases) {
        store(value);
        EXPECT_EQ(Defaults::boolForKey("key"), truth) << value.index();
        EXPECT_EQ(Defaults::doubleForKey("key"), number) << value.index();
        EXPECT_EQ(Defaults::integerForKey("key"), integer) << value.index();
    }
}

TEST_F(DefaultsTest, ATextIsTrueByItsFirstSignificantCharacter) {
    for (const auto* text : {"YES", "yes", "true", "T", "1", "  9", "\t+001", "-7", "0003"}) {
        store(text);
        EXPECT_TRUE(Defaults::boolForKey("key")) << text;
    }
    for (const auto* text : {"", "   ", "NO", "false", "0", "000", "+", "-0", "x1", "+-1"}) {
        store(text);
        EXPECT_FALSE(Defaults::boolForKey("key")) << text;
    }
}

TEST_F(DefaultsTest, ATextCountsAsTheNumberItStartsWith) {
    struct Case {
        const char* text;
        double number;
    };
    for (const auto& [text, number] : {Case{"60", 60}, Case{" +0.5 fps", 0.5}, Case{"-3", -3}, Case{"1e2", 100},
                                       Case{"", 0}, Case{"   ", 0}, Case{"veloce", 0}}) {
        store(text);
        EXPECT_EQ(Defaults::doubleForKey("key"), number) << text;
    }
}

TEST_F(DefaultsTest, ATextCountsAsTheWholeNumberItStartsWith) {
    struct Case {
        const char* text;
        std::int64_t number;
    };
    for (const auto& [text, number] :
         {Case{"35", 35}, Case{" +96 tasti", 96}, Case{"\t-3", -3}, Case{"007", 7}, Case{"2.9", 2}, Case{"1e2", 1},
          Case{"", 0}, Case{"  ", 0}, Case{"P", 0}, Case{"+-5", 0}, Case{"--5", 0}, Case{"+", 0}}) {
        store(text);
        EXPECT_EQ(Defaults::integerForKey("key"), number) << text;
    }
}

TEST_F(DefaultsTest, WhatIsTooLargeForAnIntegerIsTheLargestThereIs) {
    using Integer = std::numeric_limits<std::int64_t>;
    const double infinity = std::numeric_limits<double>::infinity();
    for (const auto& value : {PropertyValue("9223372036854775808"), PropertyValue(0x1p63), PropertyValue(infinity)}) {
        store(value);
        EXPECT_EQ(Defaults::integerForKey("key"), Integer::max()) << value.index();
    }
    for (const auto& value :
         {PropertyValue("-9223372036854775809"), PropertyValue(-0x1p64), PropertyValue(-infinity)}) {
        store(value);
        EXPECT_EQ(Defaults::integerForKey("key"), Integer::min()) << value.index();
    }
    store(-0x1p63);
    EXPECT_EQ(Defaults::integerForKey("key"), Integer::min());
    store(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(Defaults::integerForKey("key"), 0);
}

} // namespace
} // namespace quillon
