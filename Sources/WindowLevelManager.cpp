#include "WindowLevelManager.h"

#include "AccessibilityReading.h"
#include "DiagnosticLog.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace quillon::WindowLevelManager {

namespace {

using Elements = std::vector<std::shared_ptr<AccessibilityElement>>;

/// How far an Accessibility window's frame may differ from the window server's bounds, in points, in any
/// direction. Detecting the frontmost window allows less; the two are meant to differ.
constexpr double frameTolerance = 5.0;

bool matchesWindowID(const AccessibilityElement& axWindow, ProcessID pid, WindowID targetWID) {
    const auto frame = frameOf(axWindow);
    if (!frame) {
        return false;
    }
    const auto windows = platform().windowServer().copyWindowInfo(
        windowListOnScreenOnly | windowListExcludeDesktopElements, nullWindowID);
    return windows && std::any_of(windows->begin(), windows->end(), [&](const WindowDescription& entry) {
               return entry.number == targetWID && entry.ownerPID == pid && entry.bounds &&
                      frame->isNear(entry.bounds->rect(), frameTolerance);
           });
}

/// Null when none matches.
std::shared_ptr<AccessibilityElement> firstMatch(const Elements& axWindows, ProcessID pid, WindowID windowID) {
    const auto found = std::find_if(axWindows.begin(), axWindows.end(),
                                    [&](const auto& axWindow) { return matchesWindowID(*axWindow, pid, windowID); });
    return found == axWindows.end() ? nullptr : *found;
}

void activateApplication(ProcessID pid) {
    auto& workspace = platform().workspace();
    const auto application = workspace.runningApplication(pid);
    if (!application) {
        return;
    }
    workspace.activateApplication(pid);
    wplog([&] { return fmt::format("raiseWindow: activated app '{}'", application->localizedName.value_or("?")); });
}

} // namespace

void raiseWindow(ProcessID pid, WindowID windowID, bool activate) {
    auto& accessibility = platform().accessibility();
    const auto application = accessibility.applicationElement(pid);
    const bool isTrusted = accessibility.isProcessTrusted();
    const auto read = application->copyAttributeValue("AXWindows");
    const auto* axWindows = read.get<Elements>();
    if (axWindows == nullptr) {
        wplog([&] {
            return fmt::format("raiseWindow: could not get windows for pid={} axErr={} trusted={}", pid,
                               static_cast<int>(read.error), describe(isTrusted));
        });
        return;
    }
    const auto axWindow = firstMatch(*axWindows, pid, windowID);
    if (!axWindow) {
        wplog([&] {
            return fmt::format("raiseWindow: no AX window matched wid={} pid={}; doing nothing", windowID, pid);
        });
        return;
    }
    const auto result = axWindow->performAction("AXRaise");
    wplog([&] {
        return fmt::format("raiseWindow: AXRaise wid={} pid={} result={}", windowID, pid, static_cast<int>(result));
    });
    if (activate) {
        activateApplication(pid);
    }
}

std::shared_ptr<AccessibilityElement> axWindow(ProcessID pid, WindowID windowID) {
    const auto read = platform().accessibility().applicationElement(pid)->copyAttributeValue("AXWindows");
    const auto* axWindows = read.get<Elements>();
    return axWindows != nullptr ? firstMatch(*axWindows, pid, windowID) : nullptr;
}

} // namespace quillon::WindowLevelManager
