#pragma once

#include <memory>

namespace quillon {
class Accessibility;
class Application;
class Clock;
class EventAccess;
class FileSystem;
class NotificationCenter;
class Panels;
class ProcessInfo;
class Scheduler;
class ScreenCapture;
class Screens;
class UserDefaults;
class Views;
class WindowServer;
class Workspace;
} // namespace quillon

/// The ports on macOS, one source each. They translate and decide nothing. Main thread.
namespace quillon::macos {

[[nodiscard]] std::unique_ptr<Accessibility> makeAccessibility();
[[nodiscard]] std::unique_ptr<Application> makeApplication();
[[nodiscard]] std::unique_ptr<Clock> makeClock();
[[nodiscard]] std::unique_ptr<EventAccess> makeEventAccess();
[[nodiscard]] std::unique_ptr<FileSystem> makeFileSystem();
[[nodiscard]] std::unique_ptr<NotificationCenter> makeNotificationCenter();
[[nodiscard]] std::unique_ptr<Panels> makePanels();
[[nodiscard]] std::unique_ptr<ProcessInfo> makeProcessInfo();
[[nodiscard]] std::unique_ptr<Scheduler> makeScheduler();
[[nodiscard]] std::unique_ptr<ScreenCapture> makeScreenCapture();
[[nodiscard]] std::unique_ptr<Screens> makeScreens();
[[nodiscard]] std::unique_ptr<UserDefaults> makeUserDefaults();
[[nodiscard]] std::unique_ptr<Views> makeViews();
[[nodiscard]] std::unique_ptr<WindowServer> makeWindowServer();
[[nodiscard]] std::unique_ptr<Workspace> makeWorkspace();

} // namespace quillon::macos
