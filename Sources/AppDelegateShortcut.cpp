// The global shortcut: its storage, its event tap and the text that shows it.

#include "AppDelegate.h"

#include "Defaults.h"
#include "DiagnosticLog.h"
#include "EventFlags.h"
#include "PellamKit/PellamHotkeyRegistry.h"
#include "Platform/Accessibility.h"
#include "Platform/EventTap.h"
#include "Platform/OneTimeValue.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"
#include "Platform/UserDefaults.h"
#include "ProgrammingError.h"
#include "Text.h"

#include <fmt/format.h>

#include <array>
#include <limits>
#include <string_view>
#include <utility>

namespace quillon {

namespace {

constexpr Seconds permissionRetryInterval{2};

/// What the tap's callback works with, which is given no reference to the delegate. Main thread.
struct TapState {
    /// Kept for the whole run once it is made.
    std::unique_ptr<EventTap> eventTap;
    std::function<void()> hotkeyAction;
    std::uint16_t shortcutKeyCode = 0;
    /// None but those that are compared.
    EventFlags shortcutCGModifiers = 0;

    /// The key press that the callback swallows; none while no shortcut is set.
    [[nodiscard]] std::optional<KeyPress> keyPress() const {
        if (shortcutKeyCode == 0 && shortcutCGModifiers == 0) {
            return std::nullopt;
        }
        return KeyPress{shortcutKeyCode, shortcutCGModifiers};
    }

    void enableEventTap(bool enabled) const {
        if (eventTap) {
            eventTap->setEnabled(enabled);
        }
    }

    void expectKeyPress() const {
        if (eventTap) {
            eventTap->expect(keyPress());
        }
    }
};

OneTimeValue<TapState> tapStateValue;

TapState& tapState() {
    return tapStateValue.get([] { return TapState(); });
}

void setMatchingKeyPress(std::uint16_t keyCode, ModifierFlags modifiers) {
    auto& state = tapState();
    state.shortcutKeyCode = keyCode;
    state.shortcutCGModifiers = eventFlags(modifiers);
    state.expectKeyPress();
}

bool isShortcut(const SystemEvent& event) {
    const auto press = tapState().keyPress();
    return press && event.integerValueField(SystemEventField::keyboardEventKeycode) == press->keyCode &&
           (event.flags() & eventFlagsOfModifiers) == press->modifiers;
}

TappedEvent hotkeyTapCallback(SystemEventType type, const SystemEvent& event) {
    if (type == SystemEventType::tapDisabledByTimeout || type == SystemEventType::tapDisabledByUserInput) {
        tapState().enableEventTap(true);
        return TappedEvent::passes;
    }
    if (type != SystemEventType::keyDown || !isShortcut(event)) {
        return TappedEvent::passes;
    }
    // Never inside the callback: finding the window and making its overlay would delay the tap.
    platform().scheduler().mainAsync([] {
        if (const auto& action = tapState().hotkeyAction) {
            action();
        }
    });
    return TappedEvent::swallowed;
}

std::string_view reachText(KeyPressReach reach) {
    switch (reach) {
    case KeyPressReach::reaches:
        return "reaches the tap";
    case KeyPressReach::heldByAnotherProgram:
        return "held by another program";
    case KeyPressReach::missingOnKeyboard:
        return "missing on the keyboard";
    }
    programmingError("an unknown reach of a key press");
}

void logReach() {
    const auto press = tapState().keyPress();
    if (!press) {
        return;
    }
    wplog([&] {
        return fmt::format("hotkey: {} keyCode={} modifiers={:#x}", reachText(tapState().eventTap->reach()),
                           press->keyCode, press->modifiers);
    });
}

/// What stands on a key of the US layout, wherever the user's own layout has it.
std::string keyCodeToCharacter(std::uint16_t keyCode) {
    static constexpr std::array<std::pair<std::uint16_t, std::string_view>, 76> characters{{
        {0, "A"},       {1, "S"},     {2, "D"},     {3, "F"},     {4, "H"},    {5, "G"},     {6, "Z"},     {7, "X"},
        {8, "C"},       {9, "V"},     {11, "B"},    {12, "Q"},    {13, "W"},   {14, "E"},    {15, "R"},    {16, "Y"},
        {17, "T"},      {18, "1"},    {19, "2"},    {20, "3"},    {21, "4"},   {22, "6"},    {23, "5"},    {24, "="},
        {25, "9"},      {26, "7"},    {27, "-"},    {28, "8"},    {29, "0"},   {30, "]"},    {31, "O"},    {32, "U"},
        {33, "["},      {34, "I"},    {35, "P"},    {36, "↩"},    {37, "L"},   {38, "J"},    {39, "'"},    {40, "K"},
        {41, ";"},      {42, "\\"},   {43, ","},    {44, "/"},    {45, "N"},   {46, "M"},    {47, "."},    {48, "⇥"},
        {49, "Spazio"}, {50, "`"},    {51, "⌫"},    {53, "⎋"},    {122, "F1"}, {120, "F2"},  {99, "F3"},   {118, "F4"},
        {96, "F5"},     {97, "F6"},   {98, "F7"},   {100, "F8"},  {101, "F9"}, {109, "F10"}, {103, "F11"}, {111, "F12"},
        {105, "F13"},   {107, "F14"}, {113, "F15"}, {106, "F16"}, {64, "F17"}, {79, "F18"},  {80, "F19"},  {90, "F20"},
        {123, "←"},     {124, "→"},   {125, "↓"},   {126, "↑"},
    }};
    for (const auto& [code, character] : characters) {
        if (code == keyCode) {
            return std::string(character);
        }
    }
    return fmt::format("?{}", keyCode);
}

} // namespace

/// A key code of 0 and empty modifiers count as absent, so a shortcut that was cleared comes back as the built-in
/// one at the next launch.
void AppDelegate::loadShortcut() {
    const auto keyCode = Defaults::integerForKey(Defaults::shortcutKeyCode);
    const auto modifiers = Defaults::integerForKey(Defaults::shortcutModifiers);
    if (keyCode == 0 || modifiers == 0) {
        return;
    }
    if (keyCode < 0 || keyCode > std::numeric_limits<std::uint16_t>::max()) {
        programmingError(fmt::format("{} is {}, outside 0…65535", Defaults::shortcutKeyCode, keyCode));
    }
    if (modifiers < 0) {
        programmingError(fmt::format("{} is {}, which is negative", Defaults::shortcutModifiers, modifiers));
    }
    shortcutKeyCode = static_cast<std::uint16_t>(keyCode);
    shortcutModifiers = static_cast<ModifierFlags>(modifiers);
}

void AppDelegate::saveShortcut() {
    auto& defaults = platform().userDefaults();
    defaults.set(Defaults::shortcutKeyCode, std::int64_t{shortcutKeyCode});
    defaults.set(Defaults::shortcutModifiers, static_cast<std::int64_t>(shortcutModifiers));
    setMatchingKeyPress(shortcutKeyCode, shortcutModifiers);
    republishHotkey();
}

bool AppDelegate::isShortcutSet() const {
    return shortcutKeyCode != 0 || shortcutModifiers != 0;
}

void AppDelegate::republishHotkey() {
    std::vector<PellamHotkey> hotkeys;
    if (isShortcutSet()) {
        hotkeys.push_back(
            {"Fissa o sblocca finestra", shortcutKeyCode, shortcutModifiers, PellamHotkey::ActiveContext::anywhere});
    }
    PellamHotkeyRegistry::publish(hotkeys);
}

void AppDelegate::registerHotkey() {
    tapState().hotkeyAction = weakly([](AppDelegate& self) { self.togglePinFrontmostWindow(); });
    setMatchingKeyPress(shortcutKeyCode, shortcutModifiers);
    if (tryCreateEventTap()) {
        return;
    }
    wplog([] { return std::string("registerHotkey: waiting for Accessibility permission…"); });
    permissionTimer = platform().scheduler().scheduleRepeatingTimer(
        permissionRetryInterval, weakly([](AppDelegate& self) { self.retryEventTap(); }));
}

void AppDelegate::retryEventTap() {
    if (!platform().accessibility().isProcessTrusted()) {
        return;
    }
    wplog([] { return std::string("registerHotkey: permission granted, retrying tap…"); });
    if (tryCreateEventTap()) {
        permissionTimer.reset();
    }
}

bool AppDelegate::tryCreateEventTap() {
    auto& tap = tapState().eventTap;
    if (tap) {
        return true;
    }
    tap = platform().eventTaps().create(EventTapLocation::annotatedSession, EventTapPlacement::tailAppend,
                                        EventTapOptions::defaultTap, eventMaskBit(SystemEventType::keyDown),
                                        hotkeyTapCallback);
    if (!tap) {
        wplog([] {
            return fmt::format("tryCreateEventTap: CGEvent.tapCreate failed (trusted={})",
                               describe(platform().accessibility().isProcessTrusted()));
        });
        return false;
    }
    tap->setOnReachChange(logReach);
    tapState().expectKeyPress();
    tap->addToMainRunLoop();
    tap->setEnabled(true);
    wplog([&] { return fmt::format("tryCreateEventTap: SUCCESS — hotkey active for keyCode={}", shortcutKeyCode); });
    return true;
}

void AppDelegate::disableEventTap() {
    tapState().enableEventTap(false);
}

ShortcutState AppDelegate::shortcutState() const {
    if (!tapState().keyPress()) {
        return ShortcutState::notSet;
    }
    const auto& tap = tapState().eventTap;
    if (!tap) {
        return ShortcutState::waitingForPermission;
    }
    switch (tap->reach()) {
    case KeyPressReach::reaches:
        return ShortcutState::active;
    case KeyPressReach::heldByAnotherProgram:
        return ShortcutState::heldByAnotherProgram;
    case KeyPressReach::missingOnKeyboard:
        return ShortcutState::missingOnKeyboard;
    }
    programmingError("an unknown reach of a key press");
}

EventTap* AppDelegate::eventTap() const {
    return tapState().eventTap.get();
}

std::string AppDelegate::shortcutDisplayString() const {
    if (!isShortcutSet()) {
        return "Non impostata";
    }
    constexpr std::array<std::pair<ModifierFlags, std::string_view>, 4> symbols{{
        {modifierFlagControl, "⌃"},
        {modifierFlagOption, "⌥"},
        {modifierFlagShift, "⇧"},
        {modifierFlagCommand, "⌘"},
    }};
    std::string text;
    for (const auto& [modifier, symbol] : symbols) {
        text += (shortcutModifiers & modifier) != 0 ? symbol : "";
    }
    return text + keyCodeToCharacter(shortcutKeyCode);
}

} // namespace quillon
