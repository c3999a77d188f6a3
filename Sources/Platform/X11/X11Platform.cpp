#include "Platform/X11/X11Platform.h"

#include "Platform/X11/PicturePorts.h"
#include "Platform/X11/TitledWindows.h"

namespace quillon::x11 {

X11Platform::X11Platform(std::unique_ptr<Connection> openConnection, RemoteControl* remoteControl,
                         InputRouting inputRouting)
    : connection(std::move(openConnection)), distributedNotificationCenterPort(accessibilityStatus),
      processInfoPort(inputRouting), eventLoop(*connection, schedulerPort), eventAccessPort(*connection),
      keyboard(*connection, schedulerPort), clientWindows(*connection), windowAccess(*connection, clientWindows),
      focusKeeper(*connection, schedulerPort, clientWindows), accessibilityPort(windowAccess, accessibilityStatus),
      screensPort(*connection, schedulerPort, notificationCenterPort, clientWindows), windowServerPort(windowAccess),
      workspacePort(*connection, schedulerPort, clientWindows, windowAccess, focusKeeper),
      desktopAppearance(*connection), applicationPort(remoteControl, notificationCenterPort),
      titledWindowsPort(std::make_unique<X11TitledWindows>(*connection, screensPort, clientWindows, desktopAppearance,
                                                           applicationPort)),
      viewsPort(makeViews(*connection)), panelsPort(makePanels(*connection, schedulerPort, screensPort, keyboard)),
      screenCapturePort(makeScreenCapture(*connection, schedulerPort, clientWindows, windowServerPort)),
      eventTapsPort(makeEventTaps(*connection, schedulerPort, keyboard)), keyMonitorsPort(makeKeyMonitors(keyboard)),
      statusBarPort(makeStatusBar(*connection, schedulerPort, desktopAppearance)),
      syntheticEventsPort(*connection, schedulerPort, keyboard, focusKeeper) {
    userDefaultsPort.watchFile();
}

X11Platform::~X11Platform() {
    // Tasks may hold what was made by ports, such as the delegate with its status item, and must not outlive them.
    schedulerPort.dropTasks();
}

} // namespace quillon::x11
