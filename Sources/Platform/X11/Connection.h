#pragma once

#include "Platform/Geometry.h"
#include "Platform/Registration.h"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

namespace quillon::x11 {

struct FreeReply {
    void operator()(void* reply) const;
};
/// Owns a reply, an error or an event of xcb; null when there is none.
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

/// A pixel of the root window, or of a window: origin top left, y downwards.
struct PixelPoint {
    int x = 0;
    int y = 0;

    bool operator==(const PixelPoint&) const = default;
};

/// A rectangle in pixels of the root window, or of a drawable: origin top left, y downwards.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] bool contains(const PixelPoint& point) const {
        return point.x >= x && point.x < x + width && point.y >= y && point.y < y + height;
    }
    /// Whether the other one lies inside, edges included.
    [[nodiscard]] bool contains(const PixelRect& other) const {
        return other.x >= x && other.y >= y && other.x + other.width <= x + width &&
               other.y + other.height <= y + height;
    }
    /// Without an area when the two share no pixel.
    [[nodiscard]] PixelRect intersection(const PixelRect& other) const {
        const int left = std::max(x, other.x);
        const int top = std::max(y, other.y);
        return {left, top, std::max(std::min(x + width, other.x + other.width) - left, 0),
                std::max(std::min(y + height, other.y + other.height) - top, 0)};
    }
    /// Whether the two share a pixel.
    [[nodiscard]] bool intersects(const PixelRect& other) const {
        return other.x < x + width && x < other.x + other.width && other.y < y + height && y < other.y + other.height;
    }

    bool operator==(const PixelRect&) const = default;
};

/// The one connection to the X server, which all ports share: requests go out in the order of the calls, and
/// events are handed to whoever observes their window. Main thread.
///
/// Requests are buffered. The event loop flushes before it waits; whoever needs a request to have reached the
/// server earlier flushes by itself. A request that may fail in the ordinary course of life (its window may have
/// closed) is passed through `mayFail`; any other error is a bug and is reported on the standard error.
class Connection {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// Connects to the display that the environment names and looks for the extensions that the program cannot do
    /// without (Composite, Damage, XFixes, Render). The text is one Italian line that says what is wrong and what
    /// to do.
    static std::variant<std::unique_ptr<Connection>, std::string> open();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] xcb_connection_t* xcb() const { return connection; }
    [[nodiscard]] const xcb_screen_t& screen() const { return *defaultScreen; }
    [[nodiscard]] xcb_window_t root() const { return defaultScreen->root; }
    /// The name of the selection of that kind that stands for this screen: _XSETTINGS_S0 for _XSETTINGS.
    [[nodiscard]] std::string selectionName(std::string_view kind) const;

    /// The atom of that name; made when the server has none. Asked for once, then remembered.
    [[nodiscard]] xcb_atom_t atom(std::string_view name);
    /// None (XCB_WINDOW_NONE) when nobody owns the selection.
    [[nodiscard]] xcb_window_t selectionOwner(xcb_atom_t selection);

    /// The number of an extension's first event.
    [[nodiscard]] std::uint8_t damageEventBase() const { return damageBase; }
    /// 0 when the server lacks the extension.
    [[nodiscard]] std::uint8_t randrEventBase() const { return randrBase; }

    /// Pixels per point, the same on all screens: the desktop's density (the Xft.dpi resource) over 96, in
    /// quarters, at least 1. Read once.
    [[nodiscard]] double scale() const { return pixelsPerPoint; }

    /// Calls the handler for every event that is reported with respect to the window (the `event` field of
    /// structure events, the window of property, expose and input events), until the token is destroyed. A window
    /// may have several observers. Selecting the events at the server is the caller's affair; see `selectInput`.
    [[nodiscard]] RegistrationToken observeWindow(xcb_window_t window, EventHandler handler);
    /// Adds event mask bits to what this connection selects on the window; the bits of several callers add up and
    /// end with the tokens. The window may have closed.
    [[nodiscard]] RegistrationToken selectInput(xcb_window_t window, std::uint32_t eventMask);
    /// Calls the handler for every event of that Damage object.
    [[nodiscard]] RegistrationToken observeDamage(std::uint32_t damage, EventHandler handler);
    /// Calls the handler for every event of that type, whatever its window.
    [[nodiscard]] RegistrationToken observeEventType(std::uint8_t type, EventHandler handler);
    /// Calls the handler with the reply, or with null when the request failed, once it has arrived, without
    /// waiting for it. `sequence` is the sequence number of the request's cookie. Drops the reply when the token is
    /// destroyed earlier.
    [[nodiscard]] RegistrationToken whenReplied(unsigned sequence, std::function<void(void*)> handler);

    /// The request's error, if it comes, is part of life.
    void mayFail(xcb_void_cookie_t cookie);

    void flush() { xcb_flush(connection); }
    /// Dispatches every event and reply that has arrived. Called by the event loop.
    void processEvents();
    /// The same without looking for new ones: those that were read on the way, while a reply was waited for or
    /// requests were sent. False when there were none.
    bool processReadEvents();
    /// False once the server has gone.
    [[nodiscard]] bool isAlive() const { return xcb_connection_has_error(connection) == 0; }
    /// The server's time of the latest event that carried one (CurrentTime before the first).
    [[nodiscard]] xcb_timestamp_t latestTime() const { return lastTimestamp; }

    // Coordinates: pixels of the root window to and from points, whose origin is the primary screen's top left. Any
    // thread.
    [[nodiscard]] DisplayRect toPoints(const PixelRect& rect) const;
    [[nodiscard]] PixelRect toPixels(const DisplayRect& rect) const;
    /// The pixel of the root window that the point lies in.
    [[nodiscard]] PixelPoint toPixel(const DisplayPoint& point) const;
    /// Between the window server's and AppKit's coordinates, against the height of the primary screen.
    [[nodiscard]] ScreenRect flipped(const DisplayRect& rect) const;
    [[nodiscard]] DisplayRect flipped(const ScreenRect& rect) const;
    /// The height of the primary screen in points.
    [[nodiscard]] double primaryScreenHeight() const { return primaryScreen().height / pixelsPerPoint; }
    /// Kept up to date by the screens port; the whole root window before that.
    void setPrimaryScreen(const PixelRect& pixels) {
        const std::lock_guard lock(primaryScreenMutex);
        primaryScreenPixels = pixels;
    }

private:
    Connection() = default;

    [[nodiscard]] PixelRect primaryScreen() const {
        const std::lock_guard lock(primaryScreenMutex);
        return primaryScreenPixels;
    }

    bool dispatchEvent(xcb_generic_event_t* taken);
    void dispatch(const xcb_generic_event_t& event);

    struct Tables;
    xcb_connection_t* connection = nullptr;
    const xcb_screen_t* defaultScreen = nullptr;
    int defaultScreenNumber = 0;
    std::uint8_t damageBase = 0;
    std::uint8_t randrBase = 0;
    double pixelsPerPoint = 1;
    mutable std::mutex primaryScreenMutex;
    PixelRect primaryScreenPixels;
    xcb_timestamp_t lastTimestamp = XCB_CURRENT_TIME;
    std::unordered_map<std::string, xcb_atom_t> atoms;
    /// Shared with the tokens, which may outlive the connection.
    std::shared_ptr<Tables> tables;
};

} // namespace quillon::x11
