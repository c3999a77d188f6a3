#pragma once

namespace quillon {

class Accessibility;
class Application;
class Bundle;
class Clock;
class DistributedNotificationCenter;
class EventAccess;
class EventTaps;
class FileSystem;
class Images;
class KeyMonitors;
class LoginItem;
class NotificationCenter;
class Panels;
class ProcessInfo;
class Scheduler;
class ScreenCapture;
class Screens;
class StatusBar;
class SyntheticEvents;
class TitledWindows;
class UserDefaults;
class Views;
class WindowServer;
class Workspace;

/// Everything the program needs from a desktop: one port each, whose header is its porter's guide. The
/// ports live as long as the platform.
class Platform {
public:
    Platform() = default;
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;
    virtual ~Platform() = default;

    /// Null when the system gives this process no application object.
    virtual Application* sharedApplication() = 0;

    virtual Accessibility& accessibility() = 0;
    virtual Bundle& bundle() = 0;
    virtual Clock& clock() = 0;
    virtual DistributedNotificationCenter& distributedNotificationCenter() = 0;
    virtual EventAccess& eventAccess() = 0;
    virtual EventTaps& eventTaps() = 0;
    virtual FileSystem& fileSystem() = 0;
    virtual Images& images() = 0;
    virtual KeyMonitors& keyMonitors() = 0;
    virtual LoginItem& loginItem() = 0;
    virtual NotificationCenter& notificationCenter() = 0;
    virtual Panels& panels() = 0;
    virtual ProcessInfo& processInfo() = 0;
    virtual Scheduler& scheduler() = 0;
    virtual ScreenCapture& screenCapture() = 0;
    virtual Screens& screens() = 0;
    virtual StatusBar& statusBar() = 0;
    virtual SyntheticEvents& syntheticEvents() = 0;
    virtual TitledWindows& titledWindows() = 0;
    virtual UserDefaults& userDefaults() = 0;
    virtual Views& views() = 0;
    virtual WindowServer& windowServer() = 0;
    virtual Workspace& workspace() = 0;
};

/// The platform in use. Stops the process when none is installed. Any thread.
Platform& platform();

/// The application object of the platform in use. Stops the process when there is none. Main thread.
Application& sharedApplication();

/// Installs a platform for the time of its life and puts the earlier one back afterwards. The entry point
/// holds one for the whole run; a test holds one each. Main thread, while no other thread uses the platform.
class PlatformScope {
public:
    explicit PlatformScope(Platform& platform);
    PlatformScope(const PlatformScope&) = delete;
    PlatformScope& operator=(const PlatformScope&) = delete;
    ~PlatformScope();

private:
    Platform* previous;
};

} // namespace quillon
