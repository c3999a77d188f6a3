#pragma once

#include "Platform/Panel.h"
#include "Platform/Scheduler.h"
#include "Platform/ScreenCapture.h"
#include "Platform/Screens.h"
#include "Platform/Views.h"

#include <memory>

namespace quillon::x11 {

class ClientWindows;
class Connection;
class Keyboard;
class X11WindowServer;

// The ports that show windows and capture them. They use the connection as long as they live.

[[nodiscard]] std::unique_ptr<Views> makeViews(Connection& connection);
/// `scheduler` runs the fade-in; `screens` tells the screen under a panel, `keyboard` what modifiers mean.
[[nodiscard]] std::unique_ptr<Panels> makePanels(Connection& connection, Scheduler& scheduler, Screens& screens,
                                                 Keyboard& keyboard);
/// `scheduler` paces the frames; `windows` tells what lies over a window; `windowServer` lists the windows and is told
/// which of them are chosen.
[[nodiscard]] std::unique_ptr<ScreenCapture> makeScreenCapture(Connection& connection, Scheduler& scheduler,
                                                               const ClientWindows& windows,
                                                               X11WindowServer& windowServer);

} // namespace quillon::x11
