#pragma once

#include <memory>

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
} // namespace quillon

/// The ports on macOS, one source each. They translate and decide nothing. Main thread.
namespace quillon::macos {

[[nodiscard]] std::unique_ptr<Accessibility> makeAccessibility();
[[nodiscard]] std::unique_ptr<Application> makeApplication();
[[nodiscard]] std::unique_ptr<Bundle> makeBundle();
[[nodiscard]] std::unique_ptr<Clock> makeClock();
[[nodiscard]] std::unique_ptr<DistributedNotificationCenter> makeDistributedNotificationCenter();
[[nodiscard]] std::unique_ptr<EventAccess> makeEventAccess();
[[nodiscard]] std::unique_ptr<EventTaps> makeEventTaps();
[[nodiscard]] std::unique_ptr<FileSystem> makeFileSystem();
[[nodiscard]] std::unique_ptr<Images> makeImages();
[[nodiscard]] std::unique_ptr<KeyMonitors> makeKeyMonitors();
[[nodiscard]] std::unique_ptr<LoginItem> makeLoginItem();
[[nodiscard]] std::unique_ptr<NotificationCenter> makeNotificationCenter();
[[nodiscard]] std::unique_ptr<Panels> makePanels();
[[nodiscard]] std::unique_ptr<ProcessInfo> makeProcessInfo();
[[nodiscard]] std::unique_ptr<Scheduler> makeScheduler();
[[nodiscard]] std::unique_ptr<ScreenCapture> makeScreenCapture();
[[nodiscard]] std::unique_ptr<Screens> makeScreens();
[[nodiscard]] std::unique_ptr<StatusBar> makeStatusBar();
[[nodiscard]] std::unique_ptr<SyntheticEvents> makeSyntheticEvents();
[[nodiscard]] std::unique_ptr<TitledWindows> makeTitledWindows();
[[nodiscard]] std::unique_ptr<UserDefaults> makeUserDefaults();
[[nodiscard]] std::unique_ptr<Views> makeViews();
[[nodiscard]] std::unique_ptr<WindowServer> makeWindowServer();
[[nodiscard]] std::unique_ptr<Workspace> makeWorkspace();

} // namespace quillon::macos
