#include "WindowLevelManager.h"

namespace quillon::WindowLevelManager {

void raiseWindow(ProcessID /*pid*/, WindowID /*windowID*/, bool /*activate*/) {
    // Real windows are not raised yet: the user switches to them by the desktop's own means.
}

} // namespace quillon::WindowLevelManager
