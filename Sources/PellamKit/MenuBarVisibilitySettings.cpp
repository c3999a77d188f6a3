#include "PellamKit/MenuBarVisibilitySettings.h"

#include "PellamKit/PellamStatusItemVisibility.h"
#include "Platform/Bundle.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"

#include <string>

namespace quillon {

namespace {

std::string wayBack() {
    const auto name = platform().bundle().textForInfoDictionaryKey("CFBundleName").value_or("l’app");
    return "Per ripristinare l’icona, riapri " + name + " dalla cartella Applicazioni.";
}

} // namespace

FormSection MenuBarVisibilitySettings::section() {
    if (!showIcon) {
        showIcon = PellamStatusItemVisibility::isVisible();
        // Reopening the program shows a hidden icon while this section may be open.
        changes =
            platform().notificationCenter().addObserver(PellamStatusItemVisibility::didChangeNotification,
                                                        weakly([](MenuBarVisibilitySettings& self) { self.reread(); }));
    }
    return {"Barra dei menu",
            {{.title = "Mostra l’icona nella barra dei menu",
              .note = *showIcon ? "" : wayBack(),
              .control =
                  Switch{*showIcon, weakly([](MenuBarVisibilitySettings& self, bool on) { self.setShowIcon(on); })}}}};
}

void MenuBarVisibilitySettings::setShowIcon(bool newShowIcon) {
    if (newShowIcon == showIcon) {
        return;
    }
    if (willChange) {
        willChange();
    }
    showIcon = newShowIcon;
    PellamStatusItemVisibility::setVisible(newShowIcon);
}

void MenuBarVisibilitySettings::reread() {
    setShowIcon(PellamStatusItemVisibility::isVisible());
}

} // namespace quillon
