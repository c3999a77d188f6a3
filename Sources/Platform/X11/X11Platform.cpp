#include "Platform/X11/X11Platform.h"

#include "Platform/X11/PicturePorts.h"

namespace quillon::x11 {

X11Platform::X11Platform(std::unique_ptr<Connection> openConnection, RemoteControl* remoteControl)
    : connection(std::move(openConnection)), eventLoop(*connection, schedulerPort), eventAccessPort(*connection),
      clientWindows(*connection), accessibilityPort(*connection, clientWindows),
      screensPort(*connection, schedulerPort, notificationCenterPort, clientWindows),
      windowServerPort(*connection, clientWindows), workspacePort(*connection, schedulerPort, clientWindows),
      applicationPort(remoteControl), viewsPort(makeViews(*connection)),
      panelsPort(makePanels(*connection, schedulerPort, screensPort)),
      screenCapturePort(makeScreenCapture(*connection, schedulerPort)) {
    userDefaultsPort.watchFile();
}

X11Platform::~X11Platform() = default;

} // namespace quillon::x11
