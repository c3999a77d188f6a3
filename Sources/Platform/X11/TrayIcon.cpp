#include "Platform/X11/TrayIcon.h"

#include "Platform/X11/DrawnPicture.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/Images.h"
#include "Platform/X11/SendEvent.h"
#include "Platform/X11/TrayManager.h"

#include <QCursor>
#include <QToolTip>

#include <algorithm>
#include <array>

namespace quillon::x11 {

namespace {

// The system tray protocol and XEmbed, freedesktop.org.
constexpr std::uint32_t requestDock = 0;
constexpr std::uint32_t embedVersion = 0;
constexpr std::uint32_t embedMapped = 1;

// WM_NORMAL_HINTS (ICCCM 4.1.2.3).
constexpr std::uint32_t minimumSizeHint = 16;

/// Ends with its window.
using WindowPicture = ServerObject<xcb_render_free_picture, Freeing::mayFail>;

/// Until the tray gives the icon another one.
constexpr std::uint16_t initialSide = 24; // points
/// Of the largest panels.
constexpr int largestSide = 256; // pixels

/// How long the pointer rests on the icon before its tool tip appears.
constexpr Seconds toolTipDelay{0.7};

} // namespace

TrayIcon::TrayIcon(Connection& connection, Scheduler& scheduler, const PictureFormats& formats,
                   const TrayManager& manager, const std::string& name)
    : connection(connection), scheduler(scheduler), formats(formats), manager(manager), trayWindow(manager.window()),
      window(xcb_generate_id(connection.xcb())) {
    createWindow(name);
    dock();
}

TrayIcon::~TrayIcon() {
    hideToolTip();
    // It may have gone with its tray.
    connection.mayFail(xcb_destroy_window(connection.xcb(), window));
}

void TrayIcon::createWindow(const std::string& name) {
    auto* const xcb = connection.xcb();
    visual = manager.iconVisual().value_or(connection.screen().root_visual);
    // Without alpha the tray shines through as the background, which needs the depth to be the tray's own.
    hasAlpha = formats.ofVisual(visual) == formats.argb32();
    if (!hasAlpha) {
        visual = connection.screen().root_visual;
    }
    constexpr std::uint8_t alphaDepth = 32;
    colormap = Colormap(connection);
    xcb_create_colormap(xcb, XCB_COLORMAP_ALLOC_NONE, colormap.id(), connection.root(), visual);
    xcb_create_window_value_list_t values{};
    values.background_pixmap = hasAlpha ? XCB_BACK_PIXMAP_NONE : XCB_BACK_PIXMAP_PARENT_RELATIVE;
    values.border_pixel = 0;
    // A tray that dies leaves the window on the root, where no window manager is to frame it.
    values.override_redirect = 1;
    values.event_mask = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_ENTER_WINDOW |
                        XCB_EVENT_MASK_LEAVE_WINDOW | XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    values.colormap = colormap.id();
    const auto side = static_cast<std::uint16_t>(initialSide * connection.scale());
    xcb_create_window_aux(xcb, hasAlpha ? alphaDepth : connection.screen().root_depth, window, connection.root(), 0, 0,
                          side, side, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                          XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK |
                              XCB_CW_COLORMAP,
                          &values);
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(name.size()), name.data());
    const auto embedInfo = connection.atom("_XEMBED_INFO");
    const std::array info{embedVersion, embedMapped};
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window, embedInfo, embedInfo, 32, info.size(), info.data());
    width = height = side;
    askForSide(side);
    events = connection.observeWindow(window, [this](const xcb_generic_event_t& event) { handle(event); });
}

/// Trays look for the wanted size in the hints, not at the window, and give one side by themselves.
void TrayIcon::askForSide(int side) {
    std::array<std::uint32_t, 18> hints{};
    hints[0] = minimumSizeHint;
    hints[5] = hints[6] = static_cast<std::uint32_t>(std::min(side, largestSide));
    connection.mayFail(xcb_change_property(connection.xcb(), XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NORMAL_HINTS,
                                           XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data()));
}

void TrayIcon::dock() {
    sendEvent(connection, trayWindow, XCB_EVENT_MASK_NO_EVENT,
              clientMessage(connection, trayWindow, "_NET_SYSTEM_TRAY_OPCODE",
                            {connection.latestTime(), requestDock, window}));
}

void TrayIcon::setImage(std::shared_ptr<Image> newImage, Appearance newAppearance) {
    image = std::move(newImage);
    appearance = newAppearance;
    draw();
}

void TrayIcon::setToolTip(const std::string& text) {
    toolTip = text;
    hideToolTip();
}

void TrayIcon::handle(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_EXPOSE:
        if (as<xcb_expose_event_t>(event).count == 0) {
            draw();
        }
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& place = as<xcb_configure_notify_event_t>(event);
        const bool isResized = place.width != width || place.height != height;
        width = place.width;
        height = place.height;
        if (isResized) {
            askForSide(std::max(width, height));
            draw();
        }
        break;
    }
    case XCB_DESTROY_NOTIFY:
        hideToolTip();
        break;
    case XCB_BUTTON_PRESS:
        handleButton(as<xcb_button_press_event_t>(event).detail, true);
        break;
    case XCB_BUTTON_RELEASE:
        handleButton(as<xcb_button_release_event_t>(event).detail, false);
        break;
    case XCB_ENTER_NOTIFY:
        showToolTipSoon();
        break;
    case XCB_LEAVE_NOTIFY:
        hideToolTip();
        break;
    default:
        break;
    }
}

/// The menu opens on the release, when the server has ended the grab that comes with the press. A release alone is
/// the end of a click that closed the menu.
void TrayIcon::handleButton(xcb_button_t button, bool isDown) {
    if (button != XCB_BUTTON_INDEX_1 && button != XCB_BUTTON_INDEX_3) {
        return;
    }
    hideToolTip();
    const bool wasDown = std::exchange(isPressed, isDown);
    if (wasDown && !isDown && onClick) {
        onClick();
    }
}

/// The window may have gone with its tray while the news of it is on the way, so that every request may fail.
void TrayIcon::draw() {
    auto* const xcb = connection.xcb();
    const WindowPicture picture(connection);
    connection.mayFail(
        xcb_render_create_picture(xcb, picture.id(), window, formats.ofVisual(visual).value_or(XCB_NONE), 0, nullptr));
    const auto pixelWidth = static_cast<std::uint16_t>(width);
    const auto pixelHeight = static_cast<std::uint16_t>(height);
    if (hasAlpha) {
        const xcb_rectangle_t all{0, 0, pixelWidth, pixelHeight};
        connection.mayFail(
            xcb_render_fill_rectangles(xcb, XCB_RENDER_PICT_OP_SRC, picture.id(), {0, 0, 0, 0}, 1, &all));
    } else {
        connection.mayFail(xcb_clear_area(xcb, 0, window, 0, 0, 0, 0));
    }
    if (!image) {
        return;
    }
    const auto drawn =
        upload(connection, formats, render(*image, QSize(width, height), manager.appearance().value_or(appearance)));
    connection.mayFail(xcb_render_composite(xcb, XCB_RENDER_PICT_OP_OVER, drawn.picture.id(), XCB_NONE, picture.id(), 0,
                                            0, 0, 0, 0, 0, pixelWidth, pixelHeight));
}

void TrayIcon::showToolTipSoon() {
    if (toolTip.empty()) {
        return;
    }
    toolTipTimer = scheduler.scheduleRepeatingTimer(toolTipDelay, [this] {
        QToolTip::showText(QCursor::pos(), QString::fromStdString(toolTip));
        toolTipTimer = nullptr;
    });
}

void TrayIcon::hideToolTip() {
    toolTipTimer = nullptr;
    QToolTip::hideText();
}

} // namespace quillon::x11
