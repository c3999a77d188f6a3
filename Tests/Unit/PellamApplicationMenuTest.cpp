#include "PellamKit/PellamApplicationMenu.h"

#include "UnitTest.h"

namespace quillon {
namespace {

class PellamApplicationMenuTest : public UnitTest {
protected:
    simulated::SimulatedApplication& application() { return *desktop.sharedApplication(); }
    Lines install() {
        PellamApplicationMenu::install();
        return simulated::describe(application().mainMenu()->items);
    }
    std::string quitTitle() { return install().at(1); }
};

using PellamApplicationMenuEdgeCases = PellamApplicationMenuTest;
using PellamApplicationMenuDeathTest = PellamApplicationMenuTest;

TEST_F(PellamApplicationMenuEdgeCases, ShiftCommandZRedoesAndCommandQQuits) {
    install();
    desktop.journal().clear();
    application().pressKeyEquivalent("Z");
    application().pressKeyEquivalent("q");
    EXPECT_EQ(desktop.journal().take(), (Lines{"firstResponder.redo", "application.terminate"}));
}

TEST_F(PellamApplicationMenuTest, TheMenuHasQuitAndTheEditingCommands) {
    EXPECT_EQ(install(), (Lines{
                             "",
                             "> Esci da Quillon ⌘Q",
                             "Modifica",
                             "> Annulla ⌘Z",
                             "> Ripeti ⇧⌘Z",
                             "> ---",
                             "> Taglia ⌘X",
                             "> Copia ⌘C",
                             "> Incolla ⌘V",
                             "> ---",
                             "> Seleziona tutto ⌘A",
                         }));
}

TEST_F(PellamApplicationMenuTest, EverySubmenuIsTitledLikeItsItem) {
    install();
    for (const auto& item : application().mainMenu()->items) {
        ASSERT_NE(item.submenu, nullptr);
        EXPECT_EQ(item.submenu->title, item.title);
    }
}

TEST_F(PellamApplicationMenuTest, EveryKeyDoesWhatItsItemSays) {
    install();
    desktop.journal().clear();
    for (const auto* key : {"z", "Z", "x", "c", "v", "a"}) {
        application().pressKeyEquivalent(key);
    }
    EXPECT_EQ(desktop.journal().take(),
              (Lines{"firstResponder.undo", "firstResponder.redo", "firstResponder.cut", "firstResponder.copy",
                     "firstResponder.paste", "firstResponder.selectAll"}));
}

TEST_F(PellamApplicationMenuTest, TheApplicationIsNamedAfterItsBundleElseAfterItsProcess) {
    desktop.bundle().setInformation("CFBundleName", "Fissatutto");
    EXPECT_EQ(quitTitle(), "> Esci da Fissatutto ⌘Q");
    desktop.bundle().removeInformation("CFBundleName");
    EXPECT_EQ(quitTitle(), "> Esci da quillon ⌘Q");
}

TEST_F(PellamApplicationMenuTest, TheTitlesAreLookedUp) {
    const std::pair<const char*, const char*> texts[] = {
        {"menu.quit", "Quit %@"}, {"menu.edit", "Edit"}, {"menu.undo", "Undo"},   {"menu.redo", "Redo"},
        {"menu.cut", "Cut"},      {"menu.copy", "Copy"}, {"menu.paste", "Paste"}, {"menu.selectAll", "Select All"},
    };
    for (const auto& [key, text] : texts) {
        desktop.bundle().setLocalizedString("Localizable", key, text);
    }
    EXPECT_EQ(install(), (Lines{
                             "",
                             "> Quit Quillon ⌘Q",
                             "Edit",
                             "> Undo ⌘Z",
                             "> Redo ⇧⌘Z",
                             "> ---",
                             "> Cut ⌘X",
                             "> Copy ⌘C",
                             "> Paste ⌘V",
                             "> ---",
                             "> Select All ⌘A",
                         }));
}

TEST_F(PellamApplicationMenuTest, InstallingAgainReplacesTheMenu) {
    install();
    const auto first = application().mainMenu();
    install();
    EXPECT_NE(application().mainMenu(), first);
}

TEST_F(PellamApplicationMenuDeathTest, WithoutAnApplicationObjectTheProcessStops) {
    desktop.removeApplicationObject();
    EXPECT_DEATH(PellamApplicationMenu::install(), "there is no shared application");
}

TEST_F(PellamApplicationMenuDeathTest, AKeyOfNoItemIsNotPressed) {
    EXPECT_DEATH(application().pressKeyEquivalent("q"), "no item of the main menu has the key q");
}

} // namespace
} // namespace quillon
