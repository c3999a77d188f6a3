#include "ScriptCommands.h"

#include "ExitStatus.h"
#include "PellamKit/PellamStatusItemVisibility.h"
#include "PinnedWindowTracker.h"
#include "UnitTest.h"
#include "WindowDetector.h"
#include "WindowOverlay.h"

namespace quillon {
namespace {

constexpr DisplayRect here{{100, 50}, {800, 600}};

class ScriptCommandsTest : public UnitTest {
protected:
    ScriptReply perform(const std::string& verb, std::vector<std::string> arguments = {}) {
        auto reply = ScriptCommands::perform({verb, std::move(arguments)}, program);
        desktop.runUntilIdle();
        return reply;
    }
    void expect(const ScriptReply& reply, int exitStatus, const std::string& text) {
        EXPECT_EQ(reply.exitStatus, exitStatus);
        EXPECT_EQ(reply.text, text);
    }

    PinnedWindowTracker tracker;
    ScriptCommands::Program program{.tracker = tracker,
                                    .togglePinFrontmostWindow = [] {},
                                    .openMenuAtPointer = [] { return true; },
                                    .openSettings = [] {},
                                    .openAbout = [] {},
                                    .shortcut = "⌃⌘P",
                                    .shortcutState = ShortcutState::active};
    ProcessID notes = desktop.launch("Note");
    ProcessID mail = desktop.launch("Mail");
    WindowID shopping = desktop.openWindow(notes, "Spesa", here); // 101
    WindowID inbox = desktop.openWindow(mail, "", here);          // 102
};

TEST_F(ScriptCommandsTest, PinningTheFrontmostWindowWithAndWithoutNamingIt) {
    desktop.activate(notes);
    expect(perform("pin"), ExitStatus::success, "Fissata: Note — Spesa (finestra 101)");
    expect(perform("pin", {"front"}), ExitStatus::success, "Già fissata: Note — Spesa (finestra 101)");
    desktop.activate(mail);
    desktop.runUntilIdle();
    expect(perform("pin", {"front"}), ExitStatus::success, "Fissata: Mail (finestra 102)");
    EXPECT_EQ(tracker.pinnedWindows().size(), 2U);
}

TEST_F(ScriptCommandsTest, PinningByNumber) {
    expect(perform("pin", {"101"}), ExitStatus::success, "Fissata: Note — Spesa (finestra 101)");
    for (const auto* hexadecimal : {"0x66", "0X66"}) {
        tracker.unpinAll();
        expect(perform("pin", {hexadecimal}), ExitStatus::success, "Fissata: Mail (finestra 102)");
    }
}

TEST_F(ScriptCommandsTest, AWindowOfAnApplicationThatIsNotInFrontIsShownAtOnce) {
    desktop.activate(mail);
    desktop.runUntilIdle();
    perform("pin", {"101"});
    perform("pin", {"102"});
    EXPECT_TRUE(tracker.overlays().at(shopping)->isPinVisible());
    EXPECT_FALSE(tracker.overlays().at(inbox)->isPinVisible());
}

TEST_F(ScriptCommandsTest, WhatCannotBePinnedIsSaid) {
    expect(perform("pin"), ExitStatus::failure,
           "Nessuna finestra da fissare: porta in primo piano la finestra di un'altra applicazione");
    expect(perform("pin", {"999"}), ExitStatus::failure,
           "La finestra 999 non esiste o non si può fissare: \"quillon --list-windows\" elenca quelle che si possono "
           "fissare");
}

TEST_F(ScriptCommandsTest, WhatIsNoWindowNumberIsAUsageError) {
    for (const std::string argument : {"Spesa", "", "0x", "12a", "0x1g", "-1", "4294967296"}) {
        for (const auto* verb : {"pin", "unpin"}) {
            expect(perform(verb, {argument}), ExitStatus::usage,
                   "«" + argument + "» non è un numero di finestra: \"quillon --list-windows\" li elenca");
        }
    }
}

TEST_F(ScriptCommandsTest, UnpinningByNumberAndInFront) {
    perform("pin", {"101"});
    perform("pin", {"102"});
    expect(perform("unpin", {"0x65"}), ExitStatus::success, "Sbloccata: finestra 101");
    desktop.activate(mail);
    desktop.runUntilIdle();
    expect(perform("unpin"), ExitStatus::success, "Sbloccata: finestra 102");
    expect(perform("unpin", {"front"}), ExitStatus::failure,
           "La finestra 102 non è fissata: \"quillon list\" elenca quelle fissate");
    EXPECT_TRUE(tracker.pinnedWindows().empty());
}

TEST_F(ScriptCommandsTest, UnpinningTheFrontmostWindowWhenThereIsNone) {
    expect(perform("unpin"), ExitStatus::failure, "Nessuna finestra da sbloccare in primo piano");
}

TEST_F(ScriptCommandsTest, UnpinningAPinnedWindowThatHasClosed) {
    perform("pin", {"101"});
    desktop.close(shopping);
    expect(perform("unpin", {"101"}), ExitStatus::success, "Sbloccata: finestra 101");
}

TEST_F(ScriptCommandsTest, UnpinningAllTellsHowMany) {
    perform("pin", {"101"});
    perform("pin", {"102"});
    expect(perform("unpin", {"all"}), ExitStatus::success, "Finestre sbloccate: 2");
    expect(perform("unpin", {"all"}), ExitStatus::success, "Finestre sbloccate: 0");
}

TEST_F(ScriptCommandsTest, TogglingTellsWhatChanged) {
    perform("pin", {"102"});
    program.togglePinFrontmostWindow = [this] { tracker.pin(WindowDetector::foreignWindow(shopping).value()); };
    expect(perform("toggle"), ExitStatus::success, "Fissata: Note — Spesa (finestra 101)");
    program.togglePinFrontmostWindow = [this] { tracker.unpin(shopping); };
    expect(perform("toggle"), ExitStatus::success, "Sbloccata: Note — Spesa (finestra 101)");
    program.togglePinFrontmostWindow = [] {};
    expect(perform("toggle"), ExitStatus::failure,
           "Nessuna finestra da fissare: porta in primo piano la finestra di un'altra applicazione");
}

TEST_F(ScriptCommandsTest, TheListIsOrderedByNumber) {
    expect(perform("list"), ExitStatus::success, "");
    perform("pin", {"102"});
    perform("pin", {"101"});
    expect(perform("list"), ExitStatus::success, "101\tNote — Spesa\n102\tMail");
}

TEST_F(ScriptCommandsTest, TheMenuOpensOrTheReplySaysThatItCannot) {
    int opened = 0;
    program.openMenuAtPointer = [&] { return ++opened == 1; };
    expect(perform("menu"), ExitStatus::success, "");
    EXPECT_EQ(opened, 1);
    expect(perform("menu"), ExitStatus::failure, "Il menu non si può aprire in questo momento: riprova");
}

TEST_F(ScriptCommandsTest, TheSettingsAndTheAboutWindowOpen) {
    Lines opened;
    program.openSettings = [&] { opened.push_back("settings"); };
    program.openAbout = [&] { opened.push_back("about"); };
    expect(perform("settings"), ExitStatus::success, "");
    EXPECT_EQ(opened, Lines{"settings"});
    expect(perform("about"), ExitStatus::success, "");
    EXPECT_EQ(opened, (Lines{"settings", "about"}));
}

TEST_F(ScriptCommandsTest, TheStatusTellsOfTheShortcutTheIconAndThePinnedWindows) {
    expect(perform("status"), ExitStatus::success,
           "Scorciatoia: ⌃⌘P, attiva\n"
           "Icona: visibile\n"
           "Barra di stato: presente\n"
           "Finestre fissate: 0");
    perform("pin", {"101"});
    perform("pin", {"102"});
    PellamStatusItemVisibility::setVisible(false);
    desktop.statusBar().setPresent(false);
    expect(perform("status"), ExitStatus::success,
           "Scorciatoia: ⌃⌘P, attiva\n"
           "Icona: nascosta (\"quillon\" la mostra)\n"
           "Barra di stato: assente (\"quillon menu\" apre il menu)\n"
           "Finestre fissate: 2");
}

TEST_F(ScriptCommandsTest, TheStatusTellsWhatTheShortcutLacks) {
    struct Case {
        ShortcutState state;
        std::string line;
    };
    for (const auto& [state, line] : {
             Case{ShortcutState::notSet, "Scorciatoia: non impostata"},
             Case{ShortcutState::waitingForPermission, "Scorciatoia: ⌃⌘P, in attesa del permesso di Accessibilità"},
             Case{ShortcutState::heldByAnotherProgram, "Scorciatoia: ⌃⌘P, usata da un altro programma (scegline "
                                                       "un'altra nelle impostazioni o liberala in quel programma)"},
             Case{ShortcutState::missingOnKeyboard,
                  "Scorciatoia: ⌃⌘P, che su questa tastiera manca (scegline un'altra nelle impostazioni)"},
         }) {
        program.shortcutState = state;
        const auto text = perform("status").text;
        EXPECT_EQ(text.substr(0, text.find('\n')), line);
    }
}

TEST_F(ScriptCommandsTest, TooManyArgumentsAreAUsageError) {
    expect(perform("pin", {"1", "2"}), ExitStatus::usage,
           "Troppi argomenti per «pin»: \"quillon --help\" mostra l'uso");
    expect(perform("unpin", {"1", "2"}), ExitStatus::usage,
           "Troppi argomenti per «unpin»: \"quillon --help\" mostra l'uso");
    expect(perform("toggle", {"1"}), ExitStatus::usage,
           "Troppi argomenti per «toggle»: \"quillon --help\" mostra l'uso");
    expect(perform("list", {"1"}), ExitStatus::usage, "Troppi argomenti per «list»: \"quillon --help\" mostra l'uso");
    expect(perform("menu", {"1"}), ExitStatus::usage, "Troppi argomenti per «menu»: \"quillon --help\" mostra l'uso");
    expect(perform("settings", {"1"}), ExitStatus::usage,
           "Troppi argomenti per «settings»: \"quillon --help\" mostra l'uso");
    expect(perform("about", {"1"}), ExitStatus::usage, "Troppi argomenti per «about»: \"quillon --help\" mostra l'uso");
    expect(perform("status", {"1"}), ExitStatus::usage,
           "Troppi argomenti per «status»: \"quillon --help\" mostra l'uso");
}

TEST_F(ScriptCommandsTest, AnUnknownVerbIsAUsageError) {
    expect(perform("fissa"), ExitStatus::usage, "Comando sconosciuto «fissa»: \"quillon --help\" elenca i comandi");
}

} // namespace
} // namespace quillon
