// The application's settings, in the window that the status menu opens.

#include "QuillonSettingsContent.h"

#include "AppDelegate.h"
#include "UnitTest.h"
#include "WindowOverlay.h"

#include <algorithm>
#include <limits>

namespace quillon {
namespace {

using simulated::SimulatedTitledWindow;

constexpr DisplayRect here{{100, 50}, {800, 600}};

const std::string captureRate = "Frequenza massima di aggiornamento";
const std::string forwardEvents = "Interagisci con la finestra flottante";
const std::string allSpaces = "Mostra su tutte le Scrivanie";
const std::string shortcut = "Fissa o sblocca la finestra";
const std::string accessibility = "Accessibilità";
const std::string postEvent = "Invio di clic e scorrimento";
const std::string screenRecording = "Registrazione schermo";
const std::string pill = "Mostra lo sfondo dell’icona";
const std::string icon = "Mostra l’icona nella barra dei menu";
const std::string allow = "Consenti accesso";

constexpr CollectionBehavior onOneSpace{.fullScreenAuxiliary = true};
constexpr CollectionBehavior onAllSpaces{.canJoinAllSpaces = true, .fullScreenAuxiliary = true};

class QuillonSettingsContentTest : public UnitTest {
protected:
    QuillonSettingsContentTest() {
        delegate->applicationDidFinishLaunching();
        desktop.runUntilIdle();
    }

    SimulatedTitledWindow& open() {
        delegate->performScriptCommand({"settings", {}});
        desktop.advance(Seconds(0.3));
        desktop.journal().clear();
        return window();
    }
    SimulatedTitledWindow& window() { return desktop.titledWindows().window("Quillon — Impostazioni"); }
    /// What stands at the trailing edge of the row.
    std::string shown(const std::string& row) {
        const auto start = row + ": ";
        for (const auto& line : window().lines()) {
            if (line.starts_with(start)) {
                return line.substr(start.size());
            }
        }
        return "no such row";
    }
    std::string shownAfterATurn(const std::string& row) {
        desktop.runUntilIdle();
        return shown(row);
    }

    /// Two windows, whose overlays are in front and capture.
    void pinTwoWindows() {
        const auto notes = desktop.launch("Note");
        for (const auto* title : {"Spesa", "Ricette"}) {
            const auto windowID = desktop.openWindow(notes, title, here);
            delegate->performScriptCommand({"pin", {std::to_string(windowID)}});
        }
        desktop.runUntilIdle();
        desktop.activate(desktop.launch("Mail"));
        desktop.advance(Seconds(0.3));
        ASSERT_EQ(desktop.screenCapture().runningStreams().size(), 2U);
        desktop.journal().clear();
    }
    std::vector<MediaTime> intervals() {
        std::vector<MediaTime> result;
        for (const auto& stream : desktop.screenCapture().runningStreams()) {
            result.push_back(stream->configuration().minimumFrameInterval);
        }
        return result;
    }
    std::vector<CollectionBehavior> behaviors() {
        std::vector<CollectionBehavior> result;
        for (const auto* panel : desktop.panels().all()) {
            result.push_back(panel->collectionBehavior());
        }
        return result;
    }

    void store(std::string_view key, PropertyValue value) { desktop.userDefaults().store(key, std::move(value)); }
    std::optional<PropertyValue> stored(std::string_view key) { return desktop.userDefaults().object(key); }

    std::shared_ptr<AppDelegate> delegate = std::make_shared<AppDelegate>();
};

using QuillonSettingsContentEdgeCases = QuillonSettingsContentTest;

TEST_F(QuillonSettingsContentEdgeCases, WithNothingStoredThePickerShows30FpsAndForwardingIsOn) {
    open();
    EXPECT_EQ(shown(captureRate), "<30 fps>");
    EXPECT_EQ(shown(forwardEvents), "on");
    EXPECT_EQ(shown(allSpaces), "off");
}

TEST_F(QuillonSettingsContentEdgeCases, GrantingAPermissionTurnsItsButtonIntoTheBadgeWithinASecond) {
    desktop.accessibility().setTrusted(false);
    desktop.eventAccess().set(false, false);
    desktop.screenCapture().setAccess(false);
    open();
    for (const auto& row : {accessibility, postEvent, screenRecording}) {
        EXPECT_EQ(shown(row), "[Consenti accesso]");
    }
    desktop.accessibility().setTrusted(true);
    desktop.eventAccess().set(true, false);
    desktop.screenCapture().setAccess(true);
    desktop.advance(Seconds(1));
    EXPECT_EQ(shown(accessibility), "{checkmark.circle.fill Autorizzata}");
    EXPECT_EQ(shown(postEvent), "{checkmark.circle.fill Autorizzato}");
    EXPECT_EQ(shown(screenRecording), "{checkmark.circle.fill Autorizzata}");
    desktop.screenCapture().setAccess(false);
    desktop.advance(Seconds(1));
    EXPECT_EQ(shown(screenRecording), "[Consenti accesso]");
}

TEST_F(QuillonSettingsContentEdgeCases, ShowingOnAllSpacesChangesTwoOverlaysAtOnce) {
    pinTwoWindows();
    EXPECT_EQ(behaviors(), (std::vector{onOneSpace, onOneSpace}));
    open().turnSwitch(allSpaces, true);
    EXPECT_EQ(behaviors(), (std::vector{onAllSpaces, onAllSpaces}));
    EXPECT_EQ(stored("pinToAllSpaces"), PropertyValue(true));
    window().turnSwitch(allSpaces, false);
    EXPECT_EQ(behaviors(), (std::vector{onOneSpace, onOneSpace}));
    EXPECT_EQ(stored("pinToAllSpaces"), PropertyValue(false));
}

TEST_F(QuillonSettingsContentEdgeCases, OpeningTheSettingsTwiceCreatesOneWindow) {
    open();
    open();
    EXPECT_EQ(desktop.titledWindows().all().size(), 1U);
}

TEST_F(QuillonSettingsContentTest, TheFormHoldsExactlyThis) {
    EXPECT_EQ(open().lines(),
              (Lines{
                  "= Finestre flottanti",
                  "Frequenza massima di aggiornamento: <30 fps>",
                  "    La finestra flottante si aggiorna quando cambia il contenuto; una frequenza alta non pesa se "
                  "l’immagine è ferma.",
                  "Interagisci con la finestra flottante: on",
                  "    I clic e lo scorrimento vengono inviati alla finestra fissata. Fai clic tenendo premuto ⌘ per "
                  "passare alla finestra originale. Se disattivata, basta un clic per tornare alla finestra originale.",
                  "Mostra su tutte le Scrivanie: off",
                  "= Scorciatoia da tastiera",
                  "Fissa o sblocca la finestra: (⌃⌘P) [Rimuovi] [Modifica…]",
                  "= Autorizzazioni",
                  "Accessibilità: {checkmark.circle.fill Autorizzata}",
                  "    Necessaria per usare la scorciatoia da tastiera e portare in primo piano le finestre fissate.",
                  "Invio di clic e scorrimento: {checkmark.circle.fill Autorizzato}",
                  "    Necessaria per usare clic e scorrimento sulla finestra flottante senza attivare la finestra "
                  "originale.",
                  "Registrazione schermo: {checkmark.circle.fill Autorizzata}",
                  "    Necessaria per acquisire il contenuto della finestra e mostrarlo in tempo reale.",
                  "= Icona della barra dei menu",
                  "Mostra lo sfondo dell’icona: off",
                  "= Barra dei menu",
                  "Mostra l’icona nella barra dei menu: on",
                  "= Generali",
                  "Apri all’accesso: off",
                  "[Fine ⎋]",
              }));
}

// The rate

TEST_F(QuillonSettingsContentTest, EveryRateIsStoredAndHandedToTwoStreamsAtOnce) {
    pinTwoWindows();
    open();
    struct Case {
        std::string option;
        double rate;
    };
    for (const auto& [option, rate] :
         {Case{"0.5 fps", 0.5}, Case{"1 fps", 1}, Case{"2 fps", 2}, Case{"5 fps", 5}, Case{"10 fps", 10},
          Case{"15 fps", 15}, Case{"30 fps", 30}, Case{"60 fps", 60}}) {
        window().choose(captureRate, option);
        EXPECT_EQ(stored("captureRate"), PropertyValue(rate));
        EXPECT_EQ(shownAfterATurn(captureRate), "<" + option + ">");
        const MediaTime interval{1 / rate, 600};
        EXPECT_EQ(intervals(), (std::vector{interval, interval})) << option;
    }
}

TEST_F(QuillonSettingsContentTest, ThePickerOffersTheEightRatesInThisOrder) {
    open();
    const auto& form = std::get<Form>(window().content());
    EXPECT_EQ(std::get<Picker>(form.sections.at(0).rows.at(0).control).options,
              (Lines{"0.5 fps", "1 fps", "2 fps", "5 fps", "10 fps", "15 fps", "30 fps", "60 fps"}));
}

TEST_F(QuillonSettingsContentTest, TheStoredRateIsShownWhateverItIs) {
    struct Case {
        PropertyValue stored;
        std::string shown;
    };
    open();
    for (const auto& [stored, text] : {
             Case{60.0, "<60 fps>"},
             Case{std::int64_t{15}, "<15 fps>"},
             Case{"5", "<5 fps>"},
             Case{true, "<1 fps>"},
             Case{24.0, "<>"},
             Case{std::numeric_limits<double>::infinity(), "<>"},
             Case{0.0, "<30 fps>"},
             Case{-5.0, "<30 fps>"},
             Case{"veloce", "<30 fps>"},
             Case{PropertyData{}, "<30 fps>"},
         }) {
        store("captureRate", stored);
        EXPECT_EQ(shownAfterATurn(captureRate), text);
    }
    desktop.userDefaults().remove("captureRate");
    EXPECT_EQ(shownAfterATurn(captureRate), "<30 fps>");
}

TEST_F(QuillonSettingsContentTest, ARateStoredByHandIsHandedToTwoStreamsAtOnce) {
    pinTwoWindows();
    open();
    store("captureRate", 4.0);
    desktop.runUntilIdle();
    EXPECT_EQ(intervals(), (std::vector{MediaTime{0.25, 600}, MediaTime{0.25, 600}}));
}

// Interaction

TEST_F(QuillonSettingsContentTest, InteractionIsStoredAndTheOverlaysReadItWithTheNextEvent) {
    pinTwoWindows();
    open().turnSwitch(forwardEvents, false);
    EXPECT_EQ(desktop.journal().take({"panel.", "stream.", "userDefaults."}),
              Lines{"userDefaults.set forwardEvents=false"});
    EXPECT_FALSE(WindowOverlay::forwardEvents());
    window().turnSwitch(forwardEvents, true);
    EXPECT_TRUE(WindowOverlay::forwardEvents());
    EXPECT_EQ(shownAfterATurn(forwardEvents), "on");
}

TEST_F(QuillonSettingsContentTest, TheStoredInteractionIsShownAndAnythingElseThanATruthCountsAsOn) {
    open();
    store("forwardEvents", false);
    EXPECT_EQ(shownAfterATurn(forwardEvents), "off");
    for (const PropertyValue& value :
         {PropertyValue(std::int64_t{0}), PropertyValue("NO"), PropertyValue(0.0), PropertyValue(PropertyData{})}) {
        store("forwardEvents", value);
        EXPECT_EQ(shownAfterATurn(forwardEvents), "on") << value.index();
        store("forwardEvents", false);
    }
    desktop.userDefaults().remove("forwardEvents");
    EXPECT_EQ(shownAfterATurn(forwardEvents), "on");
}

TEST_F(QuillonSettingsContentTest, FromMacOS27OnTheSwitchStillShowsOnWhileTheOverlaysDoNotForward) {
    desktop.processInfo().setOperatingSystemVersion({27, 0, 0});
    open();
    EXPECT_EQ(shown(forwardEvents), "on");
    EXPECT_FALSE(WindowOverlay::forwardEvents());
}

// Spaces

TEST_F(QuillonSettingsContentTest, AllSpacesStoredByHandIsShownAndChangesTwoOverlaysAtOnce) {
    pinTwoWindows();
    open();
    store("pinToAllSpaces", "YES");
    EXPECT_EQ(shownAfterATurn(allSpaces), "on");
    EXPECT_EQ(behaviors(), (std::vector{onAllSpaces, onAllSpaces}));
    store("pinToAllSpaces", PropertyData{});
    EXPECT_EQ(shownAfterATurn(allSpaces), "off");
    EXPECT_EQ(behaviors(), (std::vector{onOneSpace, onOneSpace}));
}

// The shortcut

TEST_F(QuillonSettingsContentTest, ARecordedShortcutIsStoredPublishedAndInForce) {
    open().press(shortcut, "Modifica…");
    EXPECT_EQ(shownAfterATurn(shortcut), "!Premi la scorciatoia…! [Annulla]");
    desktop.journal().clear();
    desktop.pressKey(96, 0x120000);
    EXPECT_EQ(desktop.journal().take({"userDefaults.set", "eventTap."}),
              (Lines{
                  "userDefaults.set shortcutKeyCode=96",
                  "userDefaults.set shortcutModifiers=1179648",
                  "eventTap.expect keyCode=96 modifiers=0x120000",
                  "userDefaults.set PellamRegisteredHotkeys=<104 bytes>",
                  "eventTap.setEnabled true",
              }));
    EXPECT_EQ(shownAfterATurn(shortcut), "(⇧⌘F5) [Rimuovi] [Modifica…]");
    EXPECT_EQ(desktop.pressKey(96, 0x120000), TappedEvent::swallowed);
}

TEST_F(QuillonSettingsContentTest, ClearingTakesTheShortcutAway) {
    open().press(shortcut, "Rimuovi");
    EXPECT_EQ(shownAfterATurn(shortcut), "(Non impostata) [Modifica…]");
    EXPECT_EQ(stored("shortcutKeyCode"), PropertyValue(std::int64_t{0}));
    EXPECT_EQ(stored("shortcutModifiers"), PropertyValue(std::int64_t{0}));
    EXPECT_EQ(desktop.pressKey(35, 0x140000), TappedEvent::passes);
}

TEST_F(QuillonSettingsContentTest, TheTapIsOffWhileRecordingAndClosingTheWindowEndsThat) {
    open().press(shortcut, "Modifica…");
    EXPECT_EQ(desktop.journal().take({"eventTap."}), Lines{"eventTap.setEnabled false"});
    desktop.runUntilIdle();
    window().clickCloseButton();
    EXPECT_EQ(desktop.journal().take({"eventTap.", "keyMonitors."}),
              (Lines{"keyMonitors.removeMonitor", "eventTap.setEnabled true"}));
    open();
    EXPECT_EQ(shown(shortcut), "(⌃⌘P) [Rimuovi] [Modifica…]");
}

TEST_F(QuillonSettingsContentTest, AShortcutCanBeRecordedBeforeThereIsATap) {
    EXPECT_NE(delegate->eventTap(), nullptr);
    const PlatformScope withoutTap(desktop);
    desktop.accessibility().setTrusted(false);
    EXPECT_EQ(delegate->eventTap(), nullptr);
    open().press(shortcut, "Modifica…");
    desktop.runUntilIdle();
    desktop.pressKey(96, 0);
    EXPECT_EQ(shownAfterATurn(shortcut), "(F5) [Rimuovi] [Modifica…]");
}

// Permissions

TEST_F(QuillonSettingsContentTest, EachButtonAsksForItsPermission) {
    const std::vector<std::string> requests{"accessibility.prompt", "eventAccess.request", "screenCapture.request",
                                            "workspace.openURL"};
    desktop.accessibility().setTrusted(false);
    desktop.eventAccess().set(false, false);
    desktop.screenCapture().setAccess(false);
    open().press(accessibility, allow);
    EXPECT_EQ(desktop.journal().take(requests), Lines{"accessibility.promptForTrust"});
    window().press(postEvent, allow);
    EXPECT_EQ(desktop.journal().take(requests), Lines{"eventAccess.requestPostEventAccess"});
    window().press(screenRecording, allow);
    EXPECT_EQ(desktop.journal().take(requests),
              (Lines{"screenCapture.requestAccess",
                     "workspace.openURL "
                     "x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"}));
    desktop.screenCapture().grantAccessOnRequest();
    window().press(screenRecording, allow);
    EXPECT_EQ(desktop.journal().take(requests), Lines{"screenCapture.requestAccess"})
        << "granted at once, System Settings stay closed";
}

// The menu bar

TEST_F(QuillonSettingsContentTest, ThePillShowsInTheStatusItemAtOnce) {
    const auto image = [&] { return desktop.statusBar().items().at(0)->button()->image()->description(); };
    const auto plain = image();
    open().turnSwitch(pill, true);
    EXPECT_NE(image(), plain);
    EXPECT_EQ(shownAfterATurn(pill), "on");
    window().turnSwitch(pill, false);
    EXPECT_EQ(image(), plain);
}

TEST_F(QuillonSettingsContentTest, HidingTheIconTellsTheWayBack) {
    open().turnSwitch(icon, false);
    desktop.runUntilIdle();
    EXPECT_TRUE(desktop.statusBar().items().empty());
    const auto lines = window().lines();
    const auto note = std::ranges::find(lines, icon + ": off") + 1;
    EXPECT_EQ(*note, "    Per ripristinare l’icona, riapri Quillon dalla cartella Applicazioni.");
    window().turnSwitch(icon, true);
    EXPECT_EQ(desktop.statusBar().items().size(), 1U);
}

// Its life

TEST_F(QuillonSettingsContentTest, WithoutAWindowAChangeOfItsOwnStateTellsNobody) {
    PinnedWindowTracker tracker;
    QuillonSettingsContent content(tracker, delegate);
    EXPECT_EQ(content.sections().size(), 5U);
    store("forwardEvents", false);
    const auto section = content.sections().at(0);
    EXPECT_FALSE(std::get<Switch>(section.rows.at(1).control).isOn);
}

TEST_F(QuillonSettingsContentTest, ItIsOnlyMadeWhenTheSettingsAreOpened) {
    const auto timers = desktop.scheduler().repeatingTimers();
    open();
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), timers + 3) << "a poll for each permission";
    window().clickCloseButton();
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), timers + 3) << "which go on for the rest of the run";
}

TEST_F(QuillonSettingsContentTest, TheStatusMenuOpensTheSettingsAndTheAboutWindow) {
    auto& bar = desktop.statusBar();
    bar.click(*bar.items().at(0));
    bar.choose("Impostazioni…");
    EXPECT_TRUE(window().isKey());
    bar.click(*bar.items().at(0));
    bar.choose("Informazioni su Quillon");
    EXPECT_TRUE(desktop.titledWindows().window("Informazioni su Quillon").isKey());
    EXPECT_TRUE(window().isVisible());
}

TEST_F(QuillonSettingsContentTest, TheScriptCommandsAnswerAtOnce) {
    for (const auto* verb : {"settings", "about"}) {
        const auto reply = delegate->performScriptCommand({verb, {}});
        EXPECT_EQ(reply.exitStatus, 0);
        EXPECT_EQ(reply.text, "");
    }
    EXPECT_EQ(desktop.titledWindows().stack().size(), 2U);
}

} // namespace
} // namespace quillon
