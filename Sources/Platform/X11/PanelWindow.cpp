#include "Platform/X11/PanelWindow.h"

#include "Platform/X11/PropertyReply.h"
#include "Platform/X11/WindowManager.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <unistd.h>

namespace quillon::x11 {

namespace {

/// A client message comes from an ordinary application.
constexpr std::uint32_t fromApplication = 1;

// WM_NORMAL_HINTS and WM_HINTS (ICCCM 4.1.2.3, 4.1.2.4).
constexpr std::uint32_t userPosition = 1;
constexpr std::uint32_t userSize = 2;
constexpr std::uint32_t givenGravity = 512;
constexpr std::uint32_t inputHint = 1;
constexpr std::uint32_t stateHint = 2;
constexpr std::uint32_t normalState = 1;

// _MOTIF_WM_HINTS.
constexpr std::uint32_t motifFunctions = 1;
constexpr std::uint32_t motifDecorations = 2;
constexpr std::uint32_t motifMove = 4;

/// The window state that stands for a level other than the normal one.
std::string_view levelState(int level) {
    return level > normalWindowLevel ? "_NET_WM_STATE_ABOVE" : "_NET_WM_STATE_BELOW";
}

} // namespace

PanelWindow::PanelWindow(Connection& connection, const PixelRect& rect, std::uint8_t depth, xcb_visualid_t visual,
                         bool isManaged)
    : connection(connection), window(xcb_generate_id(connection.xcb())), windowDepth(depth), managed(isManaged),
      colormap(connection) {
    auto* const xcb = connection.xcb();
    xcb_create_colormap(xcb, XCB_COLORMAP_ALLOC_NONE, colormap.id(), connection.root(), visual);
    // Without a background the server leaves the last picture in place until the next one is drawn.
    xcb_create_window_value_list_t values{};
    values.background_pixmap = XCB_BACK_PIXMAP_NONE;
    values.border_pixel = 0;
    values.bit_gravity = XCB_GRAVITY_NORTH_WEST;
    values.override_redirect = managed ? 0 : 1;
    values.colormap = colormap.id();
    xcb_create_window_aux(
        xcb, depth, window, connection.root(), static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
        static_cast<std::uint16_t>(std::max(rect.width, 1)), static_cast<std::uint16_t>(std::max(rect.height, 1)), 0,
        XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
        XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_BIT_GRAVITY | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
        &values);
    describe();
}

PanelWindow::~PanelWindow() {
    xcb_destroy_window(connection.xcb(), window);
}

void PanelWindow::describe() {
    constexpr std::string_view title = "Quillon";
    setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, title);
    setText(connection.atom("_NET_WM_NAME"), connection.atom("UTF8_STRING"), title);
    using namespace std::string_view_literals;
    setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, "quillon\0Quillon\0"sv);
    std::array<char, 256> host{};
    if (gethostname(host.data(), host.size() - 1) == 0) {
        setText(XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, host.data());
    }
    setNumbers("_NET_WM_PID", XCB_ATOM_CARDINAL, {static_cast<std::uint32_t>(getpid())});
    setNumbers("_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, {connection.atom("_NET_WM_WINDOW_TYPE_UTILITY")});
    // Both say that the window is not to get the focus when it appears, nor later.
    setNumbers("_NET_WM_USER_TIME", XCB_ATOM_CARDINAL, {0});
    setNumbers("WM_HINTS", connection.atom("WM_HINTS"), {inputHint | stateHint, 0, normalState, 0, 0, 0, 0, 0, 0});
    setNumbers("_MOTIF_WM_HINTS", connection.atom("_MOTIF_WM_HINTS"),
               {motifFunctions | motifDecorations, motifMove, 0, 0, 0});
    // The window's own place and size count; the fields for them are obsolete.
    setNumbers(
        "WM_NORMAL_HINTS", connection.atom("WM_SIZE_HINTS"),
        {userPosition | userSize | givenGravity, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, XCB_GRAVITY_STATIC});
}

void PanelWindow::move(const PixelRect& rect) {
    const std::array values{static_cast<std::uint32_t>(rect.x), static_cast<std::uint32_t>(rect.y),
                            static_cast<std::uint32_t>(std::max(rect.width, 1)),
                            static_cast<std::uint32_t>(std::max(rect.height, 1))};
    xcb_configure_window(connection.xcb(), window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
}

void PanelWindow::map(const PanelStacking& stacking) {
    writeStacking(stacking);
    xcb_map_window(connection.xcb(), window);
}

void PanelWindow::unmap() {
    xcb_unmap_window(connection.xcb(), window);
    // Tells the window manager that the window is withdrawn even if it was not mapped yet (ICCCM 4.1.4).
    xcb_unmap_notify_event_t notice{};
    notice.response_type = XCB_UNMAP_NOTIFY;
    notice.event = connection.root();
    notice.window = window;
    tellManager(connection, notice);
}

void PanelWindow::writeStacking(const PanelStacking& stacking) {
    std::vector<std::uint32_t> states{connection.atom("_NET_WM_STATE_SKIP_TASKBAR"),
                                      connection.atom("_NET_WM_STATE_SKIP_PAGER")};
    if (stacking.level != normalWindowLevel) {
        states.push_back(connection.atom(levelState(stacking.level)));
    }
    auto* const xcb = connection.xcb();
    if (stacking.onAllDesktops) {
        states.push_back(connection.atom("_NET_WM_STATE_STICKY"));
        setNumbers("_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, {allDesktops});
    } else {
        xcb_delete_property(xcb, window, connection.atom("_NET_WM_DESKTOP")); // the current one
    }
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, connection.atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        static_cast<std::uint32_t>(states.size()), states.data());
}

void PanelWindow::changeStacking(const PanelStacking& from, const PanelStacking& to) {
    if (!managed) {
        return;
    }
    if (from.level != to.level) {
        // The old state goes first: some window managers return to the normal layer when either one goes.
        if (from.level != normalWindowLevel) {
            changeState(false, levelState(from.level));
        }
        if (to.level != normalWindowLevel) {
            changeState(true, levelState(to.level));
        }
    }
    if (from.onAllDesktops != to.onAllDesktops) {
        changeState(to.onAllDesktops, "_NET_WM_STATE_STICKY");
        // Window managers without desktops may lack the property; there is nothing to change then.
        PropertyReply current(connection, connection.root(), connection.atom("_NET_CURRENT_DESKTOP"), 1);
        current.wait();
        if (const auto desktop = current.number()) {
            askManager(connection, window, "_NET_WM_DESKTOP",
                       {to.onAllDesktops ? allDesktops : *desktop, fromApplication});
        }
    }
}

void PanelWindow::restack(xcb_stack_mode_t mode) {
    const std::uint32_t value = mode;
    xcb_configure_window(connection.xcb(), window, XCB_CONFIG_WINDOW_STACK_MODE, &value);
}

void PanelWindow::setOpacity(double opacity) {
    constexpr auto opaque = std::numeric_limits<std::uint32_t>::max();
    const auto value = static_cast<std::uint32_t>(std::lround(std::clamp(opacity, 0.0, 1.0) * opaque));
    if (value == opaque) {
        xcb_delete_property(connection.xcb(), window, connection.atom("_NET_WM_WINDOW_OPACITY"));
    } else {
        setNumbers("_NET_WM_WINDOW_OPACITY", XCB_ATOM_CARDINAL, {value});
    }
}

void PanelWindow::changeState(bool add, std::string_view state) {
    askManager(connection, window, "_NET_WM_STATE", {add ? 1U : 0U, connection.atom(state), 0, fromApplication});
}

void PanelWindow::setNumbers(std::string_view property, xcb_atom_t type, std::initializer_list<std::uint32_t> numbers) {
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, window, connection.atom(property), type, 32,
                        static_cast<std::uint32_t>(numbers.size()), std::data(numbers));
}

void PanelWindow::setText(xcb_atom_t property, xcb_atom_t type, std::string_view text) {
    xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, window, property, type, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
}

} // namespace quillon::x11
