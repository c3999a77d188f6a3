#include "PropertyText.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using namespace std::string_literals;

TEST(PropertyTextTest, ATextBecomesTheValueThatItsFormMeans) {
    struct Case {
        std::string text;
        PropertyValue value;
    };
    const Case cases[] = {
        {"true", true},
        {"false", false},
        {"0", std::int64_t{0}},
        {"-12", std::int64_t{-12}},
        {"9223372036854775807", std::int64_t{9223372036854775807}},
        {"9223372036854775808", 9223372036854775808.0},
        {"0.05", 0.05},
        {"1e2", 100.0},
        {"", ""s},
        {"TRUE", "TRUE"s},
        {"12 mele", "12 mele"s},
        {"1.5x", "1.5x"s},
        {"inf", "inf"s},
        {"nan", "nan"s},
        {"1e999", "1e999"s},
        {"\"30\"", "30"s},
        {"\"\"", ""s},
        {"\"", "\""s},
        {"\"aperto", "\"aperto"s},
        {"chiuso\"", "chiuso\""s},
    };
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(parsePropertyText(text), value) << text;
    }
}

TEST(PropertyTextTest, AValueIsShownAsUsersReadIt) {
    EXPECT_EQ(propertyText(true), "true");
    EXPECT_EQ(propertyText(false), "false");
    EXPECT_EQ(propertyText(std::int64_t{-3}), "-3");
    EXPECT_EQ(propertyText(30.0), "30.0");
    EXPECT_EQ(propertyText("testo"s), "testo");
    EXPECT_EQ(propertyText(PropertyData(5)), "5 byte");
}

} // namespace
} // namespace quillon
