#include "Platform/X11/WindowServer.h"

#include "Platform/X11/EndToken.h"
#include "Platform/X11/WindowAccess.h"

#include <algorithm>

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

RegistrationToken X11WindowServer::addCopy(WindowID window) {
    const std::lock_guard lock(copies->mutex);
    const auto entry = copies->windows.insert(window);
    return makeEndToken([shared = copies, entry] {
        const std::lock_guard endLock(shared->mutex);
        shared->windows.erase(entry);
    });
}

bool X11WindowServer::hasCopy(WindowID window) const {
    const std::lock_guard lock(copies->mutex);
    return copies->windows.contains(window);
}

/// The windows that the options ask for.
std::vector<ClientWindow> X11WindowServer::select(const ClientWindows& windows, WindowListOption options,
                                                  WindowID relativeTo) const {
    if ((options & windowListIncludingWindow) != 0) {
        auto window = windows.describe(relativeTo);
        return window ? std::vector{std::move(*window)} : std::vector<ClientWindow>();
    }
    auto all = windows.list();
    if ((options & windowListExcludeDesktopElements) != 0) {
        std::erase_if(all, [](const auto& window) { return window.kind == ClientWindow::Kind::desktop; });
    }
    if ((options & windowListOnScreenOnly) != 0) {
        std::erase_if(all, [this](const auto& window) { return !window.isOnScreen && !hasCopy(window.window); });
        std::stable_partition(all.begin(), all.end(), [](const auto& window) { return window.isOnScreen; });
    }
    return all;
}

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
