#pragma once

#include "Platform/ProcessInfo.h"
#include "Platform/X11/Connection.h"

#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace quillon::x11 {

/// A window of some application as the server and the window manager describe it.
struct ClientWindow {
    enum class Kind {
        ordinary,
        desktop,
        dock,
        /// A menu, a tooltip, a notification and the like: passes over other windows.
        transitory,
    };

    xcb_window_t window = XCB_WINDOW_NONE;
    /// The process that it belongs to; none for a client on another host.
    std::optional<ProcessID> owner;
    /// Safe text, as `safeText` makes it.
    std::optional<std::string> title;
    /// The application's name, from the window's class; safe text.
    std::optional<std::string> applicationName;
    /// The client area, without the frame that a window manager adds.
    PixelRect bounds;
    Kind kind = Kind::ordinary;
    bool isOverrideRedirect = false;
    bool hasPicture = true; ///< not InputOnly
    /// Neither minimised nor hidden nor on another desktop.
    bool isOnScreen = false;

    /// Whether it is a window that the application's user works in.
    [[nodiscard]] bool isOrdinaryOf(ProcessID pid) const { return owner == pid && kind == Kind::ordinary; }
};

/// Widths in pixels, at least 0.
struct Margins {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};

/// What belongs to a window's looks beside its content.
struct WindowMargins {
    /// The window manager's frame, around the client area (_NET_FRAME_EXTENTS).
    Margins frame;
    /// The shadow that the program draws, inside the client area (_GTK_FRAME_EXTENTS).
    Margins shadow;
};

/// Reads windows from the server and the window manager. The requests for all windows go out together, so that a
/// list costs a few round trips, however long it is. A window that closes meanwhile is left out. The thread is the
/// connection's.
class ClientWindows {
public:
    explicit ClientWindows(Connection& connection) : connection(connection) {}

    /// The windows that the window manager manages, front to back; without a window manager, the windows that are
    /// shown.
    [[nodiscard]] std::vector<ClientWindow> list() const;
    /// The numbers of those windows, in no particular order.
    [[nodiscard]] std::vector<xcb_window_t> numbers() const;
    /// In the order of the argument, in one round trip; all desktops count as the current one.
    [[nodiscard]] std::vector<ClientWindow> describe(std::span<const xcb_window_t> windows) const;
    [[nodiscard]] std::optional<ClientWindow> describe(xcb_window_t window) const;
    [[nodiscard]] WindowMargins margins(xcb_window_t window) const;
    [[nodiscard]] bool hasManager() const;
    /// The window that the window manager calls active; none without a window manager.
    [[nodiscard]] std::optional<xcb_window_t> activeWindow() const;
    /// The managed window directly over that one; none for the topmost one.
    [[nodiscard]] std::optional<xcb_window_t> windowOver(xcb_window_t window) const;
    /// Whether both are managed and the first lies over the second.
    [[nodiscard]] bool isOver(xcb_window_t window, xcb_window_t other) const;

private:
    struct Desktop;

    [[nodiscard]] Desktop readDesktop() const;
    [[nodiscard]] bool isManagerAlive(xcb_window_t check) const;
    [[nodiscard]] std::vector<xcb_window_t> childrenOfRoot() const;
    [[nodiscard]] std::vector<ClientWindow> describe(std::span<const xcb_window_t> windows,
                                                     std::optional<std::uint32_t> currentDesktop) const;
    void findOwners(std::vector<ClientWindow>& windows) const;

    Connection& connection;
};

/// The name of the application that the process runs, when no window tells it; none when there is no such process.
[[nodiscard]] std::optional<std::string> processName(ProcessID pid);

} // namespace quillon::x11
