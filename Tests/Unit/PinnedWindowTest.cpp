#include "PinnedWindow.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

std::string label(const std::string& title) {
    return PinnedWindow(ForeignWindow{1, 2, "Note", title}).displayLabel();
}

std::string repeated(std::string_view text, int count) {
    std::string result;
    for (int index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

TEST(PinnedWindowTest, APinnedWindowIsACopyOfTheWindowInEveryField) {
    const PinnedWindow pinned(ForeignWindow{7, 8, "Note", "Spesa"});
    EXPECT_EQ(pinned.windowID, 7U);
    EXPECT_EQ(pinned.ownerPID, 8);
    EXPECT_EQ(pinned.ownerName, "Note");
    EXPECT_EQ(pinned.windowTitle, "Spesa");
}

TEST(PinnedWindowTest, TheLabelIsTheOwnerADashAndTheTitle) {
    EXPECT_EQ(label("Spesa"), "Note — Spesa");
}

TEST(PinnedWindowTest, TheTitleIsCountedInCharactersThatUsersSee) {
    // A letter with a combining accent, a family of four joined by zero-width joiners, a flag.
    for (const std::string_view character :
         {"e\u0301", "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466", "\U0001F1EE\U0001F1F9"}) {
        EXPECT_EQ(label(repeated(character, 40)), "Note — " + repeated(character, 40));
        EXPECT_EQ(label(repeated(character, 41)), "Note — " + repeated(character, 40) + "…");
    }
}

} // namespace
} // namespace quillon
