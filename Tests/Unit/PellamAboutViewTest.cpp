#include "PellamKit/PellamAboutView.h"

#include "UnitTest.h"

namespace quillon {
namespace {

const std::string title = "Informazioni su Quillon";

class PellamAboutViewTest : public UnitTest {
protected:
    simulated::SimulatedTitledWindow& open() {
        PellamAboutView::showWindow("Quillon");
        return window();
    }
    simulated::SimulatedTitledWindow& window() { return desktop.titledWindows().window(title); }
    Lines takeWindowCalls() {
        desktop.runUntilIdle();
        return desktop.journal().take({"titledWindow", "application."});
    }
};

using PellamAboutViewEdgeCases = PellamAboutViewTest;

TEST_F(PellamAboutViewEdgeCases, OpeningTwiceShowsOneWindow) {
    open();
    PellamAboutView::showWindow("Quillon");
    EXPECT_EQ(desktop.titledWindows().all().size(), 1U);
    EXPECT_EQ(desktop.titledWindows().stack().size(), 1U);
}

TEST_F(PellamAboutViewEdgeCases, WithThePointerOnASecondDisplayItOpensCentredOnWhatThatLeavesFree) {
    desktop.titledWindows().setFittingSize({300, 272});
    desktop.screens().set({{{{0, 0}, {1440, 900}}, 2}, {{{1440, 0}, {1000, 800}}, 1, {{1440, 50}, {1000, 725}}}});
    desktop.screens().setMouseLocation({1500, 10});
    EXPECT_EQ(open().frame(), (ScreenRect{{1790, 262.5}, {300, 300}}));
}

TEST_F(PellamAboutViewEdgeCases, ABundleWithoutAVersionShows10) {
    desktop.bundle().removeInformation("CFBundleShortVersionString");
    EXPECT_EQ(open().lines().at(2), "Versione 1.0");
}

TEST_F(PellamAboutViewTest, ItShowsExactlyThis) {
    EXPECT_EQ(open().lines(), (Lines{
                                  "icon 64x64",
                                  "# Quillon",
                                  "Versione 0.1.0",
                                  "---",
                                  "Realizzato per Halvery",
                                  "(Una finestra flottante ridimensionabile per le tue app.)",
                                  "[Chiudi]",
                              }));
    const auto& column = std::get<Column>(window().content());
    EXPECT_EQ(column.width, 300);
    EXPECT_EQ(column.spacing, 12);
    EXPECT_EQ(column.padding, 24);
}

TEST_F(PellamAboutViewTest, TheTextsAreLookedUp) {
    const std::pair<const char*, const char*> texts[] = {
        {"about.title", "About %@"},        {"about.version", "Version %@"}, {"about.made_for", "Made for Halvery"},
        {"about.description", "A window."}, {"about.close", "Close"},
    };
    for (const auto& [key, text] : texts) {
        desktop.bundle().setLocalizedString("Localizable", key, text);
    }
    PellamAboutView::showWindow("Quillon");
    EXPECT_EQ(desktop.titledWindows().window("About Quillon").lines(),
              (Lines{"icon 64x64", "# Quillon", "Version 0.1.0", "---", "Made for Halvery", "(A window.)", "[Close]"}));
}

TEST_F(PellamAboutViewTest, ItIsAsLargeAsItsContentWantsAndComesForward) {
    desktop.titledWindows().setFittingSize({300, 272});
    desktop.journal().clear();
    open();
    EXPECT_EQ(takeWindowCalls(), (Lines{
                                     "titledWindows.makeWindow " + title,
                                     "titledWindow.setContentSize 300x272",
                                     "titledWindow.setFrameOrigin 570,287.5",
                                     "titledWindow.makeKeyAndOrderFront",
                                     "application.activateIgnoringOtherApps",
                                 }));
    EXPECT_TRUE(window().isKey());
}

TEST_F(PellamAboutViewTest, ItsButtonClosesIt) {
    open().press("Chiudi");
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(desktop.titledWindows().all().size(), 1U) << "it is kept";
}

TEST_F(PellamAboutViewTest, AClosedOneComesToTheSpaceOfTheUser) {
    open().clickCloseButton();
    desktop.model().currentSpace += 1;
    desktop.runUntilIdle();
    desktop.journal().clear();
    open();
    EXPECT_EQ(window().space(), desktop.model().currentSpace);
    EXPECT_EQ(takeWindowCalls(), (Lines{
                                     "titledWindow.setCollectionBehavior moveToActiveSpace=true",
                                     "titledWindow.makeKeyAndOrderFront",
                                     "application.activateIgnoringOtherApps",
                                     "titledWindow.setCollectionBehavior moveToActiveSpace=false",
                                 }));
}

TEST_F(PellamAboutViewTest, OneThatIsShownOnlyComesForward) {
    open();
    desktop.activate(desktop.launch("Note"));
    takeWindowCalls();
    open();
    EXPECT_EQ(takeWindowCalls(), (Lines{"titledWindow.makeKeyAndOrderFront", "application.activateIgnoringOtherApps"}));
}

TEST_F(PellamAboutViewTest, ItGoesWithThePlatform) {
    open();
    const PlatformScope next(desktop);
    EXPECT_TRUE(desktop.titledWindows().all().empty());
}

} // namespace
} // namespace quillon
