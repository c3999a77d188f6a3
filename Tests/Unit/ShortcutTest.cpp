// The global shortcut, from its storage to the press of its keys.

#include "AppDelegate.h"
#include "UnitTest.h"

#include <algorithm>
#include <map>
#include <optional>

namespace quillon {
namespace {

constexpr DisplayRect here{{100, 50}, {800, 600}};

constexpr std::uint16_t keyA = 0;
constexpr std::uint16_t keyP = 35;
constexpr std::uint16_t keyF5 = 96;
constexpr EventFlags shift = 0x20000;
constexpr EventFlags control = 0x40000;
constexpr EventFlags option = 0x80000;
constexpr EventFlags command = 0x100000;

const std::string published = "PellamRegisteredHotkeys";
const std::string waiting = "registerHotkey: waiting for Accessibility permission…";
const std::string retrying = "registerHotkey: permission granted, retrying tap…";
const std::string refused = "tryCreateEventTap: CGEvent.tapCreate failed (trusted=true)";
const std::string refusedWithoutTrust = "tryCreateEventTap: CGEvent.tapCreate failed (trusted=false)";
const std::string active = "tryCreateEventTap: SUCCESS — hotkey active for keyCode=35";

class ShortcutTest : public UnitTest {
protected:
    void launch() {
        delegate->applicationDidFinishLaunching();
        desktop.runUntilIdle();
    }
    /// Launched, with a window to pin in front.
    void launchWithWindow() {
        launch();
        desktop.activate(notes);
        desktop.advance(Seconds(0.1));
    }
    /// The program ends, and another process of it starts.
    void restart() {
        delegate->applicationWillTerminate();
        delegate.reset();
        desktop.runUntilIdle();
        process.reset();
        process.emplace(desktop);
        delegate = std::make_shared<AppDelegate>();
        launch();
    }
    void setShortcut(std::uint16_t keyCode, ModifierFlags modifiers) {
        delegate->shortcutKeyCode = keyCode;
        delegate->shortcutModifiers = modifiers;
        delegate->saveShortcut();
    }
    void storeShortcut(PropertyValue keyCode, PropertyValue modifiers) {
        desktop.userDefaults().store("shortcutKeyCode", std::move(keyCode));
        desktop.userDefaults().store("shortcutModifiers", std::move(modifiers));
    }
    std::string display(std::uint16_t keyCode, ModifierFlags modifiers) {
        delegate->shortcutKeyCode = keyCode;
        delegate->shortcutModifiers = modifiers;
        return delegate->shortcutDisplayString();
    }
    bool swallows(std::uint16_t keyCode, EventFlags flags) {
        return desktop.pressKey(keyCode, flags) == TappedEvent::swallowed;
    }
    /// After everything that waits has been done.
    std::string pinnedWindows() {
        desktop.runUntilIdle();
        return delegate->performScriptCommand({"list", {}}).text;
    }
    std::string publishedText() {
        const auto data = std::get<PropertyData>(desktop.userDefaults().object(published).value());
        std::string text(data.size(), '\0');
        std::ranges::transform(data, text.begin(), [](std::byte byte) { return static_cast<char>(byte); });
        return text;
    }
    /// The lines that tell of the tap.
    Lines takeTapLog() {
        auto lines = takeLog();
        std::erase_if(lines, [](const std::string& line) {
            return !line.starts_with("registerHotkey: ") && !line.starts_with("tryCreateEventTap: ") &&
                   !line.starts_with("hotkey: ");
        });
        return lines;
    }
    simulated::SimulatedEventTap& tap() { return *desktop.eventTaps().all().at(0); }
    std::size_t taps() { return desktop.eventTaps().all().size(); }

    ProcessID notes = desktop.launch("Note");
    WindowID shopping = desktop.openWindow(notes, "Spesa", here);
    const std::string pinned = std::to_string(shopping) + "\tNote — Spesa";
    std::optional<PlatformScope> process;
    std::shared_ptr<AppDelegate> delegate = std::make_shared<AppDelegate>();
};

using ShortcutEdgeCases = ShortcutTest;
using ShortcutDeathTest = ShortcutTest;

TEST_F(ShortcutEdgeCases, TheShortcutTogglesThePinOfTheWindowInFrontAndNoApplicationSeesIt) {
    launchWithWindow();
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_EQ(pinnedWindows(), pinned);
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_EQ(pinnedWindows(), "");
}

TEST_F(ShortcutEdgeCases, WithOneModifierMoreOrLessTheKeyPasses) {
    launchWithWindow();
    EXPECT_FALSE(swallows(keyP, control | command | option));
    EXPECT_FALSE(swallows(keyP, control | command | shift));
    EXPECT_FALSE(swallows(keyP, control));
    EXPECT_FALSE(swallows(keyP, command));
    EXPECT_FALSE(swallows(keyP, 0));
    EXPECT_EQ(pinnedWindows(), "");
}

TEST_F(ShortcutEdgeCases, CapsLockDoesNotMatter) {
    constexpr EventFlags capsLock = 0x10000;
    constexpr EventFlags function = 0x800000;
    launchWithWindow();
    EXPECT_TRUE(swallows(keyP, control | command | capsLock));
    EXPECT_EQ(pinnedWindows(), pinned);
    EXPECT_TRUE(swallows(keyP, control | command | function));
    EXPECT_EQ(pinnedWindows(), "");
}

TEST_F(ShortcutEdgeCases, AClearedShortcutLetsEveryKeyPassUntilTheNextLaunch) {
    launchWithWindow();
    setShortcut(0, 0);
    for (int keyCode = 0; keyCode < 128; ++keyCode) {
        for (const auto flags : {EventFlags{0}, control | command}) {
            EXPECT_FALSE(swallows(static_cast<std::uint16_t>(keyCode), flags)) << keyCode;
        }
    }
    EXPECT_EQ(pinnedWindows(), "");
    EXPECT_EQ(publishedText(), "[]");

    restart();
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_EQ(pinnedWindows(), pinned);
    EXPECT_NE(publishedText(), "[]");
}

TEST_F(ShortcutEdgeCases, AFunctionKeyAloneWorksUntilTheNextLaunchBringsTheBuiltInShortcut) {
    launchWithWindow();
    setShortcut(keyF5, 0);
    EXPECT_TRUE(swallows(keyF5, 0));
    EXPECT_EQ(pinnedWindows(), pinned);
    EXPECT_FALSE(swallows(keyP, control | command));

    restart();
    EXPECT_FALSE(swallows(keyF5, 0));
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_EQ(delegate->shortcutDisplayString(), "⌃⌘P");
}

TEST_F(ShortcutEdgeCases, WithoutThePermissionItWaitsQuietlyUntilItIsGranted) {
    turnLoggingOn();
    desktop.accessibility().setTrusted(false);
    launch();
    const auto timersWhileWaiting = desktop.scheduler().repeatingTimers();
    EXPECT_EQ(takeTapLog(), (Lines{refusedWithoutTrust, waiting}));
    desktop.advance(Seconds(60));
    EXPECT_EQ(takeTapLog(), Lines{});

    desktop.accessibility().setTrusted(true);
    desktop.advance(Seconds(2));
    EXPECT_EQ(takeTapLog(), (Lines{retrying, active}));
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), timersWhileWaiting - 1);
    EXPECT_TRUE(swallows(keyP, control | command));
}

TEST_F(ShortcutEdgeCases, TheDisplayTextOfTheSpaceBarAndOfAnUnknownKey) {
    EXPECT_EQ(display(49, command), "⌘Spazio");
    EXPECT_EQ(display(200, control), "⌃?200");
}

// Storage

TEST_F(ShortcutTest, WithNothingStoredTheBuiltInShortcutStaysAndNothingIsStored) {
    launch();
    EXPECT_EQ(delegate->shortcutKeyCode, keyP);
    EXPECT_EQ(delegate->shortcutModifiers, control | command);
    EXPECT_EQ(desktop.userDefaults().object("shortcutKeyCode"), std::nullopt);
    EXPECT_EQ(desktop.userDefaults().object("shortcutModifiers"), std::nullopt);
}

TEST_F(ShortcutTest, AStoredShortcutIsLoadedWithAllItsBits) {
    turnLoggingOn();
    storeShortcut(std::int64_t{65535}, std::int64_t{0x7FFFFFFFFFFFFFFF});
    launch();
    EXPECT_EQ(delegate->shortcutKeyCode, 65535);
    EXPECT_EQ(delegate->shortcutModifiers, 0x7FFFFFFFFFFFFFFFU);
    EXPECT_TRUE(swallows(65535, shift | control | option | command));
    EXPECT_EQ(takeTapLog(), Lines{"tryCreateEventTap: SUCCESS — hotkey active for keyCode=65535"});
}

TEST_F(ShortcutTest, AShortcutStoredByHandAsTextIsLoaded) {
    storeShortcut("96", "131072");
    launch();
    EXPECT_EQ(delegate->shortcutDisplayString(), "⇧F5");
}

TEST_F(ShortcutTest, WithOneOfTheValuesZeroTheBuiltInShortcutStays) {
    for (const auto& [keyCode, modifiers] :
         {std::pair<std::int64_t, std::int64_t>{0, 0x100000}, {keyF5, 0}, {0, 0}, {70000, 0}, {0, -1}}) {
        storeShortcut(keyCode, modifiers);
        delegate = std::make_shared<AppDelegate>();
        launch();
        EXPECT_EQ(delegate->shortcutDisplayString(), "⌃⌘P") << keyCode << " " << modifiers;
    }
}

TEST_F(ShortcutDeathTest, StoredValuesOutOfRangeStopTheProcess) {
    storeShortcut(std::int64_t{65536}, std::int64_t{0x100000});
    EXPECT_DEATH(launch(), "programming error: shortcutKeyCode is 65536, outside 0…65535");
    storeShortcut(std::int64_t{-1}, std::int64_t{0x100000});
    EXPECT_DEATH(launch(), "programming error: shortcutKeyCode is -1, outside 0…65535");
    storeShortcut(std::int64_t{keyP}, std::int64_t{-1});
    EXPECT_DEATH(launch(), "programming error: shortcutModifiers is -1, which is negative");
}

TEST_F(ShortcutTest, SavingStoresActivatesAndPublishesWithoutMakingAnotherTap) {
    launch();
    desktop.journal().clear();
    setShortcut(keyF5, shift);
    EXPECT_EQ(desktop.journal().take(), (Lines{
                                            "userDefaults.set shortcutKeyCode=96",
                                            "userDefaults.set shortcutModifiers=131072",
                                            "eventTap.expect keyCode=96 modifiers=0x20000",
                                            "userDefaults.set PellamRegisteredHotkeys=<103 bytes>",
                                        }));
    EXPECT_TRUE(swallows(keyF5, shift));
    EXPECT_FALSE(swallows(keyP, control | command));
}

TEST_F(ShortcutTest, ASavedShortcutIsThereAfterTheNextLaunch) {
    launchWithWindow();
    setShortcut(keyA, option | command);
    EXPECT_TRUE(swallows(keyA, option | command));
    setShortcut(keyF5, option | command);
    restart();
    EXPECT_TRUE(swallows(keyF5, option | command));
    EXPECT_EQ(pinnedWindows(), pinned);
}

TEST_F(ShortcutTest, OnlyTheFourModifiersTakePartInTheMatch) {
    launch();
    desktop.journal().clear();
    setShortcut(keyP, 0xFFFFFFFF & ~option);
    EXPECT_EQ(
        desktop.journal().take({"userDefaults.set shortcutModifiers", "eventTap."}),
        (Lines{"userDefaults.set shortcutModifiers=4294443007", "eventTap.expect keyCode=35 modifiers=0x160000"}));
    EXPECT_TRUE(swallows(keyP, shift | control | command));
    for (const auto& [modifier, flags] : {std::pair{modifierFlagShift, shift},
                                          {modifierFlagControl, control},
                                          {modifierFlagOption, option},
                                          {modifierFlagCommand, command}}) {
        setShortcut(keyP, modifier);
        EXPECT_TRUE(swallows(keyP, flags));
        EXPECT_FALSE(swallows(keyP, 0));
    }
}

TEST_F(ShortcutTest, AKeyCodeOfZeroWithOtherModifiersOnlyCountsAsNoneInTheMatch) {
    launch();
    setShortcut(keyA, 0x10000);
    EXPECT_FALSE(swallows(keyA, 0));
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::notSet);
    EXPECT_NE(publishedText(), "[]");
}

// Publication

TEST_F(ShortcutTest, TheLaunchPublishesTheShortcutInForceOverADamagedValue) {
    storeShortcut(std::int64_t{keyF5}, std::int64_t{0x120000});
    desktop.userDefaults().store(published, "danneggiato");
    launch();
    EXPECT_EQ(publishedText(), R"([{"actionTitle":"Fissa o sblocca finestra","keyCode":96,"modifiers":1179648,)"
                               R"("activeContext":"anywhere"}])");
}

TEST_F(ShortcutTest, AShortcutOfWhichOneHalfIsZeroIsPublished) {
    launch();
    setShortcut(keyF5, 0);
    EXPECT_NE(publishedText().find(R"("keyCode":96,"modifiers":0,)"), std::string::npos);
    setShortcut(keyA, command);
    EXPECT_NE(publishedText().find(R"("keyCode":0,"modifiers":1048576,)"), std::string::npos);
}

// The tap

TEST_F(ShortcutTest, TheTapFiltersKeyPressesOfTheWholeSession) {
    turnLoggingOn();
    desktop.journal().clear();
    launch();
    EXPECT_EQ(desktop.journal().take({"eventTap"}), (Lines{
                                                        "eventTaps.create location=2 placement=1 options=0 mask=0x400",
                                                        "eventTap.setOnReachChange",
                                                        "eventTap.expect keyCode=35 modifiers=0x140000",
                                                        "eventTap.addToMainRunLoop",
                                                        "eventTap.setEnabled true",
                                                    }));
    EXPECT_EQ(takeTapLog(), Lines{active});
}

TEST_F(ShortcutTest, WithThePermissionNothingWaits) {
    const auto before = desktop.scheduler().repeatingTimers();
    launch();
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), before);
}

TEST_F(ShortcutTest, ALaunchInTheSameProcessKeepsTheTapAndTellsItTheShortcut) {
    turnLoggingOn();
    launch();
    storeShortcut(std::int64_t{keyF5}, std::int64_t{0x100000});
    delegate = std::make_shared<AppDelegate>();
    takeLog();
    desktop.journal().clear();
    launch();
    EXPECT_EQ(desktop.journal().take({"eventTap"}), Lines{"eventTap.expect keyCode=96 modifiers=0x100000"});
    EXPECT_EQ(takeTapLog(), Lines{});
}

TEST_F(ShortcutTest, ATapThatIsRefusedInSpiteOfThePermissionIsTriedAgainEveryTwoSeconds) {
    turnLoggingOn();
    desktop.eventTaps().refuse(true);
    launch();
    EXPECT_EQ(takeTapLog(), (Lines{refused, waiting}));
    desktop.advance(Seconds(1.9));
    EXPECT_EQ(takeTapLog(), Lines{});
    desktop.advance(Seconds(4.1));
    EXPECT_EQ(takeTapLog(), (Lines{retrying, refused, retrying, refused, retrying, refused}));
    EXPECT_FALSE(swallows(keyP, control | command));

    desktop.eventTaps().refuse(false);
    desktop.advance(Seconds(2));
    EXPECT_EQ(takeTapLog(), (Lines{retrying, active}));
    desktop.advance(Seconds(60));
    EXPECT_EQ(takeTapLog(), Lines{});
    EXPECT_EQ(taps(), 1U);
}

TEST_F(ShortcutTest, AShortcutSavedWhileWaitingIsTheOneThatWorksThen) {
    desktop.accessibility().setTrusted(false);
    launchWithWindow();
    setShortcut(keyF5, shift);
    EXPECT_EQ(taps(), 0U);
    desktop.accessibility().setTrusted(true);
    desktop.advance(Seconds(2));
    EXPECT_TRUE(swallows(keyF5, shift));
    EXPECT_EQ(pinnedWindows(), pinned);
}

TEST_F(ShortcutTest, TheWaitingEndsWithTheDelegate) {
    turnLoggingOn();
    desktop.accessibility().setTrusted(false);
    launch();
    takeLog();
    delegate.reset();
    desktop.accessibility().setTrusted(true);
    desktop.advance(Seconds(10));
    EXPECT_EQ(takeTapLog(), Lines{});
    EXPECT_EQ(taps(), 0U);
}

TEST_F(ShortcutTest, TheActionRunsAfterTheCallbackHasReturned) {
    launchWithWindow();
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_TRUE(desktop.panels().all().empty());
    EXPECT_EQ(desktop.scheduler().waitingTasks("main"), 1U);
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.panels().all().size(), 1U);
}

TEST_F(ShortcutTest, HoldingTheShortcutTogglesOncePerRepeat) {
    turnLoggingOn();
    launchWithWindow();
    takeLog();
    for (int repeat = 0; repeat < 3; ++repeat) {
        EXPECT_TRUE(swallows(keyP, control | command));
        desktop.runUntilIdle();
    }
    auto lines = takeLog();
    std::erase_if(lines, [](const std::string& line) { return !line.starts_with("togglePin: "); });
    const auto detail = " 'Spesa' (wid=" + std::to_string(shopping) + ")";
    EXPECT_EQ(lines,
              (Lines{"togglePin: Pinned" + detail, "togglePin: Unpinned" + detail, "togglePin: Pinned" + detail}));
    EXPECT_EQ(pinnedWindows(), pinned);
}

TEST_F(ShortcutTest, OtherKeysPass) {
    launch();
    EXPECT_FALSE(swallows(keyP - 1, control | command));
    EXPECT_FALSE(swallows(keyP + 1, control | command));
    EXPECT_EQ(desktop.scheduler().waitingTasks("main"), 0U);
}

TEST_F(ShortcutTest, WithoutAForeignWindowTheShortcutIsSwallowedAndPinsNothing) {
    turnLoggingOn();
    launch();
    takeLog();
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_EQ(takeLog(), Lines{"togglePin: No foreign window found"});
}

TEST_F(ShortcutTest, WithTheDelegateGoneThePressIsSwallowedAndNothingHappens) {
    turnLoggingOn();
    launchWithWindow();
    takeLog();
    EXPECT_TRUE(swallows(keyP, control | command));
    delegate.reset();
    EXPECT_TRUE(swallows(keyP, control | command));
    EXPECT_EQ(takeLog(), Lines{});
    EXPECT_TRUE(desktop.panels().all().empty());
}

TEST_F(ShortcutTest, APressThatStillWaitsWhenThePlatformIsReplacedDoesNothing) {
    launchWithWindow();
    EXPECT_TRUE(swallows(keyP, control | command));
    process.emplace(desktop);
    EXPECT_EQ(pinnedWindows(), "");
    EXPECT_EQ(taps(), 0U);
}

TEST_F(ShortcutTest, ATapThatTheSystemSwitchesOffIsSwitchedOnAgain) {
    launch();
    for (const auto reason : {SystemEventType::tapDisabledByTimeout, SystemEventType::tapDisabledByUserInput}) {
        desktop.journal().clear();
        tap().disableBySystem(reason);
        EXPECT_EQ(desktop.journal().take(), Lines{"eventTap.setEnabled true"});
        EXPECT_TRUE(swallows(keyP, control | command));
    }
}

TEST_F(ShortcutTest, OtherKindsOfEventsPass) {
    struct Release final : SystemEvent {
        [[nodiscard]] std::int64_t integerValueField(SystemEventField) const override { return keyP; }
        [[nodiscard]] EventFlags flags() const override { return control | command; }
    };
    constexpr auto keyUp = static_cast<SystemEventType>(11);
    launch();
    EXPECT_EQ(tap().deliver(keyUp, Release()), TappedEvent::passes);
    EXPECT_EQ(tap().deliver(SystemEventType::keyDown, Release()), TappedEvent::swallowed);
}

TEST_F(ShortcutTest, ShutdownDisablesTheTapFirstAndKeepsIt) {
    launchWithWindow();
    desktop.journal().clear();
    delegate->applicationWillTerminate();
    EXPECT_EQ(desktop.journal().take({"eventTap", "workspace.", "scheduler."}),
              (Lines{"eventTap.setEnabled false", "workspace.endObservingActivations"}));
    EXPECT_EQ(taps(), 1U);
    EXPECT_FALSE(swallows(keyP, control | command));
}

TEST_F(ShortcutTest, ShutdownEndsTheWaitingFirst) {
    desktop.accessibility().setTrusted(false);
    launch();
    desktop.journal().clear();
    delegate->applicationWillTerminate();
    EXPECT_EQ(desktop.journal().take({"eventTap", "workspace.", "scheduler."}),
              (Lines{"scheduler.endRepeatingTimer", "workspace.endObservingActivations"}));
    desktop.accessibility().setTrusted(true);
    desktop.advance(Seconds(10));
    EXPECT_EQ(taps(), 0U);
}

// Window servers that show a tap only what it expects, and what other programs leave

TEST_F(ShortcutTest, TheTapExpectsTheShortcutInForce) {
    desktop.eventTaps().showOnlyWhatIsExpected();
    launchWithWindow();
    EXPECT_TRUE(swallows(keyP, control | command));
    setShortcut(keyF5, shift);
    EXPECT_TRUE(swallows(keyF5, shift));
    setShortcut(0, 0);
    EXPECT_FALSE(swallows(keyF5, shift));
    setShortcut(keyP, command);
    EXPECT_TRUE(swallows(keyP, command));
}

TEST_F(ShortcutTest, AClearedShortcutExpectsNothing) {
    launch();
    desktop.journal().clear();
    setShortcut(0, 0);
    EXPECT_EQ(desktop.journal().take({"eventTap"}), Lines{"eventTap.expect none"});
}

TEST_F(ShortcutTest, EveryChangeOfTheReachIsLogged) {
    const KeyPress press{keyP, control | command};
    turnLoggingOn();
    desktop.eventTaps().setReach(press, KeyPressReach::heldByAnotherProgram);
    launch();
    EXPECT_EQ(takeTapLog(), (Lines{active, "hotkey: held by another program keyCode=35 modifiers=0x140000"}));
    desktop.eventTaps().setReach(press, KeyPressReach::missingOnKeyboard);
    EXPECT_EQ(takeTapLog(), Lines{"hotkey: missing on the keyboard keyCode=35 modifiers=0x140000"});
    desktop.eventTaps().setReach(press, KeyPressReach::reaches);
    EXPECT_EQ(takeTapLog(), Lines{"hotkey: reaches the tap keyCode=35 modifiers=0x140000"});
    EXPECT_TRUE(swallows(keyP, control | command));
}

TEST_F(ShortcutTest, ClearingAShortcutThatDidNotReachTheTapLogsNothing) {
    turnLoggingOn();
    desktop.eventTaps().setReach({keyP, control | command}, KeyPressReach::heldByAnotherProgram);
    launch();
    takeLog();
    setShortcut(0, 0);
    EXPECT_EQ(takeLog(), Lines{});
}

TEST_F(ShortcutTest, TheStateOfTheShortcut) {
    const KeyPress press{keyP, control | command};
    desktop.accessibility().setTrusted(false);
    launch();
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::waitingForPermission);
    setShortcut(0, 0);
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::notSet);
    setShortcut(keyP, control | command);
    desktop.accessibility().setTrusted(true);
    desktop.advance(Seconds(2));
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::active);
    desktop.eventTaps().setReach(press, KeyPressReach::heldByAnotherProgram);
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::heldByAnotherProgram);
    desktop.eventTaps().setReach(press, KeyPressReach::missingOnKeyboard);
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::missingOnKeyboard);
    setShortcut(0, 0);
    EXPECT_EQ(delegate->shortcutState(), ShortcutState::notSet);
}

// The text for the user

TEST_F(ShortcutTest, TheDisplayTextOfTheBuiltInShortcutAndOfNone) {
    EXPECT_EQ(delegate->shortcutDisplayString(), "⌃⌘P");
    EXPECT_EQ(display(0, 0), "Non impostata");
}

TEST_F(ShortcutTest, ModifiersAreShownInTheirOrder) {
    EXPECT_EQ(display(keyP, 0xFFFFFFFF), "⌃⌥⇧⌘P");
    EXPECT_EQ(display(keyP, modifierFlagShift | modifierFlagOption), "⌥⇧P");
    EXPECT_EQ(display(keyA, 0x10000), "A");
    EXPECT_EQ(display(keyF5, 0), "F5");
}

TEST_F(ShortcutTest, TheCharacterOfEveryKey) {
    // By their names in HIToolbox's Events.h, kVK_ANSI_A for instance.
    const std::map<int, std::string> characters{
        // Letters
        {0x00, "A"},
        {0x0B, "B"},
        {0x08, "C"},
        {0x02, "D"},
        {0x0E, "E"},
        {0x03, "F"},
        {0x05, "G"},
        {0x04, "H"},
        {0x22, "I"},
        {0x26, "J"},
        {0x28, "K"},
        {0x25, "L"},
        {0x2E, "M"},
        {0x2D, "N"},
        {0x1F, "O"},
        {0x23, "P"},
        {0x0C, "Q"},
        {0x0F, "R"},
        {0x01, "S"},
        {0x11, "T"},
        {0x20, "U"},
        {0x09, "V"},
        {0x0D, "W"},
        {0x07, "X"},
        {0x10, "Y"},
        {0x06, "Z"},
        // Digits
        {0x1D, "0"},
        {0x12, "1"},
        {0x13, "2"},
        {0x14, "3"},
        {0x15, "4"},
        {0x17, "5"},
        {0x16, "6"},
        {0x1A, "7"},
        {0x1C, "8"},
        {0x19, "9"},
        // Equal, Minus, RightBracket, LeftBracket, Quote, Semicolon, Backslash, Comma, Slash, Period, Grave
        {0x18, "="},
        {0x1B, "-"},
        {0x1E, "]"},
        {0x21, "["},
        {0x27, "'"},
        {0x29, ";"},
        {0x2A, "\\"},
        {0x2B, ","},
        {0x2C, "/"},
        {0x2F, "."},
        {0x32, "`"},
        // Return, Tab, Space, Delete, Escape
        {0x24, "\u21A9"},
        {0x30, "\u21E5"},
        {0x31, "Spazio"},
        {0x33, "\u232B"},
        {0x35, "\u238B"},
        // F1 to F20
        {0x7A, "F1"},
        {0x78, "F2"},
        {0x63, "F3"},
        {0x76, "F4"},
        {0x60, "F5"},
        {0x61, "F6"},
        {0x62, "F7"},
        {0x64, "F8"},
        {0x65, "F9"},
        {0x6D, "F10"},
        {0x67, "F11"},
        {0x6F, "F12"},
        {0x69, "F13"},
        {0x6B, "F14"},
        {0x71, "F15"},
        {0x6A, "F16"},
        {0x40, "F17"},
        {0x4F, "F18"},
        {0x50, "F19"},
        {0x5A, "F20"},
        // Left, right, down, up
        {0x7B, "\u2190"},
        {0x7C, "\u2192"},
        {0x7D, "\u2193"},
        {0x7E, "\u2191"},
    };
    ASSERT_EQ(characters.size(), 76U);
    for (int keyCode = 0; keyCode <= 65535; ++keyCode) {
        const auto known = characters.find(keyCode);
        const auto expected = known == characters.end() ? fmt::format("?{}", keyCode) : known->second;
        ASSERT_EQ(display(static_cast<std::uint16_t>(keyCode), modifierFlagCommand), fmt::format("⌘{}", expected));
    }
}

} // namespace
} // namespace quillon
