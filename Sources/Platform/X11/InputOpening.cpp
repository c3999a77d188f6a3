#include "Platform/X11/InputOpening.h"

#include "Platform/X11/PropertyReply.h"

#include <xcb/shape.h>

#include <algorithm>
#include <span>
#include <utility>

namespace quillon::x11 {

namespace {

/// On the root window: the window, the pixel's place in it and whether its input is plain, for every hole.
constexpr auto recordName = "_QUILLON_INPUT_HOLES";
constexpr std::size_t numbersPerHole = 4;

/// From the window up to the one whose parent is the root window; empty when it has closed.
std::vector<xcb_window_t> ancestorsOf(Connection& connection, xcb_window_t window) {
    std::vector<xcb_window_t> ancestors;
    while (window != connection.root()) {
        ancestors.push_back(window);
        const auto cookie = xcb_query_tree(connection.xcb(), window);
        const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection.xcb(), cookie, nullptr));
        if (!tree) {
            return {};
        }
        window = tree->parent;
    }
    return ancestors;
}

/// Bottom to top.
std::vector<xcb_window_t> windowsOver(Connection& connection, xcb_window_t outermost) {
    const auto cookie = xcb_query_tree(connection.xcb(), connection.root());
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection.xcb(), cookie, nullptr));
    if (!tree) {
        return {};
    }
    const auto* const first = xcb_query_tree_children(tree.get());
    const auto* const end = first + xcb_query_tree_children_length(tree.get());
    const auto* const own = std::find(first, end, outermost);
    return {own == end ? end : own + 1, end};
}

bool contains(const xcb_rectangle_t& rectangle, const PixelPoint& at) {
    return at.x >= rectangle.x && at.x < rectangle.x + rectangle.width && at.y >= rectangle.y &&
           at.y < rectangle.y + rectangle.height;
}

/// What decides whether a child of the root window takes the input at a place.
class InputShape {
public:
    InputShape(Connection& connection, xcb_window_t window)
        : xcb(connection.xcb()), window(window), attributesCookie(xcb_get_window_attributes(xcb, window)),
          geometryCookie(xcb_get_geometry(xcb, window)),
          shapeCookie(xcb_shape_get_rectangles(xcb, window, XCB_SHAPE_SK_INPUT)) {}

    /// Must follow, so that several can be asked for before the first is waited for.
    [[nodiscard]] std::optional<InputHole> holeAt(const PixelPoint& at) {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(xcb, attributesCookie, nullptr));
        const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(xcb, geometryCookie, nullptr));
        const Reply<xcb_shape_get_rectangles_reply_t> shape(xcb_shape_get_rectangles_reply(xcb, shapeCookie, nullptr));
        if (!attributes || !geometry || !shape || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
            return std::nullopt;
        }
        const int border = geometry->border_width;
        const PixelPoint inside{at.x - geometry->x - border, at.y - geometry->y - border};
        const std::span rectangles(xcb_shape_get_rectangles_rectangles(shape.get()),
                                   static_cast<std::size_t>(xcb_shape_get_rectangles_rectangles_length(shape.get())));
        // The server tells a plain window's rectangle without its border.
        const bool isPlain = rectangles.size() == 1 && rectangles[0].x == 0 && rectangles[0].y == 0 &&
                             rectangles[0].width == geometry->width && rectangles[0].height == geometry->height;
        const xcb_rectangle_t whole{static_cast<std::int16_t>(-border), static_cast<std::int16_t>(-border),
                                    static_cast<std::uint16_t>(geometry->width + 2 * border),
                                    static_cast<std::uint16_t>(geometry->height + 2 * border)};
        const bool takesInput = contains(whole, inside) &&
                                (isPlain || std::any_of(rectangles.begin(), rectangles.end(),
                                                        [&](const auto& part) { return contains(part, inside); }));
        return takesInput ? std::optional(InputHole{window, inside, isPlain}) : std::nullopt;
    }

private:
    xcb_connection_t* xcb;
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributesCookie;
    xcb_get_geometry_cookie_t geometryCookie;
    xcb_shape_get_rectangles_cookie_t shapeCookie;
};

/// Whether each window is what its parent shows at the place.
bool leadsThere(Connection& connection, std::span<const xcb_window_t> ancestors, const PixelPoint& at) {
    if (!InputShape(connection, ancestors.back()).holeAt(at)) {
        return false;
    }
    for (std::size_t index = ancestors.size() - 1; index > 0; --index) {
        const auto cookie = xcb_translate_coordinates(connection.xcb(), connection.root(), ancestors[index],
                                                      static_cast<std::int16_t>(at.x), static_cast<std::int16_t>(at.y));
        const Reply<xcb_translate_coordinates_reply_t> inside(
            xcb_translate_coordinates_reply(connection.xcb(), cookie, nullptr));
        if (!inside || inside->child != ancestors[index - 1]) {
            return false;
        }
    }
    return true;
}

void combine(Connection& connection, const InputHole& hole, xcb_shape_so_t operation) {
    const xcb_rectangle_t pixel{static_cast<std::int16_t>(hole.at.x), static_cast<std::int16_t>(hole.at.y), 1, 1};
    connection.mayFail(xcb_shape_rectangles(connection.xcb(), operation, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED,
                                            hole.window, 0, 0, 1, &pixel));
}

void close(Connection& connection, const InputHole& hole) {
    if (hole.isPlain) {
        connection.mayFail(
            xcb_shape_mask(connection.xcb(), XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, hole.window, 0, 0, XCB_PIXMAP_NONE));
    } else {
        combine(connection, hole, XCB_SHAPE_SO_UNION);
    }
}

} // namespace

std::optional<std::vector<InputHole>> findInputHoles(Connection& connection, xcb_window_t window,
                                                     const PixelPoint& at) {
    const auto ancestors = ancestorsOf(connection, window);
    if (ancestors.empty() || !leadsThere(connection, ancestors, at)) {
        return std::nullopt;
    }
    std::vector<InputShape> shapes;
    for (const auto other : windowsOver(connection, ancestors.back())) {
        shapes.emplace_back(connection, other);
    }
    std::vector<InputHole> holes;
    for (auto& shape : shapes) {
        if (const auto hole = shape.holeAt(at)) {
            holes.push_back(*hole);
        }
    }
    return holes;
}

InputOpening::InputOpening(Connection& connection, std::vector<InputHole> newHoles)
    : connection(connection), holes(std::move(newHoles)) {
    std::vector<std::uint32_t> record;
    for (const auto& [window, at, isPlain] : holes) {
        record.insert(record.end(), {window, static_cast<std::uint32_t>(at.x), static_cast<std::uint32_t>(at.y),
                                     std::uint32_t{isPlain}});
    }
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, connection.root(), connection.atom(recordName),
                        XCB_ATOM_CARDINAL, 32, static_cast<std::uint32_t>(record.size()), record.data());
    for (const auto& hole : holes) {
        combine(connection, hole, XCB_SHAPE_SO_SUBTRACT);
    }
}

InputOpening::~InputOpening() {
    for (const auto& hole : holes) {
        close(connection, hole);
    }
    xcb_delete_property(connection.xcb(), connection.root(), connection.atom(recordName));
}

void closeForgottenHoles(Connection& connection) {
    // In 4-byte units; far more than one run leaves.
    constexpr std::uint32_t longestRecord = 4096;
    PropertyReply record(connection, connection.root(), connection.atom(recordName), longestRecord);
    record.wait();
    for (auto rest = record.numbers(); rest.size() >= numbersPerHole; rest = rest.subspan(numbersPerHole)) {
        close(connection,
              {rest[0], {static_cast<std::int32_t>(rest[1]), static_cast<std::int32_t>(rest[2])}, rest[3] != 0});
    }
    xcb_delete_property(connection.xcb(), connection.root(), connection.atom(recordName));
}

} // namespace quillon::x11
