#include "PellamKit/PellamLocalization.h"

#include "UnitTest.h"

#include <limits>

namespace quillon {
namespace {

class PellamLocalizationTest : public UnitTest {
protected:
    void translate(const std::string& text) { desktop.bundle().setLocalizedString("Localizable", "key", text); }
    /// The table's text with a text and an integer.
    std::string formatted(const std::string& text) {
        translate(text);
        return L10n::format("key", "%@ di %d", "Spesa", 7);
    }
};

using PellamLocalizationDeathTest = PellamLocalizationTest;

const std::string builtIn = "Spesa di 7";

TEST_F(PellamLocalizationTest, WithoutAnEntryTheDefaultValueIsUsed) {
    EXPECT_EQ(L10n::string("key", "Annulla"), "Annulla");
    EXPECT_EQ(L10n::format("key", "Esci da %@", "Quillon"), "Esci da Quillon");
}

TEST_F(PellamLocalizationTest, TheTablesEntryReplacesTheDefaultValue) {
    translate("Undo");
    EXPECT_EQ(L10n::string("key", "Annulla"), "Undo");
    translate("");
    EXPECT_EQ(L10n::string("key", "Annulla"), "");
}

TEST_F(PellamLocalizationTest, EntriesOfOtherTablesAndKeysDoNotCount) {
    desktop.bundle().setLocalizedString("Other", "key", "Undo");
    desktop.bundle().setLocalizedString("Localizable", "Key", "Undo");
    EXPECT_EQ(L10n::string("key", "Annulla"), "Annulla");
}

TEST_F(PellamLocalizationTest, ATextThatIsNotFormattedKeepsItsPercentSigns) {
    EXPECT_EQ(L10n::string("key", "100 % di %@"), "100 % di %@");
}

TEST_F(PellamLocalizationTest, TheArgumentsTakeThePlacesOfThePlaceholders) {
    EXPECT_EQ(formatted("%@: %d"), "Spesa: 7");
    EXPECT_EQ(formatted("%@: %ld"), "Spesa: 7");
    EXPECT_EQ(formatted("%@: %lld"), "Spesa: 7");
    EXPECT_EQ(formatted("%2$d: %1$@"), "7: Spesa");
    EXPECT_EQ(formatted("%1$@, %1$@, %2$ld"), "Spesa, Spesa, 7");
    EXPECT_EQ(formatted("%@%d%%"), "Spesa7%");
    EXPECT_EQ(formatted("%2$d%% %@"), "7% Spesa");
    EXPECT_EQ(formatted("«%@»d, %dd"), "«Spesa»d, 7d");
}

TEST_F(PellamLocalizationTest, AnEntryMayLeaveArgumentsOut) {
    EXPECT_EQ(formatted("Nothing"), "Nothing");
    EXPECT_EQ(formatted(""), "");
    EXPECT_EQ(formatted("%@"), "Spesa");
    EXPECT_EQ(formatted("%2$d"), "7");
}

TEST_F(PellamLocalizationTest, AnEntryThatTheArgumentsDoNotFitCountsAsAbsent) {
    // Other types, more than there are, unknown or unfinished placeholders, numbers of no argument.
    for (const auto* wrong :
         {"%d", "%@ %@", "%1$d", "%2$@", "%@ %d %d", "%3$@", "%0$@", "%-1$@", "%99999999999999999999999$@",
          "%s", "%f",    "%n",   "%*d",  "%.2d",     "%05d", "%l@",  "%",     "%@ %",
          "%1", "%1$",   "%l",   "% d",  "%\xff",    "%…"}) {
        EXPECT_EQ(formatted(wrong), builtIn) << wrong;
    }
}

TEST_F(PellamLocalizationTest, ArgumentsAreNotTakenForPlaceholders) {
    EXPECT_EQ(L10n::format("key", "%@ e %@", "%d", "%2$@%"), "%d e %2$@%");
    EXPECT_EQ(L10n::format("key", "%@", "\xff"), "\xff");
}

TEST_F(PellamLocalizationTest, IntegersAreShownInFull) {
    EXPECT_EQ(L10n::format("key", "%d %ld", -5, std::numeric_limits<std::int64_t>::min()), "-5 -9223372036854775808");
}

TEST_F(PellamLocalizationTest, WithoutArgumentsOnlyPercentSignsAreFormatted) {
    EXPECT_EQ(L10n::format("key", "100%%"), "100%");
    translate("100 %");
    EXPECT_EQ(L10n::format("key", "100%%"), "100%");
}

TEST_F(PellamLocalizationDeathTest, ADefaultValueThatTheArgumentsDoNotFitStopsTheProcess) {
    EXPECT_DEATH(static_cast<void>(L10n::format("key", "Esci da %d", "Quillon")),
                 "the arguments do not fit the text \"Esci da %d\"");
}

} // namespace
} // namespace quillon
