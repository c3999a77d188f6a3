#pragma once

#include "Platform/X11/ClientWindows.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>

namespace quillon::x11 {

/// The way to windows from any thread. The main thread uses the connection that all ports share; the other threads
/// use, one at a time, a connection of their own, which is opened when one of them needs it first. Nobody waits for
/// events of that one.
class WindowAccess {
public:
    /// On the main thread, with what it uses there.
    WindowAccess(Connection& connection, const ClientWindows& windows)
        : mainConnection(connection), mainWindows(windows), mainThread(std::this_thread::get_id()) {}
    ~WindowAccess();

    /// Calls `use(Connection&, const ClientWindows&)` and returns what it returns; a default value when the server
    /// cannot be reached. The connection is for requests only.
    template <class Use>
    std::invoke_result_t<Use, Connection&, const ClientWindows&> with(Use use) const {
        if (std::this_thread::get_id() == mainThread) {
            return use(mainConnection, mainWindows);
        }
        const std::lock_guard lock(mutex);
        if (!openSideConnection()) {
            return std::invoke_result_t<Use, Connection&, const ClientWindows&>();
        }
        const Finisher finisher{*sideConnection};
        return use(*sideConnection, ClientWindows(*sideConnection));
    }

    /// The window that was last raised, until it is asked for; the window manager's list may show it in front only
    /// later.
    void setRaisedWindow(xcb_window_t window) const { raisedWindow = window; }
    [[nodiscard]] xcb_window_t takeRaisedWindow() const { return raisedWindow.exchange(XCB_WINDOW_NONE); }

    /// Pixels of the root window in points; the other connection does not learn which screen is the primary one.
    [[nodiscard]] DisplayRect toPoints(const PixelRect& rect) const { return mainConnection.toPoints(rect); }

private:
    /// No event loop flushes the side connection, and the server sends every client some events (MappingNotify).
    struct Finisher {
        Connection& connection;
        ~Finisher() {
            connection.flush();
            connection.processReadEvents();
        }
    };

    [[nodiscard]] bool openSideConnection() const;

    Connection& mainConnection;
    const ClientWindows& mainWindows;
    std::thread::id mainThread;
    mutable std::atomic<xcb_window_t> raisedWindow = XCB_WINDOW_NONE;
    /// Held while another thread than the main one uses the side connection.
    mutable std::mutex mutex;
    mutable std::unique_ptr<Connection> sideConnection;
};

} // namespace quillon::x11
