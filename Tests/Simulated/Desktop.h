#pragma once

#include "Platform/Platform.h"
#include "Simulated/DesktopModel.h"
#include "Simulated/Journal.h"
#include "Simulated/SimulatedAccessibility.h"
#include "Simulated/SimulatedApplication.h"
#include "Simulated/SimulatedBundle.h"
#include "Simulated/SimulatedClock.h"
#include "Simulated/SimulatedDistributedNotificationCenter.h"
#include "Simulated/SimulatedEventTaps.h"
#include "Simulated/SimulatedFileSystem.h"
#include "Simulated/SimulatedImages.h"
#include "Simulated/SimulatedKeyMonitors.h"
#include "Simulated/SimulatedLoginItem.h"
#include "Simulated/SimulatedNotificationCenter.h"
#include "Simulated/SimulatedPanels.h"
#include "Simulated/SimulatedProcess.h"
#include "Simulated/SimulatedScheduler.h"
#include "Simulated/SimulatedScreenCapture.h"
#include "Simulated/SimulatedScreens.h"
#include "Simulated/SimulatedStatusBar.h"
#include "Simulated/SimulatedSyntheticEvents.h"
#include "Simulated/SimulatedTitledWindows.h"
#include "Simulated/SimulatedUserDefaults.h"
#include "Simulated/SimulatedViews.h"
#include "Simulated/SimulatedWindowServer.h"
#include "Simulated/SimulatedWorkspace.h"

namespace quillon::simulated {

/// A whole desktop in memory, with a virtual clock and on one thread. It does what the ports' headers promise and
/// no more, and it is strict: a use that they forbid (a handle that is gone, another thread than the main one, a
/// call out of order) stops the test with a message that names it.
///
/// The ports are reached by their own types, so a test uses what they add for it:
///
///     Desktop desktop;
///     PlatformScope scope(desktop);
///     const auto notes = desktop.launch("Note");
///     const auto window = desktop.openWindow(notes, "Spesa", {{100, 100}, {800, 600}});
///     desktop.screenCapture().hold(CaptureOperation::startCapture);
///     desktop.activate(notes);
///     desktop.advance(Seconds(2));
///
/// What the program made on it (panels, windows, views, timers, open files) has to be gone before the desktop goes.
class Desktop final : public Platform {
public:
    Desktop();
    ~Desktop() override;

    SimulatedApplication* sharedApplication() override { return hasApplication ? &applicationObject : nullptr; }
    SimulatedAccessibility& accessibility() override { return accessibilityPort; }
    SimulatedBundle& bundle() override { return bundlePort; }
    SimulatedClock& clock() override { return clockPort; }
    SimulatedDistributedNotificationCenter& distributedNotificationCenter() override {
        return distributedNotificationCenterPort;
    }
    SimulatedEventAccess& eventAccess() override { return eventAccessPort; }
    SimulatedEventTaps& eventTaps() override { return eventTapsPort; }
    SimulatedFileSystem& fileSystem() override { return fileSystemPort; }
    SimulatedImages& images() override { return imagesPort; }
    SimulatedKeyMonitors& keyMonitors() override { return keyMonitorsPort; }
    SimulatedLoginItem& loginItem() override { return loginItemPort; }
    SimulatedNotificationCenter& notificationCenter() override { return notificationCenterPort; }
    SimulatedPanels& panels() override { return panelsPort; }
    SimulatedProcessInfo& processInfo() override { return processInfoPort; }
    SimulatedScheduler& scheduler() override { return schedulerPort; }
    SimulatedScreenCapture& screenCapture() override { return screenCapturePort; }
    SimulatedScreens& screens() override { return screensPort; }
    SimulatedStatusBar& statusBar() override { return statusBarPort; }
    SimulatedSyntheticEvents& syntheticEvents() override { return syntheticEventsPort; }
    SimulatedTitledWindows& titledWindows() override { return titledWindowsPort; }
    SimulatedUserDefaults& userDefaults() override { return userDefaultsPort; }
    SimulatedViews& views() override { return viewsPort; }
    SimulatedWindowServer& windowServer() override { return windowServerPort; }
    SimulatedWorkspace& workspace() override { return workspacePort; }

    [[nodiscard]] Journal& journal() { return journalOfAll; }
    /// For a test that alters a window or an application.
    [[nodiscard]] DesktopModel& model() { return desktopModel; }
    /// Takes the application object away.
    void removeApplicationObject() { hasApplication = false; }

    // Time
    void advance(Seconds duration) { schedulerPort.advance(duration); }
    void runUntilIdle() { schedulerPort.runUntilIdle(); }
    bool runUntil(const std::function<bool()>& condition, Seconds bound) {
        return schedulerPort.runUntil(condition, bound);
    }

    // What other programs and the user do. Announcements to the program wait on the main queue.

    /// Starts an application without windows; it does not come to the front by that.
    ProcessID launch(std::optional<std::string> name);
    /// This program, which runs from the start.
    [[nodiscard]] static ProcessID ownPID() { return SimulatedProcessInfo::ownPID; }
    /// In front of all others.
    WindowID openWindow(ProcessID owner, std::optional<std::string> title, const DisplayRect& bounds);
    /// The user switches to the application, which may be this program; its windows come to the front.
    void activate(ProcessID pid);
    void activateWindow(WindowID windowID);
    void minimise(WindowID windowID);
    void moveToSpace(WindowID windowID, int space);
    void move(WindowID windowID, const DisplayRect& bounds);
    /// The application draws something new.
    void draw(WindowID windowID);
    void close(WindowID windowID);
    /// Ends the application and its windows.
    void terminate(ProcessID pid);
    /// Changes the screens and announces it.
    void changeScreens(std::vector<Screen> screens);
    /// Presses and releases the left button over whatever is in front there.
    void click(const ScreenPoint& point);
    /// Presses a key while nothing else than these modifiers is held; says whether an application saw it. What repeats
    /// while a key is held is one press after the other. While a window of this program is key, the local key monitors
    /// see what no tap swallowed; of what they let pass, the window knows Escape alone.
    TappedEvent pressKey(std::uint16_t keyCode, EventFlags flags);

private:
    [[nodiscard]] const OpenWindow* windowAt(const ScreenPoint& point) const;
    [[nodiscard]] SimulatedPanel* panelAt(const ScreenPoint& point) const;

    Journal journalOfAll;
    DesktopModel desktopModel;
    SimulatedScheduler schedulerPort{journalOfAll};
    SimulatedClock clockPort{schedulerPort};
    SimulatedUserDefaults userDefaultsPort{schedulerPort, journalOfAll};
    SimulatedFileSystem fileSystemPort{journalOfAll};
    SimulatedProcessInfo processInfoPort;
    SimulatedEventAccess eventAccessPort{schedulerPort, journalOfAll};
    SimulatedNotificationCenter notificationCenterPort{schedulerPort, journalOfAll};
    SimulatedDistributedNotificationCenter distributedNotificationCenterPort{schedulerPort, journalOfAll};
    SimulatedScreens screensPort{schedulerPort};
    SimulatedWindowServer windowServerPort{desktopModel};
    SimulatedWorkspace workspacePort{desktopModel, schedulerPort, notificationCenterPort, journalOfAll};
    SimulatedApplication applicationObject{workspacePort, schedulerPort, journalOfAll};
    SimulatedAccessibility accessibilityPort{desktopModel, schedulerPort, journalOfAll};
    SimulatedViews viewsPort{schedulerPort, journalOfAll};
    SimulatedPanels panelsPort{schedulerPort, screensPort, viewsPort, journalOfAll};
    SimulatedTitledWindows titledWindowsPort{desktopModel, screensPort, workspacePort, schedulerPort, journalOfAll};
    SimulatedScreenCapture screenCapturePort{desktopModel, screensPort, schedulerPort, journalOfAll};
    SimulatedBundle bundlePort{schedulerPort};
    SimulatedEventTaps eventTapsPort{accessibilityPort, schedulerPort, journalOfAll};
    SimulatedKeyMonitors keyMonitorsPort{schedulerPort, journalOfAll};
    SimulatedLoginItem loginItemPort{schedulerPort, journalOfAll};
    SimulatedImages imagesPort{schedulerPort, journalOfAll};
    SimulatedSyntheticEvents syntheticEventsPort{schedulerPort, journalOfAll};
    SimulatedStatusBar statusBarPort{schedulerPort, imagesPort, journalOfAll};
    bool hasApplication = true;
    ProcessID nextPID = 1001;
    WindowID nextWindowID = 101;
};

} // namespace quillon::simulated
