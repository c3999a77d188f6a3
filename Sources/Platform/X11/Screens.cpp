#include "Platform/X11/Screens.h"

#include "Platform/NotificationCenter.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/ClientWindows.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/PropertyReply.h"

#include <xcb/randr.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace quillon::x11 {

namespace {

constexpr std::string_view workAreaProperty = "_NET_WORKAREA";
constexpr std::string_view desktopProperty = "_NET_CURRENT_DESKTOP";

/// Whether the server tells monitors, which RandR does since its version 1.5.
bool tellsMonitors(Connection& connection) {
    if (connection.randrEventBase() == 0) {
        return false;
    }
    const auto cookie = xcb_randr_query_version(connection.xcb(), 1, 5);
    const Reply<xcb_randr_query_version_reply_t> reply(
        xcb_randr_query_version_reply(connection.xcb(), cookie, nullptr));
    return reply && (reply->major_version > 1 || (reply->major_version == 1 && reply->minor_version >= 5));
}

} // namespace

X11Screens::X11Screens(Connection& connection, Scheduler& scheduler, NotificationCenter& notifications,
                       const ClientWindows& windows)
    : connection(connection), scheduler(scheduler), notifications(notifications), windows(windows),
      hasMonitors(tellsMonitors(connection)) {
    observeChanges();
    monitors = readMonitors();
    workArea = readWorkArea();
    connection.setPrimaryScreen(monitors.front());
}

void X11Screens::observeChanges() {
    rootSelection = connection.selectInput(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE);
    rootEvents = connection.observeWindow(connection.root(), [this](const auto& event) {
        if (eventType(event) == XCB_PROPERTY_NOTIFY) {
            const auto property = as<xcb_property_notify_event_t>(event).atom;
            if (property == connection.atom(workAreaProperty) || property == connection.atom(desktopProperty)) {
                scheduleUpdate();
            }
        }
    });
    const auto base = connection.randrEventBase();
    if (base == 0) {
        return;
    }
    const auto changed = [this](const auto&) { scheduleUpdate(); };
    screenChange =
        connection.observeEventType(static_cast<std::uint8_t>(base + XCB_RANDR_SCREEN_CHANGE_NOTIFY), changed);
    outputChange = connection.observeEventType(static_cast<std::uint8_t>(base + XCB_RANDR_NOTIFY), changed);
    xcb_randr_select_input(connection.xcb(), connection.root(),
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                               XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
}

/// One change of the setup brings several events, which are looked at together.
void X11Screens::scheduleUpdate() {
    if (std::exchange(isUpdateDue, true)) {
        return;
    }
    scheduler.mainAsync([this, alive = std::weak_ptr(lifetime)] {
        if (!alive.expired()) {
            update();
        }
    });
}

void X11Screens::update() {
    isUpdateDue = false;
    auto nowMonitors = readMonitors();
    const auto nowWorkArea = readWorkArea();
    if (nowMonitors == monitors && nowWorkArea == workArea) {
        return;
    }
    monitors = std::move(nowMonitors);
    workArea = nowWorkArea;
    connection.setPrimaryScreen(monitors.front());
    notifications.post(screenParametersDidChangeNotification);
}

std::vector<PixelRect> X11Screens::readMonitors() const {
    auto* const xcb = connection.xcb();
    const auto rootCookie = xcb_get_geometry(xcb, connection.root());
    std::vector<PixelRect> found;
    if (hasMonitors) {
        const auto cookie = xcb_randr_get_monitors(xcb, connection.root(), 1);
        const Reply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(xcb, cookie, nullptr));
        auto entries = reply ? xcb_randr_get_monitors_monitors_iterator(reply.get())
                             : xcb_randr_monitor_info_iterator_t{nullptr, 0, 0};
        for (; entries.rem > 0; xcb_randr_monitor_info_next(&entries)) {
            const auto& entry = *entries.data;
            const PixelRect monitor{entry.x, entry.y, entry.width, entry.height};
            found.insert(entry.primary != 0 ? found.begin() : found.end(), monitor);
        }
    }
    const Reply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(xcb, rootCookie, nullptr));
    if (found.empty()) {
        const auto& screen = connection.screen();
        found.push_back(
            {0, 0, root ? root->width : screen.width_in_pixels, root ? root->height : screen.height_in_pixels});
    }
    return found;
}

std::optional<PixelRect> X11Screens::readWorkArea() const {
    constexpr std::uint32_t numbersPerDesktop = 4; // left, top, width, height
    constexpr std::uint32_t mostDesktops = 64;
    const auto areasAtom = connection.atom(workAreaProperty);
    const auto desktopAtom = connection.atom(desktopProperty);
    PropertyReply areas(connection, connection.root(), areasAtom, mostDesktops * numbersPerDesktop);
    PropertyReply desktop(connection, connection.root(), desktopAtom, 1);
    areas.wait();
    desktop.wait();
    const auto numbers = areas.numbers();
    const std::size_t first = std::size_t{desktop.number().value_or(0)} * numbersPerDesktop;
    if (first + numbersPerDesktop > numbers.size()) {
        return std::nullopt;
    }
    // Anybody may have set it; no screen is larger.
    constexpr std::uint32_t longest = 65535;
    const auto number = [&](std::size_t index) { return static_cast<int>(std::min(numbers[first + index], longest)); };
    return PixelRect{number(0), number(1), number(2), number(3)};
}

Screen X11Screens::screen(const PixelRect& monitor) const {
    const auto free = monitor.intersection(workArea.value_or(monitor));
    const bool isFree = free.width > 0 && free.height > 0;
    return {connection.flipped(connection.toPoints(monitor)), connection.scale(),
            connection.flipped(connection.toPoints(isFree ? free : monitor))};
}

std::vector<Screen> X11Screens::screens() const {
    std::vector<Screen> result;
    std::transform(monitors.begin(), monitors.end(), std::back_inserter(result),
                   [this](const PixelRect& monitor) { return screen(monitor); });
    return result;
}

std::optional<Screen> X11Screens::mainScreen() const {
    const auto active = windows.activeWindow();
    const auto window = active ? windows.describe(*active) : std::nullopt;
    if (window) {
        const auto& bounds = window->bounds;
        const auto holder = std::find_if(monitors.begin(), monitors.end(), [&](const PixelRect& monitor) {
            return monitor.contains(PixelPoint{bounds.x + bounds.width / 2, bounds.y + bounds.height / 2});
        });
        if (holder != monitors.end()) {
            return screen(*holder);
        }
    }
    return screen(monitors.front());
}

ScreenPoint X11Screens::mouseLocation() const {
    const auto cookie = xcb_query_pointer(connection.xcb(), connection.root());
    const Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(connection.xcb(), cookie, nullptr));
    const PixelRect pixel{reply ? reply->root_x : 0, reply ? reply->root_y : 0, 1, 1};
    return connection.flipped(connection.toPoints(pixel)).origin;
}

} // namespace quillon::x11
