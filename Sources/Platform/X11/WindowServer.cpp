#include "Platform/X11/WindowServer.h"

#include "Platform/X11/WindowAccess.h"

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

/// The windows that the options ask for.
std::vector<ClientWindow> select(const ClientWindows& windows, WindowListOption options, WindowID relativeTo) {
    if ((options & windowListIncludingWindow) != 0) {
        auto window = windows.describe(relativeTo);
        return window ? std::vector{std::move(*window)} : std::vector<ClientWindow>();
    }
    auto all = windows.list();
    std::erase_if(all, [&](const ClientWindow& window) {
        return ((options & windowListOnScreenOnly) != 0 && !window.isOnScreen) ||
               ((options & windowListExcludeDesktopElements) != 0 && window.kind == ClientWindow::Kind::desktop);
    });
    return all;
}

} // namespace

std::optional<std::vector<WindowDescription>> X11WindowServer::copyWindowInfo(WindowListOption options,
                                                                              WindowID relativeTo) const {
    const auto found = access.with([&](const Connection& connection, const ClientWindows& windows) {
        auto selected = select(windows, options, relativeTo);
        return connection.isAlive() ? std::optional(std::move(selected)) : std::nullopt;
    });
    if (!found) {
        return std::nullopt;
    }
    std::vector<WindowDescription> result;
    for (const auto& window : *found) {
        result.push_back(describe(window, access.toPoints(window.bounds)));
    }
    return result;
}

} // namespace quillon::x11
