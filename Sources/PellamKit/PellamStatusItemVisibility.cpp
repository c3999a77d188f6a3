#include "PellamKit/PellamStatusItemVisibility.h"

#include "Defaults.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/ProcessInfo.h"
#include "Platform/UserDefaults.h"

namespace quillon::PellamStatusItemVisibility {

namespace {

/// Holds "hidden", not "visible", so that a fresh installation shows the item.
std::string hiddenKey() {
    return "PellamStatusItemVisibility.Hidden." + platform().processInfo().bundleIdentifier().value_or("unknown");
}

} // namespace

bool isVisible() {
    return !Defaults::boolForKey(hiddenKey());
}

void setVisible(bool visible) {
    if (isVisible() == visible) {
        return;
    }
    platform().userDefaults().set(hiddenKey(), !visible);
    platform().notificationCenter().post(didChangeNotification);
}

void handleReopen() {
    setVisible(true);
}

} // namespace quillon::PellamStatusItemVisibility
