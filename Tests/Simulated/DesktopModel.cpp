#include "Simulated/DesktopModel.h"

#include "Simulated/Misuse.h"

#include <fmt/format.h>

#include <algorithm>

namespace quillon::simulated {

namespace {

template <class Items, class Predicate>
auto findIn(Items& items, Predicate predicate) -> decltype(items.data()) {
    const auto found = std::find_if(items.begin(), items.end(), predicate);
    return found == items.end() ? nullptr : &*found;
}

auto isApplication(ProcessID pid) {
    return [pid](const OpenApplication& application) { return application.identity.processIdentifier == pid; };
}

auto isWindow(WindowID windowID) {
    return [windowID](const OpenWindow& window) { return window.windowID == windowID; };
}

} // namespace

OpenApplication& DesktopModel::application(ProcessID pid) {
    auto* found = findIn(applications, isApplication(pid));
    if (found == nullptr) {
        misuse(fmt::format("no application with the process identifier {} runs", pid));
    }
    return *found;
}

OpenWindow& DesktopModel::window(WindowID windowID) {
    auto* found = findIn(windows, isWindow(windowID));
    if (found == nullptr) {
        misuse(fmt::format("no window {} is open", windowID));
    }
    return *found;
}

const OpenApplication* DesktopModel::findApplication(ProcessID pid) const {
    return findIn(applications, isApplication(pid));
}

const OpenWindow* DesktopModel::findWindow(WindowID windowID) const {
    return findIn(windows, isWindow(windowID));
}

bool DesktopModel::isOnScreen(const OpenWindow& window) const {
    const auto* owner = findApplication(window.ownerPID);
    return !window.isMinimised && window.space == currentSpace && !(owner != nullptr && owner->isHidden);
}

const OpenWindow* DesktopModel::focusedWindow(ProcessID pid) const {
    return findIn(windows, [&](const OpenWindow& window) {
        return window.ownerPID == pid && window.layer == 0 && isOnScreen(window);
    });
}

void DesktopModel::bringToFront(WindowID windowID) {
    const auto found = std::find_if(windows.begin(), windows.end(), isWindow(windowID));
    std::rotate(windows.begin(), found, found + 1);
}

void DesktopModel::raise(WindowID windowID) {
    const auto owner = window(windowID).ownerPID;
    const auto front = std::find_if(windows.begin(), windows.end(),
                                    [&](const OpenWindow& window) { return window.ownerPID == owner; });
    const auto found = std::find_if(front, windows.end(), isWindow(windowID));
    std::rotate(front, found, found + 1);
}

} // namespace quillon::simulated
