#pragma once

#include "Platform/InProcessNotificationCenter.h"
#include "Platform/Platform.h"
#include "Platform/TitledWindow.h"
#include "Platform/X11/Accessibility.h"
#include "Platform/X11/AccessibilityStatus.h"
#include "Platform/X11/Application.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/Clock.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/DesktopAppearance.h"
#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/DistributedNotificationCenter.h"
#include "Platform/X11/EventAccess.h"
#include "Platform/X11/EventLoop.h"
#include "Platform/X11/FileSystem.h"
#include "Platform/X11/FocusKeeper.h"
#include "Platform/X11/Keyboard.h"
#include "Platform/X11/LoginItem.h"
#include "Platform/X11/ProcessInfo.h"
#include "Platform/X11/Scheduler.h"
#include "Platform/X11/Screens.h"
#include "Platform/X11/SyntheticEvents.h"
#include "Platform/X11/UserDefaults.h"
#include "Platform/X11/WindowAccess.h"
#include "Platform/X11/WindowServer.h"
#include "Platform/X11/Workspace.h"

namespace quillon::x11 {

class RemoteControl;

/// The X11 platform: all ports on one connection. Needs a QCoreApplication, whose event loop serves it. Main thread.
class X11Platform final : public Platform {
public:
    /// `remoteControl` carries the commands of scripts and must outlive the platform; null when there is none.
    explicit X11Platform(std::unique_ptr<Connection> connection, RemoteControl* remoteControl = nullptr,
                         InputRouting inputRouting = InputRouting::forward);
    ~X11Platform() override;

    X11Application* sharedApplication() override { return &applicationPort; }

    Accessibility& accessibility() override { return accessibilityPort; }
    Bundle& bundle() override { return *bundlePort; }
    Clock& clock() override { return clockPort; }
    DistributedNotificationCenter& distributedNotificationCenter() override {
        return distributedNotificationCenterPort;
    }
    EventAccess& eventAccess() override { return eventAccessPort; }
    EventTaps& eventTaps() override { return *eventTapsPort; }
    FileSystem& fileSystem() override { return fileSystemPort; }
    Images& images() override { return *imagesPort; }
    KeyMonitors& keyMonitors() override { return *keyMonitorsPort; }
    LoginItem& loginItem() override { return loginItemPort; }
    NotificationCenter& notificationCenter() override { return notificationCenterPort; }
    Panels& panels() override { return *panelsPort; }
    ProcessInfo& processInfo() override { return processInfoPort; }
    Scheduler& scheduler() override { return schedulerPort; }
    ScreenCapture& screenCapture() override { return *screenCapturePort; }
    Screens& screens() override { return screensPort; }
    StatusBar& statusBar() override { return *statusBarPort; }
    SyntheticEvents& syntheticEvents() override { return syntheticEventsPort; }
    TitledWindows& titledWindows() override { return *titledWindowsPort; }
    UserDefaults& userDefaults() override { return userDefaultsPort; }
    Views& views() override { return *viewsPort; }
    WindowServer& windowServer() override { return windowServerPort; }
    Workspace& workspace() override { return workspacePort; }

    [[nodiscard]] Connection& xConnection() { return *connection; }

private:
    // In the order of their needs: each uses those above it only.
    std::unique_ptr<Connection> connection;
    X11Clock clockPort;
    X11FileSystem fileSystemPort;
    X11LoginItem loginItemPort;
    AccessibilityStatus accessibilityStatus;
    X11DistributedNotificationCenter distributedNotificationCenterPort;
    InProcessNotificationCenter notificationCenterPort;
    X11ProcessInfo processInfoPort;
    X11UserDefaults userDefaultsPort;
    X11Scheduler schedulerPort;
    EventLoop eventLoop;
    X11EventAccess eventAccessPort;
    Keyboard keyboard;
    ClientWindows clientWindows;
    WindowAccess windowAccess;
    FocusKeeper focusKeeper;
    X11Accessibility accessibilityPort;
    X11Screens screensPort;
    X11WindowServer windowServerPort;
    X11Workspace workspacePort;
    DesktopAppearance desktopAppearance;
    X11Application applicationPort;
    std::unique_ptr<TitledWindows> titledWindowsPort;
    std::unique_ptr<Views> viewsPort;
    std::unique_ptr<Panels> panelsPort;
    std::unique_ptr<ScreenCapture> screenCapturePort;
    std::unique_ptr<Bundle> bundlePort = makeBundle();
    std::unique_ptr<Images> imagesPort = makeImages();
    std::unique_ptr<EventTaps> eventTapsPort;
    std::unique_ptr<KeyMonitors> keyMonitorsPort;
    std::unique_ptr<StatusBar> statusBarPort;
    X11SyntheticEvents syntheticEventsPort;
};

} // namespace quillon::x11
