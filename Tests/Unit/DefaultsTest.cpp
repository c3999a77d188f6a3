#include "Defaults.h"

#include "UnitTest.h"

namespace quillon {
namespace {

class DefaultsTest : public UnitTest {
protected:
    void store(PropertyValue value) { desktop.userDefaults().store("key", std::move(value)); }
};

TEST_F(DefaultsTest, AnAbsentKeyIsFalseAndZero) {
    EXPECT_FALSE(Defaults::boolForKey("key"));
    EXPECT_EQ(Defaults::doubleForKey("key"), 0);
}

TEST_F(DefaultsTest, TruthsAndNumbers) {
    struct Case {
        PropertyValue value;
        bool truth;
        double number;
    };
    const Case cases[] = {
        {true, true, 1},
        {false, false, 0},
        {std::int64_t{0}, false, 0},
        {std::int64_t{-7}, true, -7},
        {0.0, false, 0},
        {0.05, true, 0.05},
        {PropertyData{std::byte{1}}, false, 0},
    };
    for (const auto& [value, truth, number] : cases) {
        store(value);
        EXPECT_EQ(Defaults::boolForKey("key"), truth) << value.index();
        EXPECT_EQ(Defaults::doubleForKey("key"), number) << value.index();
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

} // namespace
} // namespace quillon
