#pragma once

#include "Platform/Bundle.h"
#include "Platform/EventTap.h"
#include "Platform/Images.h"
#include "Platform/KeyMonitor.h"
#include "Platform/Scheduler.h"
#include "Platform/StatusBar.h"

#include <memory>

namespace quillon::x11 {

class Connection;
class DesktopAppearance;
class Keyboard;

// The ports for the keyboard, the status item and what is installed with the program.

[[nodiscard]] std::unique_ptr<Bundle> makeBundle();
/// `scheduler` tries again what cannot be grabbed. All must outlive the port.
[[nodiscard]] std::unique_ptr<EventTaps> makeEventTaps(Connection& connection, Scheduler& scheduler,
                                                       Keyboard& keyboard);
[[nodiscard]] std::unique_ptr<Images> makeImages();
/// The keyboard must outlive the port.
[[nodiscard]] std::unique_ptr<KeyMonitors> makeKeyMonitors(Keyboard& keyboard);
/// Needs a QApplication. All must outlive the port.
[[nodiscard]] std::unique_ptr<StatusBar> makeStatusBar(Connection& connection, Scheduler& scheduler,
                                                       DesktopAppearance& appearance);

} // namespace quillon::x11
