#include "Platform/X11/Workspace.h"

#include "Platform/Scheduler.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/FocusKeeper.h"
#include "Platform/X11/ProcessEnd.h"
#include "Platform/X11/URLOpening.h"
#include "Platform/X11/WindowAccess.h"
#include "Platform/X11/WindowManager.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace quillon::x11 {

X11Workspace::X11Workspace(Connection& connection, Scheduler& scheduler, const ClientWindows& windows,
                           const WindowAccess& access, FocusKeeper& focusKeeper)
    : connection(connection), scheduler(scheduler), windows(windows), access(access), focusKeeper(focusKeeper) {}

X11Workspace::~X11Workspace() = default;

std::optional<RunningApplication> X11Workspace::frontmostApplication() const {
    const auto window = access.with([](const Connection&, const ClientWindows& any) {
        const auto active = any.activeWindow();
        return active ? any.describe(*active) : std::nullopt;
    });
    if (!window || !window->owner) {
        return std::nullopt;
    }
    return RunningApplication{*window->owner,
                              window->applicationName ? window->applicationName : processName(*window->owner)};
}

std::optional<RunningApplication> X11Workspace::runningApplication(ProcessID pid) const {
    if (!isRunning(pid)) {
        return std::nullopt;
    }
    const auto known = applications.find(pid);
    if (known != applications.end() && known->second.name) {
        return RunningApplication{pid, known->second.name};
    }
    for (const auto& window : windows.list()) {
        if (window.owner == pid && window.applicationName) {
            return RunningApplication{pid, window.applicationName};
        }
    }
    return RunningApplication{pid, processName(pid)};
}

void X11Workspace::activateApplication(ProcessID pid) {
    const auto isOrdinary = [pid](const ClientWindow& window) { return window.isOrdinaryOf(pid); };
    // Front to back, minimised ones too.
    const auto all = windows.list();
    const auto raised = access.takeRaisedWindow();
    auto front = std::find_if(all.begin(), all.end(),
                              [&](const auto& window) { return window.window == raised && isOrdinary(window); });
    if (front == all.end()) {
        front = std::find_if(all.begin(), all.end(), isOrdinary);
    }
    if (front != all.end()) {
        focusKeeper.userSwitches();
        activate(connection, front->window);
        connection.flush();
        // Changes are looked at by the burst. When the user goes back at once, that is to be announced all the same.
        lastFrontmost.reset();
    }
}

void X11Workspace::openURL(std::string_view url) {
    x11::openURL(url);
}

RegistrationToken X11Workspace::observeDidActivateApplication(ApplicationCallback callback) {
    startWatching();
    return observers.add(static_cast<int>(Event::activated), std::move(callback));
}

RegistrationToken X11Workspace::observeDidTerminateApplication(ApplicationCallback callback) {
    startWatching();
    return observers.add(static_cast<int>(Event::terminated), std::move(callback));
}

/// With the first observer; what holds then is no news to it.
void X11Workspace::startWatching() {
    if (rootEvents) {
        return;
    }
    rootSelection = connection.selectInput(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    rootEvents = connection.observeWindow(connection.root(), [this](const auto& event) { handle(event); });
    updateApplications();
    if (const auto frontmost = frontmostApplication()) {
        lastFrontmost = frontmost->processIdentifier;
    }
}

void X11Workspace::handle(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_PROPERTY_NOTIFY) {
        return;
    }
    const auto property = as<xcb_property_notify_event_t>(event).atom;
    isActiveWindowStale = isActiveWindowStale || property == connection.atom("_NET_ACTIVE_WINDOW");
    isClientListStale = isClientListStale || property == connection.atom("_NET_CLIENT_LIST");
    if ((isActiveWindowStale || isClientListStale) && !isUpdateDue) {
        isUpdateDue = true;
        // Runs when all events that have arrived are handled, so a burst of changes is looked at once.
        scheduler.mainAsync([this, alive = std::weak_ptr(lifetime)] {
            if (!alive.expired()) {
                update();
            }
        });
    }
}

void X11Workspace::update() {
    isUpdateDue = false;
    if (std::exchange(isClientListStale, false)) {
        updateApplications();
    }
    if (std::exchange(isActiveWindowStale, false)) {
        updateFrontmost();
    }
}

void X11Workspace::updateFrontmost() {
    const auto frontmost = frontmostApplication();
    if (!frontmost || frontmost->processIdentifier == lastFrontmost) {
        return;
    }
    lastFrontmost = frontmost->processIdentifier;
    observers.call(static_cast<int>(Event::activated), frontmost);
}

void X11Workspace::updateApplications() {
    const auto present = windows.numbers();
    std::vector<xcb_window_t> added;
    std::copy_if(present.begin(), present.end(), std::back_inserter(added),
                 [this](xcb_window_t window) { return !ownerOfWindow.contains(window); });
    for (const auto& window : windows.describe(added)) {
        ownerOfWindow[window.window] = window.owner;
        if (window.owner && *window.owner != getpid()) {
            watchEndOf(window);
        }
    }
    forgetClosedWindows(present);
}

void X11Workspace::watchEndOf(const ClientWindow& window) {
    const auto pid = *window.owner;
    // The window of a process that has ended may be listed for a moment more.
    if (!applications.contains(pid) && !isRunning(pid)) {
        return;
    }
    auto& application = applications[pid];
    if (!application.name) {
        application.name = window.applicationName;
    }
    if (!application.end) {
        application.end = ProcessEnd::watch(pid, [this, pid] { applicationEnded(pid); });
    }
}

void X11Workspace::forgetClosedWindows(const std::vector<xcb_window_t>& present) {
    const std::unordered_set<xcb_window_t> open(present.begin(), present.end());
    std::erase_if(ownerOfWindow, [&](const auto& entry) { return !open.contains(entry.first); });
    std::set<std::optional<ProcessID>> owners;
    for (const auto& [window, pid] : ownerOfWindow) {
        owners.insert(pid);
    }
    std::vector<ProcessID> ended;
    for (const auto& [pid, application] : applications) {
        if (!application.end && !owners.contains(pid)) {
            ended.push_back(pid);
        }
    }
    for (const auto pid : ended) {
        applicationEnded(pid);
    }
}

void X11Workspace::applicationEnded(ProcessID pid) {
    const auto entry = applications.find(pid);
    const std::optional application(RunningApplication{pid, std::move(entry->second.name)});
    applications.erase(entry);
    if (lastFrontmost == pid) {
        // The number may come back with another process.
        lastFrontmost.reset();
    }
    observers.call(static_cast<int>(Event::terminated), application);
}

} // namespace quillon::x11
