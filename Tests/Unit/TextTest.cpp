#include "Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace quillon {
namespace {

TEST(TextTest, ATextIsCutOnlyWhenItIsLonger) {
    EXPECT_EQ(cutToCharacters("", 3), "");
    EXPECT_EQ(cutToCharacters("abc", 3), "abc");
    EXPECT_EQ(cutToCharacters("abcd", 3), "abc…");
    EXPECT_EQ(cutToCharacters("abc", 0), "…");
}

TEST(TextTest, CharactersAreNeverCutThrough) {
    EXPECT_EQ(cutToCharacters("e\u0301e\u0301e\u0301", 2), "e\u0301e\u0301…");
    EXPECT_EQ(cutToCharacters("\r\nab", 2), "\r\na…");
    EXPECT_EQ(cutToCharacters("\U0001F1EE\U0001F1F9\U0001F1EB\U0001F1F7", 1), "\U0001F1EE\U0001F1F9…");
}

TEST(TextTest, BytesThatAreNotUTF8CountAsOneCharacterEach) {
    EXPECT_EQ(cutToCharacters("\xff\xfe\xfd", 3), "\xff\xfe\xfd");
    EXPECT_EQ(cutToCharacters("\xff\xfe\xfd", 2), "\xff\xfe…");
    EXPECT_EQ(cutToCharacters("a\xff\u0301", 2), "a\xff…");
    // Two flags stay two characters, whatever lies between them.
    const std::string flags = "\U0001F1EE\U0001F1F9\xff\U0001F1EB\U0001F1F7";
    EXPECT_EQ(cutToCharacters(flags, 3), flags);
}

TEST(TextTest, OnlyWellFormedUTF8IsValid) {
    for (const std::string_view valid : {"", "abc", "è«…»", "\U0001F600", "\u0000"}) {
        EXPECT_TRUE(isValidUTF8(valid)) << valid;
    }
    // A lone continuation byte, an overlong form, a surrogate, a cut sequence, a value beyond the last one.
    for (const std::string_view broken : {"\x80", "\xc0\xaf", "\xed\xa0\x80", "ab\xe2\x80", "\xf4\x90\x80\x80"}) {
        EXPECT_FALSE(isValidUTF8(broken)) << broken;
    }
}

TEST(TextTest, ANumberIsItsShortestTextWithAPoint) {
    struct Case {
        double number;
        std::string text;
    };
    const Case cases[] = {{30, "30.0"},
                          {0.05, "0.05"},
                          {0, "0.0"},
                          {-2, "-2.0"},
                          {0.1 + 0.2, "0.30000000000000004"},
                          {800.5, "800.5"},
                          {1e21, "1e+21"},
                          {std::numeric_limits<double>::infinity(), "inf"}};
    for (const auto& [number, text] : cases) {
        EXPECT_EQ(describe(number), text);
    }
}

TEST(TextTest, ANumberIsReadFromTheStartOfAText) {
    struct Case {
        std::string text;
        double value;
        std::size_t length;
    };
    const double infinity = std::numeric_limits<double>::infinity();
    const double largest = std::numeric_limits<double>::max();
    const Case cases[] = {
        {"0", 0, 1},
        {"30 fps", 30, 2},
        {"-2.5", -2.5, 4},
        {"+7", 7, 2},
        {".5", 0.5, 2},
        {"5.", 5, 2},
        {"1,5", 1, 1},
        {"1.2.3", 1.2, 3},
        {"1e2", 100, 3},
        {"1E-2x", 0.01, 4},
        {"1e", 1, 1},
        {"1e+", 1, 1},
        {"0x10", 0, 1},
        {"1e999", infinity, 5},
        {"-1e999", -infinity, 6},
        {"1e-999", 0, 6},
        {"1.7976931348623157e308", largest, 22},
    };
    for (const auto& [text, value, length] : cases) {
        const auto number = readLeadingNumber(text);
        ASSERT_TRUE(number) << text;
        EXPECT_EQ(number->value, value) << text;
        EXPECT_EQ(number->length, length) << text;
    }
    for (const auto* text : {"", "+", "-", ".", "-.", "e5", " 1", "inf", "nan"}) {
        EXPECT_FALSE(readLeadingNumber(text)) << text;
    }
}

TEST(TextTest, ATruthIsTrueOrFalse) {
    EXPECT_EQ(describe(true), "true");
    EXPECT_EQ(describe(false), "false");
}

} // namespace
} // namespace quillon
