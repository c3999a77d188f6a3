#pragma once

#include "Platform/Bundle.h"
#include "Platform/EventTap.h"
#include "Platform/Images.h"
#include "Platform/Scheduler.h"
#include "Platform/StatusBar.h"

#include <memory>

namespace quillon::x11 {

class Connection;
class Keyboard;

// The ports for the shortcut, the status item and what is installed with the program.

[[nodiscard]] std::unique_ptr<Bundle> makeBundle();
/// `scheduler` tries again what cannot be grabbed. All must outlive the port.
[[nodiscard]] std::unique_ptr<EventTaps> makeEventTaps(Connection& connection, Scheduler& scheduler,
                                                       Keyboard& keyboard);
[[nodiscard]] std::unique_ptr<Images> makeImages();
/// Needs a QApplication. Both must outlive the port.
[[nodiscard]] std::unique_ptr<StatusBar> makeStatusBar(Connection& connection, Scheduler& scheduler);

} // namespace quillon::x11
