// The delegate's status item and its menu.

#include "DelegateTest.h"
#include "PellamKit/PellamStatusItemVisibility.h"

#include <any>
#include <unordered_set>

namespace quillon {
namespace {

const std::string hiddenKey = "PellamStatusItemVisibility.Hidden.local.quillon.floating";
const std::string migratedKey = "didMigratePillColorV2";
const std::string colorKey = "menuBarPillColor";

// User-perceived characters of several code points each.
const std::string accented = "e\u0301";
const std::string family = "\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466";
const std::string flag = "\U0001F1EE\U0001F1F9";
const std::string darkThumb = "\U0001F44D\U0001F3FF";

std::string repeated(const std::string& text, int count) {
    std::string result;
    for (int index = 0; index < count; ++index) {
        result += text;
    }
    return result;
}

class StatusItemTest : public DelegateTest {
protected:
    /// The window is remembered, and none of another application is in front.
    void leaveRemembered(ProcessID pid) {
        activate(pid);
        activate(simulated::Desktop::ownPID());
    }
    WindowID openWindow(const std::string& title) { return desktop.openWindow(notes, title, here); }
    void pin(WindowID windowID) { delegate->performScriptCommand({"pin", {std::to_string(windowID)}}); }
    void unpin(WindowID windowID) { delegate->performScriptCommand({"unpin", {std::to_string(windowID)}}); }
    std::string pins() { return delegate->performScriptCommand({"list", {}}).text; }

    simulated::SimulatedStatusBar& bar() { return desktop.statusBar(); }
    simulated::SimulatedStatusItem& item() { return *bar().items().at(0); }
    simulated::SimulatedStatusBarButton& button() { return *item().button(); }
    std::string image() { return button().image() ? button().image()->description() : "none"; }

    void open() { bar().click(item()); }
    Lines openLines() { return simulated::describe(bar().openItems()); }
    /// What the menu shows when it opens now.
    Lines menu() {
        open();
        auto lines = openLines();
        bar().dismissMenu();
        return lines;
    }
    std::string candidateLine() { return menu().at(2); }
    /// The menu's lines between the header of the pinned windows and the separator after them.
    Lines pinnedLines() {
        const auto lines = menu();
        return {lines.begin() + 5, lines.end() - 6};
    }
    void choose(const std::string& title) {
        open();
        bar().choose(title);
    }
    /// Does what the open menu's item of that number does, with another represented object.
    void chooseWith(std::size_t number, std::any representedObject) {
        auto sender = bar().openItems().at(number);
        sender.representedObject = std::move(representedObject);
        std::get<MenuAction>(sender.action)(sender);
    }
};

using StatusItemEdgeCases = StatusItemTest;
using StatusItemDeathTest = StatusItemTest;

TEST_F(StatusItemEdgeCases, WithNothingFrontmostAndNothingRememberedTheMenuOffersNoWindow) {
    launch();
    EXPECT_EQ(menu(), (Lines{
                          "Informazioni su Quillon",
                          "---",
                          "[Nessuna finestra da fissare]",
                          "---",
                          "Impostazioni… ⌘,",
                          "---",
                          "Esci da Quillon ⌘Q",
                      }));
}

TEST_F(StatusItemEdgeCases, ACandidatesNameIsCutTo30Characters) {
    launch();
    activate(notes);
    auto& title = desktop.model().window(shopping).title;
    for (const auto& character : {std::string("a"), accented, family, flag, darkThumb, std::string("ש")}) {
        title = repeated(character, 30);
        EXPECT_EQ(candidateLine(), "Fissa «" + repeated(character, 30) + "»");
        title = repeated(character, 31);
        EXPECT_EQ(candidateLine(), "Fissa «" + repeated(character, 30) + "…»");
    }
}

TEST_F(StatusItemEdgeCases, APinnedWindowWithoutATitleIsListedByItsOwnersNameAlone) {
    launch();
    desktop.model().window(shopping).title = "";
    pin(shopping);
    EXPECT_EQ(pinnedLines(), Lines{"✓   Note"});
}

TEST_F(StatusItemEdgeCases, APinnedWindowsTitleIsCutTo40Characters) {
    launch();
    pin(openWindow(repeated("a", 40)));
    pin(openWindow(repeated("b", 41)));
    pin(openWindow(repeated(family, 40)));
    pin(openWindow(repeated(flag, 41)));
    EXPECT_EQ(pinnedLines(), (Lines{
                                 "✓   Note — " + repeated("a", 40),
                                 "✓   Note — " + repeated("b", 40) + "…",
                                 "✓   Note — " + repeated(flag, 40) + "…",
                                 "✓   Note — " + repeated(family, 40),
                             }));
}

TEST_F(StatusItemEdgeCases, TheTooltipCountsThePinnedWindowsUntilAllAreUnpinned) {
    launch();
    pin(shopping);
    pin(inbox);
    EXPECT_EQ(button().toolTip(), "Quillon — 2 finestre fissate");
    EXPECT_EQ(image(), "pin.fill semibold 16 red");
    choose("Sblocca tutte");
    EXPECT_EQ(button().toolTip(), "Quillon");
    EXPECT_EQ(image(), "pin semibold 16 red");
    EXPECT_EQ(pins(), "");
}

TEST_F(StatusItemEdgeCases, HidingRemovesTheItemAtOnceAndReopeningBringsItBackToItsPlace) {
    launch();
    item().drag(120);
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_TRUE(bar().items().empty());
    delegate->applicationShouldHandleReopen(false);
    ASSERT_EQ(bar().items().size(), 1U);
    EXPECT_EQ(item().position(), 120);
}

TEST_F(StatusItemEdgeCases, TheMigrationRunsOnce) {
    const std::vector<std::string> changes{"userDefaults.remove " + colorKey, "userDefaults.set " + migratedKey};
    desktop.userDefaults().store(colorKey, "blue");
    desktop.journal().clear();
    launch();
    EXPECT_EQ(desktop.journal().take(changes),
              (Lines{"userDefaults.remove " + colorKey, "userDefaults.set " + migratedKey + "=true"}));
    EXPECT_EQ(desktop.userDefaults().object(colorKey), std::nullopt);

    desktop.userDefaults().store(colorKey, "blue");
    delegate = std::make_shared<AppDelegate>();
    desktop.journal().clear();
    launch();
    EXPECT_EQ(desktop.journal().take(changes), Lines{});
    EXPECT_EQ(desktop.userDefaults().object(colorKey), std::optional<PropertyValue>("blue"));
}

// The menu's content

enum class Candidate { none, frontmost, remembered };

struct MenuCase {
    Candidate candidate;
    bool isCandidatePinned;
    std::size_t pinned;
};

class StatusMenuTest : public StatusItemTest, public testing::WithParamInterface<MenuCase> {};

std::string caseName(const testing::TestParamInfo<MenuCase>& info) {
    const auto& [candidate, isCandidatePinned, pinned] = info.param;
    const char* names[] = {"No", "Frontmost", "Remembered"};
    return std::string(isCandidatePinned ? "Pinned" : "") + names[static_cast<std::size_t>(candidate)] +
           "CandidateAnd" + std::to_string(pinned) + "Pins";
}

TEST_P(StatusMenuTest, TheMenuHoldsExactlyThis) {
    const auto& [candidate, isCandidatePinned, pinned] = GetParam();
    launch();
    std::vector<WindowID> toPin{inbox, desktop.openWindow(mail, "Bozze", here), desktop.openWindow(mail, "", here)};
    Lines labels{"✓   Mail — Posta", "✓   Mail — Bozze", "✓   Mail"};
    if (isCandidatePinned) {
        toPin.insert(toPin.begin(), shopping);
        labels.insert(labels.begin(), "✓   Note — Spesa");
    }
    toPin.resize(pinned);
    labels.resize(pinned);
    std::sort(labels.begin(), labels.end());
    for (const auto windowID : toPin) {
        pin(windowID);
    }
    if (candidate == Candidate::frontmost) {
        activate(notes);
    } else if (candidate == Candidate::remembered) {
        leaveRemembered(notes);
    }

    Lines expected{"Informazioni su Quillon", "---"};
    expected.push_back(candidate == Candidate::none ? "[Nessuna finestra da fissare]"
                       : isCandidatePinned          ? "Sblocca «Spesa»"
                                                    : "Fissa «Spesa»");
    if (pinned > 0) {
        expected.insert(expected.end(), {"---", "[Finestre fissate]"});
        expected.insert(expected.end(), labels.begin(), labels.end());
        expected.insert(expected.end(), {"---", "Sblocca tutte"});
    }
    expected.insert(expected.end(), {"---", "Impostazioni… ⌘,", "---", "Esci da Quillon ⌘Q"});
    EXPECT_EQ(menu(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    EveryCombination, StatusMenuTest,
    testing::Values(MenuCase{Candidate::none, false, 0}, MenuCase{Candidate::none, false, 1},
                    MenuCase{Candidate::none, false, 3}, MenuCase{Candidate::frontmost, false, 0},
                    MenuCase{Candidate::frontmost, false, 1}, MenuCase{Candidate::frontmost, false, 3},
                    MenuCase{Candidate::frontmost, true, 1}, MenuCase{Candidate::frontmost, true, 3},
                    MenuCase{Candidate::remembered, false, 0}, MenuCase{Candidate::remembered, false, 1},
                    MenuCase{Candidate::remembered, false, 3}, MenuCase{Candidate::remembered, true, 1},
                    MenuCase{Candidate::remembered, true, 3}),
    caseName);

TEST_F(StatusItemTest, TheMenuIsEmptyUntilItOpensAndIsRebuiltWhenever) {
    launch();
    EXPECT_TRUE(item().menu()->items.empty());
    const auto first = menu();
    EXPECT_EQ(menu(), first);
    pin(shopping);
    EXPECT_NE(menu(), first);
    unpin(shopping);
    EXPECT_EQ(menu(), first);
}

TEST_F(StatusItemTest, AnItemThatOnlyTellsSomethingHasNoAction) {
    launch();
    pin(shopping);
    open();
    for (const auto number : {std::size_t(2), std::size_t(4)}) {
        const auto& informative = bar().openItems().at(number);
        EXPECT_FALSE(informative.isEnabled);
        EXPECT_TRUE(std::holds_alternative<std::monostate>(informative.action)) << informative.title;
    }
}

TEST_F(StatusItemTest, TheItemsOfWindowsRepresentThem) {
    launch();
    activate(notes);
    pin(inbox);
    open();
    const auto& items = bar().openItems();
    const auto* candidate = std::any_cast<ForeignWindow>(&items.at(2).representedObject);
    ASSERT_NE(candidate, nullptr);
    EXPECT_EQ(candidate->windowID, shopping);
    EXPECT_EQ(candidate->ownerPID, notes);
    EXPECT_EQ(candidate->ownerName, "Note");
    EXPECT_EQ(candidate->windowTitle, "Spesa");
    EXPECT_FALSE(items.at(2).isOn);
    const auto* pinned = std::any_cast<std::uint32_t>(&items.at(5).representedObject);
    ASSERT_NE(pinned, nullptr);
    EXPECT_EQ(*pinned, inbox);
}

TEST_F(StatusItemTest, ACandidateWithoutATitleIsCalledByItsOwnersName) {
    launch();
    desktop.model().application(notes).identity.localizedName = repeated("n", 31);
    desktop.model().window(shopping).title = "";
    activate(notes);
    EXPECT_EQ(candidateLine(), "Fissa «" + repeated("n", 30) + "…»");
}

TEST_F(StatusItemTest, TheFrontmostWindowIsOfferedBeforeTheRememberedOne) {
    launch();
    activate(notes);
    desktop.activate(mail);
    EXPECT_EQ(candidateLine(), "Fissa «Posta»");
}

TEST_F(StatusItemTest, TheRememberedWindowIsOfferedEvenWhenItHasClosed) {
    launch();
    leaveRemembered(notes);
    desktop.close(shopping);
    EXPECT_EQ(candidateLine(), "Fissa «Spesa»");
}

TEST_F(StatusItemTest, TextFromRightToLeftStaysAsItIs) {
    launch();
    desktop.model().window(shopping).title = "קניות";
    activate(notes);
    pin(shopping);
    EXPECT_EQ(candidateLine(), "Sblocca «קניות»");
    EXPECT_EQ(pinnedLines(), Lines{"✓   Note — קניות"});
}

// The order of the pinned windows

TEST_F(StatusItemTest, PinnedWindowsAreListedByLabel) {
    launch();
    const auto english = desktop.launch("Notes");
    pin(desktop.openWindow(english, "Shopping", here));
    pin(desktop.openWindow(english, "", here));
    desktop.model().window(inbox).title = "Inbox";
    pin(inbox);
    EXPECT_EQ(pinnedLines(), (Lines{"✓   Mail — Inbox", "✓   Notes", "✓   Notes — Shopping"}));
}

TEST_F(StatusItemTest, TheOrderIsCanonicalAndCaseSensitive) {
    launch();
    for (const auto* title : {"zebra", "\u00e9lan", "Zeta", "e\u0301poca", "ebano", "fiore", "\U0001F600", "א"}) {
        pin(openWindow(title));
    }
    EXPECT_EQ(pinnedLines(), (Lines{
                                 "✓   Note — Zeta",
                                 "✓   Note — ebano",
                                 "✓   Note — fiore",
                                 "✓   Note — zebra",
                                 "✓   Note — \u00e9lan",
                                 "✓   Note — e\u0301poca",
                                 "✓   Note — א",
                                 "✓   Note — \U0001F600",
                             }));
}

TEST_F(StatusItemTest, WindowsOfEquivalentLabelsKeepTheOrderOfTheSet) {
    launch();
    std::unordered_set<PinnedWindow> set;
    // More than a sort that is not stable would leave in order by chance.
    for (int number = 0; number < 50; ++number) {
        const auto* title = number % 2 == 0 ? "\u00e9" : "e\u0301";
        const auto windowID = openWindow(title);
        pin(windowID);
        set.emplace(ForeignWindow{windowID, notes, "Note", title});
    }
    std::vector<WindowID> expected;
    for (const auto& window : set) {
        expected.push_back(window.windowID);
    }
    open();
    std::vector<WindowID> listed;
    for (const auto& line : bar().openItems()) {
        if (const auto* windowID = std::any_cast<WindowID>(&line.representedObject)) {
            listed.push_back(*windowID);
        }
    }
    EXPECT_EQ(listed, expected);
}

// What the items do

TEST_F(StatusItemTest, TheCandidatesItemPinsAndUnpinsIt) {
    launch();
    activate(notes);
    choose("Fissa «Spesa»");
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
    choose("Sblocca «Spesa»");
    EXPECT_EQ(pins(), "");
}

TEST_F(StatusItemTest, WhatIsPinnedIsLookedUpAtTheClick) {
    launch();
    activate(notes);
    open();
    pin(shopping);
    bar().choose("Fissa «Spesa»");
    EXPECT_EQ(pins(), "");

    pin(shopping);
    open();
    unpin(shopping);
    bar().choose("Sblocca «Spesa»");
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
}

TEST_F(StatusItemTest, TheWindowOfTheOpeningIsPinnedWhateverIsInFrontAtTheClick) {
    launch();
    activate(notes);
    open();
    activate(mail);
    bar().choose("Fissa «Spesa»");
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
}

TEST_F(StatusItemTest, AWindowThatClosedWhileTheMenuWasOpenIsPinnedAndPrunedLater) {
    launch();
    activate(notes);
    open();
    desktop.close(shopping);
    bar().choose("Fissa «Spesa»");
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
    EXPECT_EQ(image(), "pin.fill semibold 16 red");
    desktop.advance(Seconds(2));
    EXPECT_EQ(pins(), "");
    EXPECT_EQ(image(), "pin semibold 16 red");
}

TEST_F(StatusItemTest, APinnedWindowsItemUnpinsThatOne) {
    launch();
    pin(shopping);
    pin(inbox);
    choose("  Mail — Posta");
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
}

TEST_F(StatusItemTest, TheItemOfAWindowThatIsNoLongerPinnedDoesNothing) {
    launch();
    pin(shopping);
    open();
    desktop.close(shopping);
    desktop.advance(Seconds(2));
    desktop.journal().clear();
    bar().choose("  Note — Spesa");
    EXPECT_EQ(pins(), "");
    EXPECT_EQ(desktop.journal().take({"statusBarButton."}), Lines{});
}

TEST_F(StatusItemTest, ARepresentedObjectOfAnotherTypeDoesNothing) {
    launch();
    activate(notes);
    pin(inbox);
    const auto before = pins();
    open();
    const std::size_t candidate = 2;
    const std::size_t pinned = 5;
    const ForeignWindow window{shopping, notes, "Note", "Spesa"};
    for (const auto& object : {std::any(), std::any(shopping), std::any(PinnedWindow(window)), std::any(&window)}) {
        chooseWith(candidate, object);
        EXPECT_EQ(pins(), before);
    }
    for (const auto& object : {std::any(), std::any(static_cast<int>(inbox)), std::any(std::to_string(inbox)),
                               std::any(std::uint64_t(inbox)), std::any(window)}) {
        chooseWith(pinned, object);
        EXPECT_EQ(pins(), before);
    }
    chooseWith(candidate, window);
    chooseWith(pinned, inbox);
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
}

TEST_F(StatusItemTest, QuittingUnpinsAllAndThenTerminates) {
    launch();
    pin(shopping);
    pin(inbox);
    desktop.journal().clear();
    choose("Esci da Quillon");
    EXPECT_EQ(desktop.journal().take({"panel.destroy", "statusBarButton.setToolTip", "application."}),
              (Lines{"panel.destroy", "panel.destroy", "statusBarButton.setToolTip Quillon", "application.terminate"}));
    delegate->applicationWillTerminate();
    EXPECT_EQ(pins(), "");
}

TEST_F(StatusItemTest, AWholeRunEndsWithTheQuitItem) {
    auto& application = *desktop.sharedApplication();
    application.setDelegate(delegate);
    application.whileRunning([&] {
        activate(notes);
        choose("Fissa «Spesa»");
        choose("Esci da Quillon");
    });
    application.run();
    EXPECT_TRUE(desktop.panels().all().empty());
}

TEST_F(StatusItemTest, AboutAndSettingsChangeNothingThatIsPinned) {
    launch();
    pin(shopping);
    desktop.journal().clear();
    choose("Informazioni su Quillon");
    choose("Impostazioni…");
    EXPECT_EQ(desktop.journal().take({"panel.", "statusBarButton."}), Lines{});
    EXPECT_EQ(pins(), std::to_string(shopping) + "\tNote — Spesa");
}

TEST_F(StatusItemTest, ItemsThatOutliveTheDelegateDoNothing) {
    launch();
    activate(notes);
    pin(inbox);
    open();
    const auto items = bar().openItems();
    desktop.advance(Seconds(1));
    delegate.reset();
    desktop.journal().clear();
    for (const auto& line : items) {
        if (const auto* action = std::get_if<MenuAction>(&line.action)) {
            (*action)(line);
        }
    }
    EXPECT_EQ(desktop.journal().take(), Lines{});
}

// The item and its icon

TEST_F(StatusItemTest, TheItemIsMadeInThisOrder) {
    delegate->applicationDidFinishLaunching();
    EXPECT_EQ(desktop.journal().take({"statusBar", "statusItem", "images.", "userDefaults.set " + migratedKey,
                                      "notificationCenter.addObserver kit."}),
              (Lines{
                  "userDefaults.set " + migratedKey + "=true",
                  "statusBar.makeStatusItem",
                  "statusItem.setAutosaveName QuillonStatusItem",
                  "images.systemSymbol pin",
                  "statusBarButton.setImage pin semibold 16 red",
                  "statusBarButton.setTitle ",
                  "statusBarButton.setToolTip Quillon",
                  "statusItem.setMenu",
                  "notificationCenter.addObserver kit.pellam.PellamKit.StatusItemVisibilityDidChange",
              }));
}

TEST_F(StatusItemTest, TheItemShowsItsImageOnly) {
    launch();
    EXPECT_EQ(button().title(), "");
    EXPECT_EQ(button().image()->symbol()->description, "Quillon");
    EXPECT_FALSE(button().image()->isTemplate());
}

TEST_F(StatusItemTest, OneWindowIsCountedInThePluralToo) {
    launch();
    pin(shopping);
    EXPECT_EQ(button().toolTip(), "Quillon — 1 finestre fissate");
}

TEST_F(StatusItemTest, EveryChangeOfThePinnedSetRefreshesTheIcon) {
    launch();
    activate(notes);
    choose("Fissa «Spesa»");
    EXPECT_EQ(image(), "pin.fill semibold 16 red");
    desktop.terminate(notes);
    desktop.runUntilIdle();
    EXPECT_EQ(image(), "pin semibold 16 red");
    EXPECT_EQ(button().toolTip(), "Quillon");
}

TEST_F(StatusItemTest, AChangeOfTheScreensFitsThePillToTheNewBar) {
    desktop.userDefaults().store("menuBarPillEnabled", true);
    launch();
    EXPECT_EQ(image(), "drawn 28x22");
    bar().setThickness(20);
    EXPECT_EQ(image(), "drawn 28x22");
    desktop.changeScreens({{{{0, 0}, {1920, 1080}}, 1}});
    desktop.runUntilIdle();
    EXPECT_EQ(image(), "drawn 28x18");
}

TEST_F(StatusItemTest, WithoutTheSymbolTheItemKeepsItsTooltipAndItsMenu) {
    launch();
    desktop.images().removeSymbol("pin.fill");
    pin(shopping);
    EXPECT_EQ(image(), "none");
    EXPECT_EQ(button().toolTip(), "Quillon — 1 finestre fissate");
    choose("Sblocca tutte");
    EXPECT_EQ(image(), "pin semibold 16 red");
}

TEST_F(StatusItemTest, ASymbolThatCannotBeDrawnSoLeavesNoImage) {
    desktop.images().failConfigurations([](const auto&) { return true; });
    launch();
    EXPECT_EQ(image(), "none");
    EXPECT_EQ(button().toolTip(), "Quillon");
}

TEST_F(StatusItemTest, AnItemWithoutAButtonStillHasItsMenu) {
    bar().setGivesButtons(false);
    launch();
    pin(shopping);
    EXPECT_EQ(desktop.journal().take({"statusBarButton."}), Lines{});
    EXPECT_EQ(pinnedLines(), Lines{"✓   Note — Spesa"});
}

// Whether the item is there

TEST_F(StatusItemTest, AnItemHiddenBeforeTheLaunchIsNotMade) {
    desktop.userDefaults().store(hiddenKey, true);
    launch();
    pin(shopping);
    desktop.changeScreens({});
    desktop.runUntilIdle();
    delegate->updateIcon();
    EXPECT_EQ(desktop.journal().take({"statusBar", "statusItem", "images."}), Lines{});
    EXPECT_EQ(desktop.userDefaults().object(migratedKey), std::optional<PropertyValue>(true));
}

TEST_F(StatusItemTest, AnItemThatComesBackShowsWhatIsPinned) {
    launch();
    PellamStatusItemVisibility::setVisible(false);
    pin(shopping);
    PellamStatusItemVisibility::setVisible(true);
    EXPECT_EQ(image(), "pin.fill semibold 16 red");
    EXPECT_EQ(button().toolTip(), "Quillon — 1 finestre fissate");
    EXPECT_EQ(item().autosaveName(), "QuillonStatusItem");
    EXPECT_EQ(pinnedLines(), Lines{"✓   Note — Spesa"});
}

TEST_F(StatusItemTest, AnAnnouncementThatChangesNothingLeavesTheItemAlone) {
    launch();
    desktop.journal().clear();
    desktop.notificationCenter().post(PellamStatusItemVisibility::didChangeNotification);
    EXPECT_EQ(desktop.journal().take({"statusBar", "statusItem"}), Lines{});

    PellamStatusItemVisibility::setVisible(false);
    desktop.journal().clear();
    desktop.notificationCenter().post(PellamStatusItemVisibility::didChangeNotification);
    EXPECT_EQ(desktop.journal().take({"statusBar", "statusItem"}), Lines{});
}

TEST_F(StatusItemTest, HidingClosesTheOpenMenu) {
    launch();
    open();
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_FALSE(bar().isMenuOpen());
}

TEST_F(StatusItemTest, TheItemGoesWithTheDelegate) {
    launch();
    delegate.reset();
    EXPECT_TRUE(bar().items().empty());
}

// The menu without the item

TEST_F(StatusItemTest, TheSameMenuOpensAtThePointerWithOrWithoutAnItem) {
    launch();
    activate(notes);
    pin(inbox);
    const auto lines = menu();
    ASSERT_TRUE(delegate->openMenuAtPointer());
    EXPECT_EQ(openLines(), lines);
    bar().dismissMenu();

    PellamStatusItemVisibility::setVisible(false);
    ASSERT_TRUE(delegate->openMenuAtPointer());
    EXPECT_EQ(openLines(), lines);
    bar().choose("Fissa «Spesa»");
    EXPECT_NE(pins().find("Note — Spesa"), std::string::npos);
}

TEST_F(StatusItemTest, AMenuThatCannotOpenNowIsReported) {
    launch();
    open();
    EXPECT_FALSE(delegate->openMenuAtPointer());
}

TEST_F(StatusItemTest, WithoutAStatusBarReopeningOpensTheMenu) {
    bar().setPresent(false);
    launch();
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_EQ(openLines().back(), "Esci da Quillon ⌘Q");
    bar().dismissMenu();

    PellamStatusItemVisibility::setVisible(false);
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_TRUE(bar().isMenuOpen());
    EXPECT_TRUE(PellamStatusItemVisibility::isVisible());
}

TEST_F(StatusItemTest, WithAStatusBarReopeningOpensNoMenu) {
    launch();
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_FALSE(bar().isMenuOpen());
}

TEST_F(StatusItemDeathTest, QuittingWithoutAnApplicationObjectStopsTheProcess) {
    launch();
    desktop.removeApplicationObject();
    EXPECT_DEATH(choose("Esci da Quillon"), "there is no shared application");
}

// The simulated status bar

TEST_F(StatusItemDeathTest, OnlyWhatAnOpenMenuOffersIsChosen) {
    launch();
    EXPECT_DEATH(bar().choose("Esci da Quillon"), "no menu is open");
    EXPECT_DEATH(bar().dismissMenu(), "no menu is open");
    EXPECT_DEATH(choose("Nessuna finestra da fissare"), "the item «Nessuna finestra da fissare» cannot be chosen");
    EXPECT_DEATH(choose("Fissa «Spesa»"), "the open menu has not one item «Fissa «Spesa»»");
    choose("Informazioni su Quillon");
    EXPECT_DEATH(bar().choose("Informazioni su Quillon"), "no menu is open");
}

TEST_F(StatusItemDeathTest, AnItemIsClickedWhereItIsAndOnce) {
    launch();
    open();
    EXPECT_DEATH(open(), "a click on a status item while a menu is open");
    bar().dismissMenu();
    bar().setPresent(false);
    EXPECT_DEATH(open(), "of a desktop without a status bar");
    EXPECT_DEATH(bar().popUpMenuAtPointer(nullptr), "StatusBar::popUpMenuAtPointer without a menu");
    bar().setPresent(true);
    const auto bare = bar().makeStatusItem();
    EXPECT_DEATH(bar().click(*bar().items().back()), "a click on a status item without a menu");
}

TEST_F(StatusItemDeathTest, TheButtonOfARemovedItemIsNotUsed) {
    launch();
    auto& removed = button();
    PellamStatusItemVisibility::setVisible(false);
    EXPECT_DEATH(removed.setImage(nullptr), "StatusBarButton::setImage after its item was removed");
    EXPECT_DEATH(removed.setTitle(""), "StatusBarButton::setTitle after its item was removed");
    EXPECT_DEATH(removed.setToolTip(""), "StatusBarButton::setToolTip after its item was removed");
}

TEST_F(StatusItemDeathTest, TheStatusBarIsForTheMainThread) {
    launch();
    const auto queue = desktop.scheduler().makeSerialQueue("worker");
    const auto onQueue = [&](Task task) {
        queue->async(std::move(task));
        desktop.runUntilIdle();
    };
    EXPECT_DEATH(onQueue([&] { delegate->updateIcon(); }), "StatusItem::button on the queue worker");
    EXPECT_DEATH(onQueue([&] { delegate->openMenuAtPointer(); }), "popUpMenuAtPointer on the queue worker");
    EXPECT_DEATH(onQueue([&] { static_cast<void>(bar().makeStatusItem()); }), "makeStatusItem on the queue worker");
    EXPECT_DEATH(onQueue([&] { static_cast<void>(bar().thickness()); }), "StatusBar::thickness on the queue worker");
    EXPECT_DEATH(onQueue([&] { button().setTitle(""); }), "on the queue worker");
}

TEST_F(StatusItemDeathTest, AnItemDoesNotOutliveTheDesktop) {
    EXPECT_DEATH(
        {
            std::unique_ptr<StatusItem> survivor;
            simulated::Desktop other;
            PlatformScope otherScope(other);
            survivor = other.statusBar().makeStatusItem();
        },
        "1 status items outlive the desktop");
}

TEST_F(StatusItemDeathTest, AnImageOfAnotherDesktopIsRefused) {
    launch();
    simulated::Desktop other;
    const auto foreign = other.images().systemSymbol("pin", std::nullopt);
    EXPECT_DEATH(button().setImage(foreign), "StatusBarButton::setImage with an image that is not one of this desktop");
}

} // namespace
} // namespace quillon
