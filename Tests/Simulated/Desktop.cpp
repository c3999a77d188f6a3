#include "Simulated/Desktop.h"

#include "Platform/NotificationCenter.h"
#include "Simulated/Misuse.h"

#include <algorithm>

namespace quillon::simulated {

Desktop::Desktop() {
    desktopModel.applications.push_back({{ownPID(), "Quillon"}});
}

Desktop::~Desktop() {
    // What waits may own what has to be gone.
    schedulerPort.discard();
    screenCapturePort.discard();
    if (!panelsPort.all().empty() || viewsPort.living() > 0) {
        misuse(fmt::format("{} panels and {} views or layers outlive the desktop", panelsPort.all().size(),
                           viewsPort.living()));
    }
    if (!titledWindowsPort.all().empty()) {
        misuse(fmt::format("{} titled windows outlive the desktop", titledWindowsPort.all().size()));
    }
    if (keyMonitorsPort.count() > 0) {
        misuse(fmt::format("{} key monitors outlive the desktop", keyMonitorsPort.count()));
    }
    if (!statusBarPort.items().empty()) {
        misuse(fmt::format("{} status items outlive the desktop", statusBarPort.items().size()));
    }
    if (!eventTapsPort.all().empty()) {
        misuse(fmt::format("{} event taps outlive the desktop", eventTapsPort.all().size()));
    }
    if (fileSystemPort.openDescriptors() > 0) {
        misuse(fmt::format("{} files were not closed", fileSystemPort.openDescriptors()));
    }
}

ProcessID Desktop::launch(std::optional<std::string> name) {
    const auto pid = nextPID++;
    desktopModel.applications.push_back({{pid, std::move(name)}});
    return pid;
}

WindowID Desktop::openWindow(ProcessID owner, std::optional<std::string> title, const DisplayRect& bounds) {
    const auto pid = desktopModel.application(owner).identity.processIdentifier;
    const auto windowID = nextWindowID++;
    OpenWindow window;
    window.windowID = windowID;
    window.ownerPID = pid;
    window.title = std::move(title);
    window.bounds = bounds;
    window.space = desktopModel.currentSpace;
    desktopModel.windows.insert(desktopModel.windows.begin(), std::move(window));
    return windowID;
}

void Desktop::activate(ProcessID pid) {
    // Rotating each to the front from the back keeps their order among themselves.
    std::vector<WindowID> owned;
    for (const auto& window : desktopModel.windows) {
        if (window.ownerPID == pid) {
            owned.push_back(window.windowID);
        }
    }
    for (auto windowID = owned.rbegin(); windowID != owned.rend(); ++windowID) {
        desktopModel.bringToFront(*windowID);
    }
    workspacePort.setFrontmost(pid);
}

void Desktop::activateWindow(WindowID windowID) {
    auto& window = desktopModel.window(windowID);
    window.isMinimised = false;
    const auto owner = window.ownerPID;
    activate(owner);
    desktopModel.bringToFront(windowID);
}

void Desktop::minimise(WindowID windowID) {
    desktopModel.window(windowID).isMinimised = true;
}

void Desktop::moveToSpace(WindowID windowID, int space) {
    desktopModel.window(windowID).space = space;
}

void Desktop::move(WindowID windowID, const DisplayRect& bounds) {
    desktopModel.window(windowID).bounds = bounds;
    screenCapturePort.windowChanged(windowID);
}

void Desktop::draw(WindowID windowID) {
    screenCapturePort.windowChanged(desktopModel.window(windowID).windowID);
}

void Desktop::close(WindowID windowID) {
    const auto closed = desktopModel.window(windowID).windowID;
    std::erase_if(desktopModel.windows, [&](const OpenWindow& window) { return window.windowID == closed; });
    screenCapturePort.windowClosed(closed);
}

void Desktop::terminate(ProcessID pid) {
    const auto identity = desktopModel.application(pid).identity;
    while (true) {
        const auto& windows = desktopModel.windows;
        const auto owned =
            std::find_if(windows.begin(), windows.end(), [&](const auto& window) { return window.ownerPID == pid; });
        if (owned == windows.end()) {
            break;
        }
        close(owned->windowID);
    }
    std::erase_if(desktopModel.applications,
                  [&](const auto& application) { return application.identity.processIdentifier == pid; });
    if (desktopModel.frontmost == pid) {
        desktopModel.frontmost.reset();
    }
    workspacePort.announceTermination(identity);
}

void Desktop::changeScreens(std::vector<Screen> screens) {
    screensPort.set(std::move(screens));
    titledWindowsPort.screensChanged();
    schedulerPort.mainAsync([this] { notificationCenterPort.post(screenParametersDidChangeNotification); });
}

void Desktop::click(const ScreenPoint& point) {
    if (auto* panel = panelAt(point)) {
        for (const auto type : {EventType::leftMouseDown, EventType::leftMouseUp}) {
            if (panelAt(point) == panel) {
                const auto origin = panel->frame().origin;
                panel->inject({.type = type, .locationInWindow = {point.x - origin.x, point.y - origin.y}});
            }
        }
    } else if (const auto* window = windowAt(point)) {
        activateWindow(window->windowID);
    }
}

TappedEvent Desktop::pressKey(std::uint16_t keyCode, EventFlags flags) {
    constexpr std::uint16_t escapeKey = 53; // kVK_Escape
    const auto tapped = eventTapsPort.pressKey(keyCode, flags);
    auto* window = titledWindowsPort.keyWindow();
    if (tapped == TappedEvent::passes && window != nullptr &&
        keyMonitorsPort.deliver({keyCode, flags}) == TappedEvent::passes && keyCode == escapeKey) {
        window->pressEscape();
    }
    return tapped;
}

const OpenWindow* Desktop::windowAt(const ScreenPoint& point) const {
    const auto screens = screensPort.screens();
    const double primaryHeight = screens.empty() ? 0 : screens.front().frame.size.height;
    const DisplayPoint place{point.x, primaryHeight - point.y};
    for (const auto& window : desktopModel.windows) {
        if (desktopModel.isOnScreen(window) && window.bounds.contains(place)) {
            return &window;
        }
    }
    return nullptr;
}

SimulatedPanel* Desktop::panelAt(const ScreenPoint& point) const {
    const bool isCovered = windowAt(point) != nullptr;
    for (auto* panel : panelsPort.stack()) {
        if (panel->frame().contains(point) && !(isCovered && panel->level() < normalWindowLevel)) {
            return panel;
        }
    }
    return nullptr;
}

} // namespace quillon::simulated
