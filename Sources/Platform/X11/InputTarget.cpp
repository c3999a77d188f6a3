#include "Platform/X11/InputTarget.h"

#include "Platform/X11/PropertyReply.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

namespace quillon::x11 {

namespace {

/// GDK gives every outermost window a child for the keyboard focus: 1x1, to be seen by nobody, at (-1, -1).
bool isFocusWindowOfGDK(const xcb_get_geometry_reply_t& geometry) {
    constexpr std::uint8_t depthOfInputOnly = 0;
    return geometry.depth == depthOfInputOnly && geometry.x == -1 && geometry.y == -1 && geometry.width == 1 &&
           geometry.height == 1;
}

bool hasFocusWindowOfGDK(Connection& connection, const xcb_query_tree_reply_t& tree) {
    auto* const xcb = connection.xcb();
    const auto* first = xcb_query_tree_children(&tree);
    std::vector<xcb_get_geometry_cookie_t> requests;
    for (const auto* child = first; child != first + xcb_query_tree_children_length(&tree); ++child) {
        requests.push_back(xcb_get_geometry(xcb, *child));
    }
    bool found = false;
    for (const auto request : requests) {
        const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, request, nullptr));
        found = found || (geometry && isFocusWindowOfGDK(*geometry));
    }
    return found;
}

/// The innermost window at the place that wants presses; the outermost one when no part does.
xcb_window_t partAt(Connection& connection, xcb_window_t outermost, const PixelPoint& at) {
    auto* const xcb = connection.xcb();
    auto found = outermost;
    for (auto window = outermost; window != XCB_WINDOW_NONE;) {
        const auto insideCookie = xcb_translate_coordinates(
            xcb, connection.root(), window, static_cast<std::int16_t>(at.x), static_cast<std::int16_t>(at.y));
        const auto attributesCookie = xcb_get_window_attributes(xcb, window);
        const Reply<xcb_translate_coordinates_reply_t> inside(
            xcb_translate_coordinates_reply(xcb, insideCookie, nullptr));
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
        if (!inside || !attributes) {
            break;
        }
        if ((attributes->all_event_masks & XCB_EVENT_MASK_BUTTON_PRESS) != 0) {
            found = window;
        }
        window = inside->child;
    }
    return found;
}

/// Whether the program asks the window manager for no decorations (_MOTIF_WM_HINTS).
bool isUndecorated(std::span<const std::uint32_t> motifHints) {
    constexpr std::size_t flags = 0;
    constexpr std::size_t decorations = 2;
    constexpr std::uint32_t decorationsFlag = 2;
    return motifHints.size() > decorations && (motifHints[flags] & decorationsFlag) != 0 &&
           motifHints[decorations] == 0;
}

/// Asked of an outermost window of GDK. GTK 4 selects what XInput 2 does not tell out of all core events, hints of
/// motion too, which GTK 3 selects for nobody (seen in 4.8 and 3.24). To be wrong does no harm with GTK 3.
bool isGTK4(Connection& connection, xcb_window_t outermost) {
    const auto cookie = xcb_get_window_attributes(connection.xcb(), outermost);
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection.xcb(), cookie, nullptr));
    return attributes && (attributes->all_event_masks & XCB_EVENT_MASK_POINTER_MOTION_HINT) != 0;
}

/// Qt says of every outermost window how it could be embedded into another program's one (seen in 5.15 and 6.4).
bool isQt(Connection& connection, xcb_window_t outermost) {
    PropertyReply embedding(connection, outermost, connection.atom("_XEMBED_INFO"), 1);
    embedding.wait();
    return embedding.type() != XCB_ATOM_NONE;
}

} // namespace

std::optional<InputTarget> findInputTarget(Connection& connection, xcb_window_t outermost, const PixelPoint& at) {
    const auto cookie = xcb_query_tree(connection.xcb(), outermost);
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection.xcb(), cookie, nullptr));
    if (!tree) {
        return std::nullopt;
    }
    if (hasFocusWindowOfGDK(connection, *tree)) {
        const auto route = isGTK4(connection, outermost) ? InputRoute::secondPointer : InputRoute::postedEvents;
        return InputTarget{outermost, outermost, InputStyle::outermost, route, route};
    }
    const auto part = partAt(connection, outermost, at);
    if (part != outermost) {
        return InputTarget{outermost, part, InputStyle::parts};
    }
    const auto wheelRoute = isQt(connection, outermost) ? InputRoute::secondPointer : InputRoute::postedEvents;
    return InputTarget{outermost, outermost, InputStyle::outermostWithFocus, InputRoute::postedEvents, wheelRoute};
}

OwnDecoration ownDecorationAt(Connection& connection, xcb_window_t outermost, const PixelPoint& at) {
    // In points; the sizes of GTK 3.24's own theme.
    constexpr double titleBarHeight = 47;
    constexpr double solidBorder = 5;
    constexpr std::uint32_t motifHintsLength = 5;
    const auto extentsAtom = connection.atom("_GTK_FRAME_EXTENTS");
    const auto motifAtom = connection.atom("_MOTIF_WM_HINTS");
    const auto cookie = xcb_get_geometry(connection.xcb(), outermost);
    PropertyReply extents(connection, outermost, extentsAtom, 4);
    PropertyReply motif(connection, outermost, motifAtom, motifHintsLength);
    extents.wait();
    motif.wait();
    const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection.xcb(), cookie, nullptr));
    const auto pixels = [&connection](double points) {
        return static_cast<int>(std::lround(points * connection.scale()));
    };
    // Left, right, top, bottom: shadows that lie within the window, or a border where no compositor shows shadows.
    std::array<int, 4> sides{};
    if (extents.numbers().size() == sides.size()) {
        std::copy_n(extents.numbers().begin(), sides.size(), sides.begin());
    } else if (isUndecorated(motif.numbers())) {
        sides.fill(pixels(solidBorder));
    } else {
        return OwnDecoration::none;
    }
    const auto [left, right, top, bottom] = sides;
    if (!geometry || at.x < left || at.y < top || at.x >= geometry->width - right ||
        at.y >= geometry->height - bottom) {
        return OwnDecoration::border;
    }
    return at.y < top + pixels(titleBarHeight) ? OwnDecoration::titleBar : OwnDecoration::none;
}

} // namespace quillon::x11
