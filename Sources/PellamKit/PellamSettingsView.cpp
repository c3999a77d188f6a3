#include "PellamKit/PellamSettingsView.h"

namespace quillon::PellamSettingsView {

void showWindow(std::string_view /*appName*/, bool /*showsLaunchAtLogin*/) {
    // The program has no settings window yet.
}

} // namespace quillon::PellamSettingsView
