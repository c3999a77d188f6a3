#pragma once

#include "Platform/Panel.h"
#include "Platform/Scheduler.h"
#include "Platform/ScreenCapture.h"
#include "Platform/Screens.h"
#include "Platform/Views.h"

#include <memory>

namespace quillon::x11 {

class Connection;

// The ports that show windows and capture them. They use the connection as long as they live.

[[nodiscard]] std::unique_ptr<Views> makeViews(Connection& connection);
/// `scheduler` runs the fade-in; `screens` tells the screen under a panel.
[[nodiscard]] std::unique_ptr<Panels> makePanels(Connection& connection, Scheduler& scheduler, Screens& screens);
/// `scheduler` paces the frames.
[[nodiscard]] std::unique_ptr<ScreenCapture> makeScreenCapture(Connection& connection, Scheduler& scheduler);

} // namespace quillon::x11
