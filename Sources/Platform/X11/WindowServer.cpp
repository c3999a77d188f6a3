#include "Platform/X11/WindowServer.h"

#include "Platform/X11/ClientWindows.h"

namespace quillon::x11 {

namespace {

std::int64_t layerOf(ClientWindow::Kind kind) {
    switch (kind) {
    case ClientWindow::Kind::desktop:
        return -2147483623; // kCGDesktopWindowLevel
    case ClientWindow::Kind::dock:
        return 20; // kCGDockWindowLevel
    case ClientWindow::Kind::transitory:
        return 101; // kCGPopUpMenuWindowLevel
    case ClientWindow::Kind::ordinary:
        break;
    }
    return 0;
}

WindowDescription describe(const ClientWindow& window, const DisplayRect& bounds) {
    return {window.window, window.owner, layerOf(window.kind), window.title,
            WindowBoundsEntry{bounds.origin.x, bounds.origin.y, bounds.size.width, bounds.size.height}};
}

} // namespace

std::optional<std::vector<WindowDescription>> X11WindowServer::copyWindowInfo(WindowListOption options,
                                                                              WindowID relativeTo) const {
    std::vector<WindowDescription> result;
    const auto add = [&](const ClientWindow& window) {
        result.push_back(describe(window, connection.toPoints(window.bounds)));
    };
    if ((options & windowListIncludingWindow) != 0) {
        if (const auto window = windows.describe(relativeTo)) {
            add(*window);
        }
    } else {
        for (const auto& window : windows.list()) {
            const bool isWanted =
                ((options & windowListOnScreenOnly) == 0 || window.isOnScreen) &&
                ((options & windowListExcludeDesktopElements) == 0 || window.kind != ClientWindow::Kind::desktop);
            if (isWanted) {
                add(window);
            }
        }
    }
    return connection.isAlive() ? std::optional(std::move(result)) : std::nullopt;
}

} // namespace quillon::x11
