#include "PellamKit/PellamShortcutRecorder.h"

#include "PellamKit/PellamLocalization.h"
#include "PellamKit/PellamShortcutPanel.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <utility>

namespace quillon {

namespace {

constexpr std::uint16_t escapeKey = 53; // kVK_Escape

/// Shift alone makes no shortcut: it would take a letter away from every text.
constexpr ModifierFlags sufficientModifiers = modifierFlagControl | modifierFlagOption | modifierFlagCommand;
constexpr ModifierFlags storedModifiers = sufficientModifiers | modifierFlagShift;

bool isFunctionKey(std::uint16_t keyCode) {
    return std::ranges::find(PellamShortcutPanel::functionKeyCodes, keyCode) !=
           PellamShortcutPanel::functionKeyCodes.end();
}

bool makesShortcut(const KeyEvent& event) {
    return isFunctionKey(event.keyCode) || (event.modifierFlags & sufficientModifiers) != 0;
}

} // namespace

PellamShortcutRecorder::PellamShortcutRecorder(Configuration configuration) : configuration(std::move(configuration)) {}

PellamShortcutRecorder::~PellamShortcutRecorder() {
    enableEventTapAgain();
}

FormRow PellamShortcutRecorder::row() {
    return {.title = configuration.label, .note = {}, .control = state.isRecording ? recordingItems() : idleItems()};
}

RowItems PellamShortcutRecorder::idleItems() {
    RowItems items{Label{configuration.displayString(), TextStyle::caption}};
    if (isSet()) {
        items.emplace_back(Button{.title = L10n::string("shortcut.clear", "Rimuovi"),
                                  .action = weakly([](PellamShortcutRecorder& self) { self.clear(); })});
    }
    items.emplace_back(Button{.title = L10n::string("shortcut.change", "Modifica…"),
                              .action = weakly([](PellamShortcutRecorder& self) { self.startRecording(); })});
    return items;
}

RowItems PellamShortcutRecorder::recordingItems() {
    const auto prompt = state.needsModifier
                            ? L10n::string("shortcut.needs_modifier", "Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F")
                            : L10n::string("shortcut.press", "Premi la scorciatoia…");
    return {Label{prompt, TextStyle::captionWarning},
            Button{.title = L10n::string("shortcut.cancel", "Annulla"),
                   .action = weakly([](PellamShortcutRecorder& self) { self.stopRecording(); })}};
}

bool PellamShortcutRecorder::isSet() const {
    return configuration.keyCode.get() != 0 || configuration.modifiers.get() != 0;
}

void PellamShortcutRecorder::clear() {
    notifyWillChange();
    configuration.onClear();
}

void PellamShortcutRecorder::startRecording() {
    disabledTap = configuration.eventTapToDisable();
    if (disabledTap != nullptr) {
        disabledTap->setEnabled(false);
    }
    setState({.isRecording = true, .needsModifier = false});
    if (configuration.onRecordingChanged) {
        configuration.onRecordingChanged(true);
    }
    localMonitor = platform().keyMonitors().addLocalMonitor(
        [handle = weakly([](PellamShortcutRecorder& self, const KeyEvent& event) { self.keyDown(event); })](
            const KeyEvent& event) {
            handle(event);
            return TappedEvent::swallowed;
        });
}

void PellamShortcutRecorder::keyDown(const KeyEvent& event) {
    if (event.keyCode == escapeKey) {
        stopRecording();
        return;
    }
    if (!makesShortcut(event)) {
        setState({.isRecording = true, .needsModifier = true});
        return;
    }
    configuration.keyCode.set(event.keyCode);
    configuration.modifiers.set(event.modifierFlags & storedModifiers);
    if (configuration.onChanged) {
        configuration.onChanged();
    }
    stopRecording();
}

void PellamShortcutRecorder::stopRecording() {
    if (!state.isRecording) {
        return;
    }
    localMonitor.reset();
    setState({});
    enableEventTapAgain();
    if (configuration.onRecordingChanged) {
        configuration.onRecordingChanged(false);
    }
}

void PellamShortcutRecorder::setState(const State& newState) {
    if (newState != state) {
        notifyWillChange();
        state = newState;
    }
}

void PellamShortcutRecorder::notifyWillChange() const {
    if (willChange) {
        willChange();
    }
}

/// A tap that is gone by now is left alone.
void PellamShortcutRecorder::enableEventTapAgain() {
    auto* tap = std::exchange(disabledTap, nullptr);
    if (tap != nullptr && tap == configuration.eventTapToDisable()) {
        tap->setEnabled(true);
    }
}

} // namespace quillon
