#include "WindowDetector.h"

#include "AccessibilityReading.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"

namespace quillon::WindowDetector {

namespace {

/// How far a window's bounds may differ from the focused window's Accessibility frame, in points, in any
/// direction. Finding the Accessibility window of a window number allows more; the two are meant to differ.
constexpr double frameTolerance = 2.0;

/// What Accessibility knows of the focused window.
struct FocusedWindow {
    std::string title;
    std::optional<DisplayRect> frame;
};

FocusedWindow readFocusedWindow(ProcessID pid) {
    const auto application = platform().accessibility().applicationElement(pid);
    const auto window = copyElement(*application, "AXFocusedWindow");
    if (!window) {
        return {};
    }
    return {copyString(*window, "AXTitle").value_or(""), frameOf(*window)};
}

std::string ownerName(const std::optional<RunningApplication>& application) {
    return application && application->localizedName ? *application->localizedName : "Unknown";
}

bool isOrdinary(const WindowDescription& entry) {
    return entry.ownerPID && entry.number && entry.layer == 0;
}

/// The first candidate that the predicate accepts.
template <class Predicate>
const WindowDescription* firstCandidate(const std::vector<WindowDescription>& windows, ProcessID owner,
                                        Predicate accepts) {
    for (const auto& entry : windows) {
        if (isOrdinary(entry) && *entry.ownerPID == owner && accepts(entry)) {
            return &entry;
        }
    }
    return nullptr;
}

/// Three passes over the list, each with a looser match; the first hit wins.
const WindowDescription* findWindow(const std::vector<WindowDescription>& windows, ProcessID owner,
                                    const FocusedWindow& focused) {
    const WindowDescription* found = nullptr;
    if (!focused.title.empty()) {
        found = firstCandidate(windows, owner, [&](const auto& entry) { return entry.name == focused.title; });
    }
    if (found == nullptr && focused.frame) {
        found = firstCandidate(windows, owner, [&](const auto& entry) {
            return entry.bounds && focused.frame->isNear(entry.bounds->rect(), frameTolerance);
        });
    }
    if (found == nullptr) {
        found = firstCandidate(windows, owner, [](const auto&) { return true; });
    }
    return found;
}

} // namespace

std::optional<ForeignWindow> getFrontmostForeignWindow() {
    const auto application = platform().workspace().frontmostApplication();
    if (!application || application->processIdentifier == platform().processInfo().processIdentifier()) {
        return std::nullopt;
    }
    const auto owner = application->processIdentifier;
    const auto focused = readFocusedWindow(owner);
    const auto windows = platform().windowServer().copyWindowInfo(
        windowListOnScreenOnly | windowListExcludeDesktopElements, nullWindowID);
    if (!windows) {
        return std::nullopt;
    }
    const auto* found = findWindow(*windows, owner, focused);
    if (found == nullptr) {
        return std::nullopt;
    }
    return ForeignWindow{*found->number, owner, ownerName(application), found->name.value_or("")};
}

std::vector<ForeignWindow> allForeignWindows() {
    const auto ownPID = platform().processInfo().processIdentifier();
    std::vector<ForeignWindow> result;
    const auto windows = platform().windowServer().copyWindowInfo(windowListExcludeDesktopElements, nullWindowID);
    for (const auto& entry : windows.value_or(std::vector<WindowDescription>())) {
        if (isOrdinary(entry) && *entry.ownerPID != ownPID) {
            const auto owner = platform().workspace().runningApplication(*entry.ownerPID);
            result.push_back({*entry.number, *entry.ownerPID, ownerName(owner), entry.name.value_or("")});
        }
    }
    return result;
}

std::optional<ForeignWindow> foreignWindow(WindowID windowID) {
    for (auto& window : allForeignWindows()) {
        if (window.windowID == windowID) {
            return std::move(window);
        }
    }
    return std::nullopt;
}

std::unordered_set<WindowID> allOnScreenWindowIDs() {
    std::unordered_set<WindowID> numbers;
    const auto windows = platform().windowServer().copyWindowInfo(windowListExcludeDesktopElements, nullWindowID);
    for (const auto& entry : windows.value_or(std::vector<WindowDescription>())) {
        if (entry.number && entry.layer && *entry.layer >= 0) {
            numbers.insert(*entry.number);
        }
    }
    return numbers;
}

} // namespace quillon::WindowDetector
