#include "PellamKit/MenuBarPillSettings.h"
#include "PellamKit/MenuBarVisibilitySettings.h"
#include "PellamKit/PellamStatusItemVisibility.h"
#include "UnitTest.h"

namespace quillon {
namespace {

using simulated::describe;

const std::string hiddenKey = "PellamStatusItemVisibility.Hidden.local.quillon.floating";
const std::string posted = "notificationCenter.post kit.pellam.PellamKit.StatusItemVisibilityDidChange";

const std::string pillTitle = "= Icona della barra dei menu";
const std::string pillRow = "Mostra lo sfondo dell’icona: ";
const std::string visibilityTitle = "= Barra dei menu";
const std::string visibilityRow = "Mostra l’icona nella barra dei menu: ";
const std::string note = "    Per ripristinare l’icona, riapri Quillon dalla cartella Applicazioni.";

class MenuBarSettingsTest : public UnitTest {
protected:
    /// The user turns the section's one switch.
    static void turn(const FormSection& section, bool on) { std::get<Switch>(section.rows.at(0).control).setOn(on); }
    Lines takeChanges() { return desktop.journal().take({"userDefaults.", "notificationCenter.post", "note"}); }

    MenuBarPillSettings pill;
    MenuBarVisibilitySettings visibility;
};

using MenuBarSettingsEdgeCases = MenuBarSettingsTest;

TEST_F(MenuBarSettingsEdgeCases, OnAFirstRunTheIconIsShownWithoutThePill) {
    EXPECT_EQ(describe(pill.section()), (Lines{pillTitle, pillRow + "off"}));
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "on"}));
    EXPECT_EQ(takeChanges(), Lines{});
}

TEST_F(MenuBarSettingsEdgeCases, AStoredPillColourHasNoEffect) {
    desktop.userDefaults().store("menuBarPillColor", "rosso");
    EXPECT_EQ(describe(pill.section()), (Lines{pillTitle, pillRow + "off"}));
}

TEST_F(MenuBarSettingsTest, ThePillIsStoredBeforeTheOwnerIsTold) {
    pill.willChange = [&] { desktop.journal().record("note willChange: {}", describe(pill.section()).at(1)); };
    pill.onChanged = [&] { desktop.journal().record("note onChanged: {}", describe(pill.section()).at(1)); };
    turn(pill.section(), true);
    EXPECT_EQ(takeChanges(), (Lines{"note willChange: " + pillRow + "off", "userDefaults.set menuBarPillEnabled=true",
                                    "note onChanged: " + pillRow + "on"}));
    turn(pill.section(), false);
    EXPECT_EQ(takeChanges(), (Lines{"note willChange: " + pillRow + "on", "userDefaults.set menuBarPillEnabled=false",
                                    "note onChanged: " + pillRow + "off"}));
}

TEST_F(MenuBarSettingsTest, ThePillsStateIsReadWhenTheSectionIsFirstMade) {
    desktop.userDefaults().store("menuBarPillEnabled", true);
    EXPECT_EQ(describe(pill.section()).at(1), pillRow + "on");
    desktop.userDefaults().store("menuBarPillEnabled", false);
    EXPECT_EQ(describe(pill.section()).at(1), pillRow + "on");
}

TEST_F(MenuBarSettingsTest, AHiddenIconComesWithTheWayBack) {
    visibility.willChange = [&] { desktop.journal().record("note {}", describe(visibility.section()).at(1)); };
    turn(visibility.section(), false);
    EXPECT_EQ(takeChanges(),
              (Lines{"note " + visibilityRow + "on", "userDefaults.set " + hiddenKey + "=true", posted}));
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "off", note}));

    turn(visibility.section(), true);
    EXPECT_EQ(takeChanges(),
              (Lines{"note " + visibilityRow + "off", "userDefaults.set " + hiddenKey + "=false", posted}));
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "on"}));
}

TEST_F(MenuBarSettingsTest, TheIconsVisibilityIsReadWhenTheSectionIsFirstMade) {
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "off", note}));
    desktop.userDefaults().store(hiddenKey, false);
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "off", note}))
        << "nobody has told of it";
    takeChanges();
    turn(visibility.section(), true);
    EXPECT_EQ(takeChanges(), Lines{}) << "it is visible already";
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "on"}));
}

TEST_F(MenuBarSettingsTest, AnIconThatReopeningBringsBackTurnsTheSwitchOn) {
    turn(visibility.section(), false);
    int changes = 0;
    visibility.willChange = [&] { ++changes; };
    PellamStatusItemVisibility::handleReopen();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(describe(visibility.section()), (Lines{visibilityTitle, visibilityRow + "on"}));
}

TEST_F(MenuBarSettingsTest, TheWayBackNamesTheAppWhereTheBundleHasNoName) {
    desktop.bundle().removeInformation("CFBundleName");
    turn(visibility.section(), false);
    EXPECT_EQ(describe(visibility.section()).at(2),
              "    Per ripristinare l’icona, riapri l’app dalla cartella Applicazioni.");
}

TEST_F(MenuBarSettingsTest, ThePillsOwnerNeedNotBeTold) {
    turn(pill.section(), true);
    EXPECT_EQ(takeChanges(), Lines{"userDefaults.set menuBarPillEnabled=true"});
    EXPECT_EQ(describe(pill.section()).at(1), pillRow + "on");
}

} // namespace
} // namespace quillon
