#include "PellamKit/MenuBarPillSettings.h"

#include "Defaults.h"
#include "Platform/Platform.h"
#include "Platform/UserDefaults.h"

namespace quillon {

FormSection MenuBarPillSettings::section() {
    if (!enabled) {
        enabled = Defaults::boolForKey(Defaults::menuBarPillEnabled);
    }
    return {"Icona della barra dei menu",
            {{.title = "Mostra lo sfondo dell’icona",
              .note = {},
              .control = Switch{*enabled, weakly([](MenuBarPillSettings& self, bool on) { self.setEnabled(on); })}}}};
}

void MenuBarPillSettings::setEnabled(bool newEnabled) {
    if (willChange) {
        willChange();
    }
    enabled = newEnabled;
    platform().userDefaults().set(Defaults::menuBarPillEnabled, newEnabled);
    if (onChanged) {
        onChanged();
    }
}

} // namespace quillon
