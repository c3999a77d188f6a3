#include "Platform/macOS/MacPlatform.h"

#include "Platform/Accessibility.h"
#include "Platform/Application.h"
#include "Platform/Bundle.h"
#include "Platform/Clock.h"
#include "Platform/DistributedNotificationCenter.h"
#include "Platform/EventAccess.h"
#include "Platform/EventTap.h"
#include "Platform/FileSystem.h"
#include "Platform/Images.h"
#include "Platform/KeyMonitor.h"
#include "Platform/LoginItem.h"
#include "Platform/NotificationCenter.h"
#include "Platform/Panel.h"
#include "Platform/ProcessInfo.h"
#include "Platform/Scheduler.h"
#include "Platform/ScreenCapture.h"
#include "Platform/Screens.h"
#include "Platform/StatusBar.h"
#include "Platform/SyntheticEvents.h"
#include "Platform/TitledWindow.h"
#include "Platform/UserDefaults.h"
#include "Platform/Views.h"
#include "Platform/WindowServer.h"
#include "Platform/Workspace.h"
#include "Platform/macOS/Ports.h"

namespace quillon {

namespace {

class MacPlatform final : public Platform {
public:
    Application* sharedApplication() override { return applicationPort.get(); }
    Accessibility& accessibility() override { return *accessibilityPort; }
    Bundle& bundle() override { return *bundlePort; }
    Clock& clock() override { return *clockPort; }
    DistributedNotificationCenter& distributedNotificationCenter() override {
        return *distributedNotificationCenterPort;
    }
    EventAccess& eventAccess() override { return *eventAccessPort; }
    EventTaps& eventTaps() override { return *eventTapsPort; }
    FileSystem& fileSystem() override { return *fileSystemPort; }
    Images& images() override { return *imagesPort; }
    KeyMonitors& keyMonitors() override { return *keyMonitorsPort; }
    LoginItem& loginItem() override { return *loginItemPort; }
    NotificationCenter& notificationCenter() override { return *notificationCenterPort; }
    Panels& panels() override { return *panelsPort; }
    ProcessInfo& processInfo() override { return *processInfoPort; }
    Scheduler& scheduler() override { return *schedulerPort; }
    ScreenCapture& screenCapture() override { return *screenCapturePort; }
    Screens& screens() override { return *screensPort; }
    StatusBar& statusBar() override { return *statusBarPort; }
    SyntheticEvents& syntheticEvents() override { return *syntheticEventsPort; }
    TitledWindows& titledWindows() override { return *titledWindowsPort; }
    UserDefaults& userDefaults() override { return *userDefaultsPort; }
    Views& views() override { return *viewsPort; }
    WindowServer& windowServer() override { return *windowServerPort; }
    Workspace& workspace() override { return *workspacePort; }

private:
    // The application comes first: AppKit wants it before anything else is used.
    std::unique_ptr<Application> applicationPort = macos::makeApplication();
    std::unique_ptr<Accessibility> accessibilityPort = macos::makeAccessibility();
    std::unique_ptr<Bundle> bundlePort = macos::makeBundle();
    std::unique_ptr<Clock> clockPort = macos::makeClock();
    std::unique_ptr<DistributedNotificationCenter> distributedNotificationCenterPort =
        macos::makeDistributedNotificationCenter();
    std::unique_ptr<EventAccess> eventAccessPort = macos::makeEventAccess();
    std::unique_ptr<EventTaps> eventTapsPort = macos::makeEventTaps();
    std::unique_ptr<FileSystem> fileSystemPort = macos::makeFileSystem();
    std::unique_ptr<Images> imagesPort = macos::makeImages();
    std::unique_ptr<KeyMonitors> keyMonitorsPort = macos::makeKeyMonitors();
    std::unique_ptr<LoginItem> loginItemPort = macos::makeLoginItem();
    std::unique_ptr<NotificationCenter> notificationCenterPort = macos::makeNotificationCenter();
    std::unique_ptr<Panels> panelsPort = macos::makePanels();
    std::unique_ptr<ProcessInfo> processInfoPort = macos::makeProcessInfo();
    std::unique_ptr<Scheduler> schedulerPort = macos::makeScheduler();
    std::unique_ptr<ScreenCapture> screenCapturePort = macos::makeScreenCapture();
    std::unique_ptr<Screens> screensPort = macos::makeScreens();
    std::unique_ptr<StatusBar> statusBarPort = macos::makeStatusBar();
    std::unique_ptr<SyntheticEvents> syntheticEventsPort = macos::makeSyntheticEvents();
    std::unique_ptr<TitledWindows> titledWindowsPort = macos::makeTitledWindows();
    std::unique_ptr<UserDefaults> userDefaultsPort = macos::makeUserDefaults();
    std::unique_ptr<Views> viewsPort = macos::makeViews();
    std::unique_ptr<WindowServer> windowServerPort = macos::makeWindowServer();
    std::unique_ptr<Workspace> workspacePort = macos::makeWorkspace();
};

} // namespace

std::unique_ptr<Platform> makeMacPlatform() {
    return std::make_unique<MacPlatform>();
}

} // namespace quillon
