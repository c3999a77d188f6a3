#include "Platform/X11/TrayManager.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/PropertyReply.h"

#include <numeric>
#include <vector>

namespace quillon::x11 {

namespace {

/// The window's property of that type, whose items have 32 bits; at most `most` items. Empty when it is missing.
std::vector<std::uint32_t> numbers(Connection& connection, xcb_window_t window, std::string_view name, xcb_atom_t type,
                                   std::uint32_t most) {
    PropertyReply reply(connection, window, connection.atom(name), most);
    reply.wait();
    const auto all = reply.numbers();
    return reply.type() == type ? std::vector(all.begin(), all.end()) : std::vector<std::uint32_t>();
}

} // namespace

TrayManager::TrayManager(Connection& connection)
    : connection(connection), selection(connection.atom(connection.selectionName("_NET_SYSTEM_TRAY"))) {
    // A new tray announces itself on the root window.
    announcementSelection = connection.selectInput(connection.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    announcements = connection.observeWindow(connection.root(), [this](const xcb_generic_event_t& event) {
        if (eventType(event) != XCB_CLIENT_MESSAGE) {
            return;
        }
        const auto& message = as<xcb_client_message_event_t>(event);
        if (message.type == this->connection.atom("MANAGER") && message.data.data32[1] == selection) {
            look();
        }
    });
    look();
}

void TrayManager::look() {
    auto* const xcb = connection.xcb();
    // The owner must not go between the question and the selection of its events.
    xcb_grab_server(xcb);
    const auto owner = connection.selectionOwner(selection);
    const bool isOther = owner != manager;
    if (isOther) {
        watch(owner);
    }
    xcb_ungrab_server(xcb);
    // Every other program waits until then.
    connection.flush();
    if (isOther) {
        announce();
    }
}

void TrayManager::announce() {
    if (onChange) {
        onChange();
    }
}

void TrayManager::watch(xcb_window_t owner) {
    managerEvents = nullptr;
    managerSelection = nullptr;
    manager = owner;
    if (manager == XCB_NONE) {
        return;
    }
    managerSelection = connection.selectInput(manager, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    managerEvents = connection.observeWindow(manager, [this](const xcb_generic_event_t& event) {
        if (eventType(event) == XCB_DESTROY_NOTIFY) {
            // The next tray's window may get the same number; it is another one all the same.
            watch(XCB_NONE);
            announce();
            look();
        }
    });
}

std::optional<xcb_visualid_t> TrayManager::iconVisual() const {
    const auto visual = numbers(connection, manager, "_NET_SYSTEM_TRAY_VISUAL", XCB_ATOM_VISUALID, 1);
    return visual.empty() ? std::nullopt : std::optional(visual.front());
}

std::optional<Appearance> TrayManager::appearance() const {
    // Red, green and blue of the foreground, 16 bits each; the error, warning and success colours follow.
    const auto foreground = numbers(connection, manager, "_NET_SYSTEM_TRAY_COLORS", XCB_ATOM_CARDINAL, 3);
    if (foreground.size() < 3) {
        return std::nullopt;
    }
    constexpr std::uint32_t middle = 3 * 0x8000;
    const auto lightness = std::accumulate(foreground.begin(), foreground.end(), std::uint32_t{0});
    return lightness > middle ? Appearance::darkAqua : Appearance::aqua;
}

} // namespace quillon::x11
