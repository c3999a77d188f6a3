#pragma once

#include "Platform/Workspace.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/Handlers.h"

#include <map>
#include <memory>
#include <set>
#include <unordered_set>

namespace quillon {
class Scheduler;
}

namespace quillon::x11 {

class FocusKeeper;
class ProcessEnd;
class WindowAccess;

/// Applications are the processes that own windows. An application is frontmost while one of its windows is the
/// window manager's active window; between two active windows there may be none for a moment, which is not a
/// change by itself.
class X11Workspace final : public Workspace {
public:
    X11Workspace(Connection& connection, Scheduler& scheduler, const ClientWindows& windows, const WindowAccess& access,
                 FocusKeeper& focusKeeper);
    ~X11Workspace() override;

    [[nodiscard]] std::optional<RunningApplication> frontmostApplication() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(ProcessID pid) const override;
    void activateApplication(ProcessID pid) override;
    void openURL(std::string_view url) override;
    [[nodiscard]] RegistrationToken observeDidActivateApplication(ApplicationCallback callback) override;
    [[nodiscard]] RegistrationToken observeDidTerminateApplication(ApplicationCallback callback) override;

private:
    enum class Event { activated, terminated };

    void startWatching();
    void handle(const xcb_generic_event_t& event);
    void update();
    void updateFrontmost();
    void updateApplications();
    void watchEndOf(const ClientWindow& window);
    void forgetClosedWindows(const std::vector<xcb_window_t>& present);
    void applicationEnded(ProcessID pid);

    struct Application {
        std::optional<std::string> name;
        /// Null when the system cannot watch the process; its end is then the end of its last window.
        std::unique_ptr<ProcessEnd> end;
    };

    Connection& connection;
    Scheduler& scheduler;
    const ClientWindows& windows;
    const WindowAccess& access;
    FocusKeeper& focusKeeper;
    Handlers<int, const std::optional<RunningApplication>&> observers;

    RegistrationToken rootSelection;
    RegistrationToken rootEvents;
    /// Ends the updates that wait in the event loop when the workspace goes.
    std::shared_ptr<void> lifetime = std::make_shared<char>();
    bool isUpdateDue = false;
    bool isActiveWindowStale = false;
    bool isClientListStale = false;
    std::optional<ProcessID> lastFrontmost;
    /// For every listed window.
    std::unordered_map<xcb_window_t, std::optional<ProcessID>> ownerOfWindow;
    std::map<ProcessID, Application> applications;
};

} // namespace quillon::x11
