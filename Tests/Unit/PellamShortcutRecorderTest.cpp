#include "PellamKit/PellamShortcutRecorder.h"

#include "PellamKit/PellamShortcutPanel.h"
#include "UnitTest.h"

#include <algorithm>
#include <set>

namespace quillon {
namespace {

constexpr std::uint16_t keyA = 0;
constexpr std::uint16_t keyP = 35;
constexpr std::uint16_t escape = 53;
constexpr std::uint16_t keyF5 = 96;
constexpr ModifierFlags capsLock = 0x10000;
constexpr ModifierFlags shift = 0x20000;
constexpr ModifierFlags control = 0x40000;
constexpr ModifierFlags option = 0x80000;
constexpr ModifierFlags command = 0x100000;

const std::string row = "Fissa o sblocca la finestra";
const std::string pressPrompt = row + ": !Premi la scorciatoia…! [Annulla]";
const std::string modifierPrompt = row + ": !Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F! [Annulla]";

/// A recorder in a window of its own, beside the tap of the shortcut that it records.
class PellamShortcutRecorderTest : public UnitTest {
protected:
    void SetUp() override {
        makeTap();
        makeRecorder(configuration());
        desktop.sharedApplication()->activateIgnoringOtherApps();
        desktop.runUntilIdle();
        desktop.journal().clear();
    }
    PellamShortcutRecorder::Configuration configuration() {
        return {
            .label = row,
            .keyCode = {[this] { return keyCode; },
                        [this](std::uint16_t newKeyCode) {
                            desktop.journal().record("keyCode {}", newKeyCode);
                            keyCode = newKeyCode;
                        }},
            .modifiers = {[this] { return modifiers; },
                          [this](ModifierFlags newModifiers) {
                              desktop.journal().record("modifiers {:#x}", newModifiers);
                              modifiers = newModifiers;
                          }},
            .displayString = [this] { return fmt::format("{} {:#x}", keyCode, modifiers); },
            .onChanged = [this] { desktop.journal().record("onChanged"); },
            .onClear =
                [this] {
                    keyCode = 0;
                    modifiers = 0;
                },
            .eventTapToDisable = [this] { return tap.get(); },
            .onRecordingChanged =
                [this](bool isRecording) { desktop.journal().record("onRecordingChanged {}", isRecording); },
        };
    }
    /// One that swallows the shortcut, as long as there is one.
    void makeTap() {
        tap = desktop.eventTaps().create(
            EventTapLocation::session, EventTapPlacement::tailAppend, EventTapOptions::defaultTap,
            eventMaskBit(SystemEventType::keyDown), [this](SystemEventType, const SystemEvent& event) {
                const bool isShortcut = event.integerValueField(SystemEventField::keyboardEventKeycode) == keyCode &&
                                        event.flags() == modifiers;
                toggles += isShortcut ? 1 : 0;
                return isShortcut ? TappedEvent::swallowed : TappedEvent::passes;
            });
        tap->addToMainRunLoop();
        tap->setEnabled(true);
    }
    void makeRecorder(PellamShortcutRecorder::Configuration newConfiguration) {
        recorder = std::make_unique<PellamShortcutRecorder>(std::move(newConfiguration));
        recorder->willChange = [this] {
            ++changes;
            desktop.scheduler().mainAsync([this] { window->setContent(content()); });
        };
        window = desktop.titledWindows().makeWindow("Impostazioni", content());
        window->makeKeyAndOrderFront();
    }
    WindowContent content() {
        return Form{.sections = {{"Scorciatoia da tastiera", {recorder->row()}}},
                    .closing = {.title = "Fine", .action = [this] { ++cancellations; }, .isCancel = true},
                    .minimumSize = {}};
    }
    void pressButton(std::string_view title) {
        shown().press(title);
        desktop.runUntilIdle();
    }
    void startRecording() { pressButton("Modifica…"); }
    void pressKey(std::uint16_t key, ModifierFlags flags) {
        desktop.pressKey(key, flags);
        desktop.runUntilIdle();
    }
    std::string line() { return shown().lines().at(1); }
    simulated::SimulatedTitledWindow& shown() { return desktop.titledWindows().window("Impostazioni"); }
    bool isTapEnabled() { return desktop.eventTaps().all().at(0)->isEnabled(); }
    std::size_t monitors() { return desktop.keyMonitors().count(); }
    /// What the recorder did since the last call.
    Lines takeSteps() { return desktop.journal().take({"eventTap.", "keyMonitors.", "on", "keyCode", "modifiers"}); }

    std::uint16_t keyCode = keyP;
    ModifierFlags modifiers = control | command;
    int toggles = 0;
    int changes = 0;
    int cancellations = 0;
    std::unique_ptr<EventTap> tap;
    std::unique_ptr<PellamShortcutRecorder> recorder;
    std::unique_ptr<TitledWindow> window;
};

using PellamShortcutRecorderEdgeCases = PellamShortcutRecorderTest;

TEST_F(PellamShortcutRecorderEdgeCases, F5AloneIsAcceptedWithoutModifiers) {
    startRecording();
    pressKey(keyF5, 0);
    EXPECT_EQ(keyCode, keyF5);
    EXPECT_EQ(modifiers, 0U);
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(line(), row + ": (96 0x0) [Rimuovi] [Modifica…]");
}

TEST_F(PellamShortcutRecorderEdgeCases, ShiftAIsRefusedAndShiftCommandAIsStoredWithBothModifiers) {
    startRecording();
    pressKey(keyA, shift);
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_EQ(keyCode, keyP);
    EXPECT_EQ(line(), modifierPrompt);
    pressKey(keyA, shift | command);
    EXPECT_EQ(keyCode, keyA);
    EXPECT_EQ(modifiers, shift | command);
    EXPECT_FALSE(recorder->isRecording());
}

TEST_F(PellamShortcutRecorderEdgeCases, WithCapsLockOnCommandPIsStoredWithCommandOnly) {
    startRecording();
    pressKey(keyP, capsLock | command);
    EXPECT_EQ(keyCode, keyP);
    EXPECT_EQ(modifiers, command);
}

TEST_F(PellamShortcutRecorderEdgeCases, EscapeLeavesTheShortcutAndEnablesTheTapAgain) {
    startRecording();
    EXPECT_FALSE(isTapEnabled());
    takeSteps();
    pressKey(escape, 0);
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_TRUE(isTapEnabled());
    EXPECT_EQ(takeSteps(),
              (Lines{"keyMonitors.removeMonitor", "eventTap.setEnabled true", "onRecordingChanged false"}));
    EXPECT_EQ(line(), row + ": (35 0x140000) [Rimuovi] [Modifica…]");
}

TEST_F(PellamShortcutRecorderEdgeCases, WhileRecordingTheCurrentShortcutIsRecordedInsteadOfTriggered) {
    startRecording();
    takeSteps();
    pressKey(keyP, control | command);
    EXPECT_EQ(toggles, 0);
    EXPECT_EQ(takeSteps(), (Lines{"keyCode 35", "modifiers 0x140000", "onChanged", "keyMonitors.removeMonitor",
                                  "eventTap.setEnabled true", "onRecordingChanged false"}));
    pressKey(keyP, control | command);
    EXPECT_EQ(toggles, 1);
}

TEST_F(PellamShortcutRecorderEdgeCases, TheClearButtonIsHiddenWhileKeyCodeAndModifiersAreBothZero) {
    pressButton("Rimuovi");
    EXPECT_EQ(line(), row + ": (0 0x0) [Modifica…]");
    startRecording();
    pressKey(keyA, command);
    EXPECT_EQ(line(), row + ": (0 0x100000) [Rimuovi] [Modifica…]");
}

TEST_F(PellamShortcutRecorderTest, ClearingAsksTheOwnerAndTellsOfNoNewShortcut) {
    pressButton("Rimuovi");
    EXPECT_EQ(takeSteps(), Lines{});
    EXPECT_EQ(changes, 1);
}

TEST_F(PellamShortcutRecorderTest, RecordingStartsInItsOrder) {
    startRecording();
    EXPECT_TRUE(recorder->isRecording());
    EXPECT_EQ(line(), pressPrompt);
    EXPECT_EQ(takeSteps(),
              (Lines{"eventTap.setEnabled false", "onRecordingChanged true", "keyMonitors.addLocalMonitor"}));
}

TEST_F(PellamShortcutRecorderTest, CancellingLeavesTheShortcut) {
    startRecording();
    takeSteps();
    pressButton("Annulla");
    EXPECT_EQ(takeSteps(),
              (Lines{"keyMonitors.removeMonitor", "eventTap.setEnabled true", "onRecordingChanged false"}));
    EXPECT_EQ(line(), row + ": (35 0x140000) [Rimuovi] [Modifica…]");
}

TEST_F(PellamShortcutRecorderTest, ThePromptForAModifierGoesWithTheRecording) {
    startRecording();
    pressKey(keyA, 0);
    EXPECT_EQ(line(), modifierPrompt);
    pressKey(escape, 0);
    startRecording();
    EXPECT_EQ(line(), pressPrompt);
}

TEST_F(PellamShortcutRecorderTest, AHeldKeyIsRefusedAgainAndAgainButChangesThePromptOnce) {
    startRecording();
    changes = 0;
    for (int repetition = 0; repetition < 5; ++repetition) {
        pressKey(keyA, capsLock);
    }
    EXPECT_EQ(changes, 1);
}

TEST_F(PellamShortcutRecorderTest, WhileRecordingNoKeyReachesTheWindow) {
    startRecording();
    pressKey(keyA, 0);
    pressKey(escape, 0);
    EXPECT_EQ(cancellations, 0);
    pressKey(escape, 0);
    EXPECT_EQ(cancellations, 1);
}

TEST_F(PellamShortcutRecorderTest, EscapeEndsTheRecordingWhateverIsHeldWithIt) {
    startRecording();
    pressKey(escape, control | option | command);
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_EQ(keyCode, keyP);
}

TEST_F(PellamShortcutRecorderTest, OneOfControlOptionAndCommandIsEnough) {
    for (const auto modifier : {control, option, command}) {
        startRecording();
        pressKey(keyA, modifier);
        EXPECT_EQ(modifiers, modifier);
        EXPECT_FALSE(recorder->isRecording());
    }
}

TEST_F(PellamShortcutRecorderTest, OnlyTheFourModifiersAreStored) {
    startRecording();
    pressKey(keyA, 0xFFFFFFFF);
    EXPECT_EQ(modifiers, shift | control | option | command);
}

TEST_F(PellamShortcutRecorderTest, TheFunctionKeysAndNoOtherKeyMakeAShortcutAlone) {
    const std::set<std::uint16_t> functionKeys{122, 120, 99,  118, 96,  97,  98, 100, 101, 109,
                                               103, 111, 105, 107, 113, 106, 64, 79,  80,  90};
    EXPECT_TRUE(std::ranges::is_permutation(PellamShortcutPanel::functionKeyCodes, functionKeys));
    for (std::uint16_t key = 0; key < 128; ++key) {
        if (key == escape) {
            continue;
        }
        startRecording();
        pressKey(key, shift);
        EXPECT_EQ(recorder->isRecording(), !functionKeys.contains(key)) << key;
        recorder->stopRecording();
        desktop.runUntilIdle();
    }
}

TEST_F(PellamShortcutRecorderTest, AShortcutOfWhichOneHalfIsZeroIsSet) {
    keyCode = 0;
    EXPECT_EQ(std::get<RowItems>(recorder->row().control).size(), 3U);
    keyCode = keyF5;
    modifiers = 0;
    EXPECT_EQ(std::get<RowItems>(recorder->row().control).size(), 3U);
    keyCode = 0;
    EXPECT_EQ(std::get<RowItems>(recorder->row().control).size(), 2U);
}

TEST_F(PellamShortcutRecorderTest, StoppingWhileNothingIsRecordedDoesNothing) {
    recorder->stopRecording();
    EXPECT_EQ(takeSteps(), Lines{});
    EXPECT_EQ(changes, 0);
}

TEST_F(PellamShortcutRecorderTest, ItRecordsWithoutATapToo) {
    tap.reset();
    takeSteps();
    startRecording();
    EXPECT_EQ(takeSteps(), (Lines{"onRecordingChanged true", "keyMonitors.addLocalMonitor"}));
    makeTap();
    takeSteps();
    pressKey(keyF5, 0);
    EXPECT_EQ(keyCode, keyF5);
    EXPECT_EQ(takeSteps(), (Lines{"keyCode 96", "modifiers 0x0", "onChanged", "keyMonitors.removeMonitor",
                                  "onRecordingChanged false"}))
        << "the new tap was never disabled";
}

TEST_F(PellamShortcutRecorderTest, ATapThatIsGoneByTheEndIsLeftAlone) {
    startRecording();
    tap.reset();
    takeSteps();
    pressKey(escape, 0);
    EXPECT_EQ(takeSteps(), (Lines{"keyMonitors.removeMonitor", "onRecordingChanged false"}));
}

TEST_F(PellamShortcutRecorderTest, WithoutAMonitorItStillShowsThatItRecordsAndCanBeCancelled) {
    desktop.keyMonitors().refuse(true);
    startRecording();
    EXPECT_EQ(line(), pressPrompt);
    EXPECT_EQ(monitors(), 0U);
    pressButton("Annulla");
    EXPECT_FALSE(recorder->isRecording());
    EXPECT_TRUE(isTapEnabled());
}

TEST_F(PellamShortcutRecorderTest, NobodyNeedsToBeTold) {
    auto silent = configuration();
    silent.onChanged = nullptr;
    silent.onRecordingChanged = nullptr;
    window.reset();
    makeRecorder(std::move(silent));
    recorder->willChange = nullptr;
    const auto press = [&](std::size_t item) {
        std::get<Button>(std::get<RowItems>(recorder->row().control).at(item)).action();
    };
    press(2);
    pressKey(keyA, command);
    EXPECT_EQ(keyCode, keyA);
    press(1);
    EXPECT_EQ(modifiers, 0U);
}

TEST_F(PellamShortcutRecorderTest, DestroyedWhileRecordingItRemovesTheMonitorAndEnablesTheTap) {
    startRecording();
    window.reset();
    takeSteps();
    recorder.reset();
    EXPECT_EQ(monitors(), 0U);
    EXPECT_TRUE(isTapEnabled());
    EXPECT_EQ(takeSteps(), (Lines{"eventTap.setEnabled true", "keyMonitors.removeMonitor"}))
        << "it tells an owner that is going away nothing";
}

TEST_F(PellamShortcutRecorderTest, TheButtonsOfARowThatOutlivesItsRecorderDoNothing) {
    const auto idle = std::get<RowItems>(recorder->row().control);
    startRecording();
    const auto recording = std::get<RowItems>(recorder->row().control);
    recorder.reset();
    desktop.journal().clear();
    for (const auto& item : {idle.at(1), idle.at(2), recording.at(1)}) {
        std::get<Button>(item).action();
    }
    EXPECT_EQ(takeSteps(), Lines{});
    EXPECT_EQ(keyCode, keyP);
}

TEST_F(PellamShortcutRecorderTest, ItsTextsComeFromTheTable) {
    for (const auto& [key, text] : {std::pair{"shortcut.clear", "Remove"},
                                    {"shortcut.change", "Change…"},
                                    {"shortcut.press", "Press the shortcut…"},
                                    {"shortcut.needs_modifier", "Hold ⌘, ⌃ or ⌥"},
                                    {"shortcut.cancel", "Cancel"}}) {
        desktop.bundle().setLocalizedString("Localizable", key, text);
    }
    window->setContent(content());
    EXPECT_EQ(line(), row + ": (35 0x140000) [Remove] [Change…]");
    pressButton("Change…");
    EXPECT_EQ(line(), row + ": !Press the shortcut…! [Cancel]");
    pressKey(keyA, 0);
    EXPECT_EQ(line(), row + ": !Hold ⌘, ⌃ or ⌥! [Cancel]");
}

} // namespace
} // namespace quillon
