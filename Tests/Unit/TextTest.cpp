#include "Text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

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

TEST(TextTest, EmojiSequencesAreOneCharacterEach) {
    // A family of four, a flag, a skin tone, a keycap, a flag of tags.
    for (const std::string_view character :
         {"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466", "\U0001F1EE\U0001F1F9", "\U0001F44D\U0001F3FF",
          "1\uFE0F\u20E3", "\U0001F3F4\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F"}) {
        const auto two = std::string(character) + std::string(character);
        EXPECT_EQ(cutToCharacters(two, 2), two);
        EXPECT_EQ(cutToCharacters(two, 1), std::string(character) + "…");
    }
}

TEST(TextTest, TextFromRightToLeftIsCutAtItsLogicalEnd) {
    EXPECT_EQ(cutToCharacters("שלום", 2), "של…");
    EXPECT_EQ(cutToCharacters("مرحبا", 5), "مرحبا");
}

TEST(TextTest, CanonicallyEquivalentTextsAreEqual) {
    struct Case {
        std::string a, b;
    };
    const Case cases[] = {
        {"\u00e9", "e\u0301"},              // composed and decomposed
        {"\u212b", "A\u030a"},              // the angstrom sign
        {"\uac01", "\u1100\u1161\u11a8"},   // a Hangul syllable
        {"a\u0323\u0307", "a\u0307\u0323"}, // marks in either order
        {"\u1e69", "s\u0307\u0323"},        // both at once
    };
    for (const auto& [a, b] : cases) {
        EXPECT_EQ(canonicalComposition(a), canonicalComposition(b)) << a;
    }
    // The ligature fi and a mark of the same class in another order are no more than similar.
    EXPECT_NE(canonicalComposition("\ufb01"), canonicalComposition("fi"));
    EXPECT_NE(canonicalComposition("a\u0301\u0300"), canonicalComposition("a\u0300\u0301"));
}

TEST(TextTest, TextsAreOrderedByTheirComposedScalarValues) {
    const std::vector<std::string> ascending{
        "",
        std::string(1, '\0'),
        " ",
        "A",
        "Mail — Inbox",
        "Notes",
        "Notes — S",
        "Z",
        "a",
        "e",
        "ez",
        "f",
        "z",
        "e\u0301", // as one scalar value
        "\u00e9a",
        "\u05d0",
        "\u0645",
        "\U0001F1EE\U0001F1F9",
        "\U0001F44D",
        "\U0001F44D\U0001F3FF",
    };
    for (std::size_t index = 1; index < ascending.size(); ++index) {
        const auto& smaller = ascending[index - 1];
        const auto& larger = ascending[index];
        EXPECT_LT(canonicalComposition(smaller), canonicalComposition(larger)) << smaller << " " << larger;
    }
    // By scalar value, not by the UTF-16 code units.
    EXPECT_LT(canonicalComposition("\uFFFD"), canonicalComposition("\U00010000"));
}

TEST(TextTest, BytesThatAreNotUTF8AreOrderedAsReplacementCharacters) {
    EXPECT_EQ(canonicalComposition("a\xff\xe2\x82z"), U"a\uFFFD\uFFFD\uFFFDz");
    EXPECT_EQ(canonicalComposition("\xff\u0323\u0307"), canonicalComposition("\xfe\u0307\u0323"));
    EXPECT_EQ(canonicalComposition(""), U"");
    EXPECT_EQ(canonicalComposition(std::string_view("a\0b", 3)), std::u32string_view(U"a\0b", 3));
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
