#include "QuillonSettingsContent.h"

#include "AppDelegate.h"
#include "Defaults.h"
#include "PinnedWindowTracker.h"
#include "Platform/Platform.h"
#include "Platform/ScreenCapture.h"
#include "Platform/UserDefaults.h"
#include "WindowOverlay.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <utility>

namespace quillon {

namespace {

struct CaptureRate {
    std::string_view label;
    /// Frames per second.
    double value;
};

constexpr std::array<CaptureRate, 8> captureRates{{
    {"0.5 fps", 0.5},
    {"1 fps", 1},
    {"2 fps", 2},
    {"5 fps", 5},
    {"10 fps", 10},
    {"15 fps", 15},
    {"30 fps", 30},
    {"60 fps", 60},
}};

Picker captureRatePicker() {
    Picker picker;
    for (const auto& rate : captureRates) {
        picker.options.emplace_back(rate.label);
    }
    const auto selected = std::ranges::find(captureRates, WindowOverlay::captureRate(), &CaptureRate::value);
    if (selected != captureRates.end()) {
        picker.selected = static_cast<std::size_t>(selected - captureRates.begin());
    }
    picker.select = [](std::size_t index) {
        platform().userDefaults().set(Defaults::captureRate, captureRates.at(index).value);
    };
    return picker;
}

Switch storedSwitch(std::string_view key, bool isOn) {
    return {isOn, [key](bool on) { platform().userDefaults().set(key, on); }};
}

FormSection floatingWindowsSection() {
    return {"Finestre flottanti",
            {
                {"Frequenza massima di aggiornamento",
                 "La finestra flottante si aggiorna quando cambia il contenuto; una frequenza alta non pesa se "
                 "l’immagine è ferma.",
                 captureRatePicker()},
                {"Interagisci con la finestra flottante",
                 "I clic e lo scorrimento vengono inviati alla finestra fissata. Fai clic tenendo premuto ⌘ per "
                 "passare alla finestra originale. Se disattivata, basta un clic per tornare alla finestra originale.",
                 // On where nothing is stored, unlike for an overlay.
                 storedSwitch(Defaults::forwardEvents, Defaults::storedBool(Defaults::forwardEvents).value_or(true))},
                {"Mostra su tutte le Scrivanie", "",
                 storedSwitch(Defaults::pinToAllSpaces, Defaults::boolForKey(Defaults::pinToAllSpaces))},
            }};
}

FormRow permissionRow(std::string title, std::string note, const PellamPermissionWatcher& watcher,
                      std::string grantedWord, std::function<void()> request) {
    RowItems items;
    if (watcher.isGranted()) {
        items.emplace_back(Badge{std::move(grantedWord), "checkmark.circle.fill"});
    } else {
        items.emplace_back(Button{.title = "Consenti accesso", .action = std::move(request)});
    }
    return {std::move(title), std::move(note), std::move(items)};
}

template <class T>
Binding<T> bindingTo(T& value) {
    return {[&value] { return value; }, [&value](T newValue) { value = newValue; }};
}

void requestScreenRecording() {
    if (!platform().screenCapture().requestAccess()) {
        PellamPermissionWatcher::openSettings(PellamPermissionWatcher::Pane::screenRecording);
    }
}

} // namespace

QuillonSettingsContent::QuillonSettingsContent(PinnedWindowTracker& tracker, std::shared_ptr<AppDelegate> delegate)
    : tracker(tracker), delegate(std::move(delegate)), accessibility(PellamPermissionWatcher::accessibility()),
      screenRecording(PellamPermissionWatcher::screenRecording()), postEvent(PellamPermissionWatcher::postEvent()),
      shortcutRecorder(recorderConfiguration()) {
    const auto changed = weakly([](QuillonSettingsContent& self) { self.stateWillChange(); });
    for (const auto* watcher : {&accessibility, &screenRecording, &postEvent}) {
        (*watcher)->willChange = changed;
    }
    shortcutRecorder.willChange = changed;
    pillSettings.willChange = changed;
    pillSettings.onChanged = weakly([](QuillonSettingsContent& self) { self.delegate->updateIcon(); });
    visibilitySettings.willChange = changed;

    observers.push_back(platform().userDefaults().observe(Defaults::forwardEvents, changed));
    observe(Defaults::captureRate, &WindowOverlay::applyCaptureRate);
    observe(Defaults::pinToAllSpaces, &WindowOverlay::applyCollectionBehavior);
}

QuillonSettingsContent::~QuillonSettingsContent() = default;

PellamShortcutRecorder::Configuration QuillonSettingsContent::recorderConfiguration() const {
    auto& owner = *delegate;
    return {
        .label = "Fissa o sblocca la finestra",
        .keyCode = bindingTo(owner.shortcutKeyCode),
        .modifiers = bindingTo(owner.shortcutModifiers),
        .displayString = [&owner] { return owner.shortcutDisplayString(); },
        .onChanged = [&owner] { owner.saveShortcut(); },
        .onClear =
            [&owner] {
                owner.shortcutKeyCode = 0;
                owner.shortcutModifiers = 0;
                owner.saveShortcut();
            },
        .eventTapToDisable = [&owner] { return owner.eventTap(); },
    };
}

/// Every change of the value acts on the open overlays at once.
void QuillonSettingsContent::observe(std::string_view key, void (WindowOverlay::*apply)()) {
    auto changed = weakly([apply](QuillonSettingsContent& self) {
        for (const auto& [windowID, overlay] : self.tracker.overlays()) {
            std::invoke(apply, *overlay);
        }
        self.stateWillChange();
    });
    observers.push_back(platform().userDefaults().observe(key, std::move(changed)));
}

void QuillonSettingsContent::stateWillChange() const {
    if (willChange) {
        willChange();
    }
}

std::vector<FormSection> QuillonSettingsContent::sections() {
    return {floatingWindowsSection(), shortcutSection(), permissionsSection(), pillSettings.section(),
            visibilitySettings.section()};
}

FormSection QuillonSettingsContent::shortcutSection() {
    return {"Scorciatoia da tastiera", {shortcutRecorder.row()}};
}

FormSection QuillonSettingsContent::permissionsSection() const {
    return {"Autorizzazioni",
            {
                permissionRow("Accessibilità",
                              "Necessaria per usare la scorciatoia da tastiera e portare in primo piano le finestre "
                              "fissate.",
                              *accessibility, "Autorizzata", PellamPermissionWatcher::promptForAccessibility),
                permissionRow("Invio di clic e scorrimento",
                              "Necessaria per usare clic e scorrimento sulla finestra flottante senza attivare la "
                              "finestra originale.",
                              *postEvent, "Autorizzato", PellamPermissionWatcher::promptForPostEvent),
                permissionRow("Registrazione schermo",
                              "Necessaria per acquisire il contenuto della finestra e mostrarlo in tempo reale.",
                              *screenRecording, "Autorizzata", requestScreenRecording),
            }};
}

void QuillonSettingsContent::windowWillClose() {
    shortcutRecorder.stopRecording();
}

} // namespace quillon
