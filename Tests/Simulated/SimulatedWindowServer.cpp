#include "Simulated/SimulatedWindowServer.h"

#include "Simulated/Misuse.h"

#include <fmt/format.h>

namespace quillon::simulated {

namespace {

WindowDescription describe(const OpenWindow& window) {
    WindowDescription description{
        .number = window.windowID,
        .ownerPID = window.ownerPID,
        .layer = window.layer,
        .name = window.title,
        .bounds = WindowBoundsEntry{window.bounds.origin.x, window.bounds.origin.y, window.bounds.size.width,
                                    window.bounds.size.height},
    };
    if (window.alterDescription) {
        window.alterDescription(description);
    }
    return description;
}

void checkOptions(WindowListOption options, WindowID relativeTo) {
    constexpr WindowListOption known =
        windowListOnScreenOnly | windowListIncludingWindow | windowListExcludeDesktopElements;
    if ((options & ~known) != 0) {
        misuse(fmt::format("WindowServer::copyWindowInfo with the unknown options {}", options));
    }
    if (((options & windowListIncludingWindow) != 0) != (relativeTo != nullWindowID)) {
        misuse(fmt::format("WindowServer::copyWindowInfo with the options {} relative to the window {}", options,
                           relativeTo));
    }
}

} // namespace

std::optional<std::vector<WindowDescription>> SimulatedWindowServer::copyWindowInfo(WindowListOption options,
                                                                                    WindowID relativeTo) const {
    checkOptions(options, relativeTo);
    if (isFailing) {
        return std::nullopt;
    }
    const auto isSelected = [&](const OpenWindow& window) {
        if ((options & windowListIncludingWindow) != 0) {
            return window.windowID == relativeTo;
        }
        return !((options & windowListOnScreenOnly) != 0 && !model.isOnScreen(window)) &&
               !((options & windowListExcludeDesktopElements) != 0 && window.isDesktopElement);
    };
    std::vector<WindowDescription> result;
    for (const auto& window : model.windows) {
        if (isSelected(window)) {
            result.push_back(describe(window));
        }
    }
    return result;
}

} // namespace quillon::simulated
