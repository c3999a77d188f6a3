#include "Platform/X11/SourceWindow.h"

#include "Platform/X11/EndToken.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/WindowManager.h"

#include <xcb/composite.h>

#include <algorithm>
#include <utility>

namespace quillon::x11 {

namespace {

/// How long an application gets to redraw what was covered when its window was redirected or mapped: until then the
/// server has only the window's background there. Toolkits redraw within a frame or two; one that hangs must not
/// hold its picture back for long.
constexpr std::chrono::milliseconds timeToRedraw{100};

} // namespace

SourceWindow::SourceWindow(Connection& connection, xcb_window_t window, bool isWhole)
    : connection(connection), window(window), wasWhole(isWhole) {
    events = connection.observeWindow(window, [this](const auto& event) { handle(event); });
    selection = connection.selectInput(window, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    auto* const xcb = connection.xcb();
    connection.mayFail(xcb_composite_redirect_window(xcb, window, XCB_COMPOSITE_REDIRECT_AUTOMATIC));
    geometryReply = connection.whenReplied(xcb_get_geometry(xcb, window).sequence, [this](void* reply) {
        if (const auto* found = static_cast<const xcb_get_geometry_reply_t*>(reply)) {
            geometry.width = found->width;
            geometry.height = found->height;
            geometry.border = found->border_width;
            geometry.depth = found->depth;
        }
    });
    attributesReply = connection.whenReplied(xcb_get_window_attributes(xcb, window).sequence,
                                             [this](void* reply) { attributesArrived(reply); });
}

SourceWindow::~SourceWindow() {
    if (currentState != State::gone) {
        connection.mayFail(xcb_composite_unredirect_window(connection.xcb(), window, XCB_COMPOSITE_REDIRECT_AUTOMATIC));
    }
}

void SourceWindow::whenKnown(Task task) {
    if (settled) {
        task();
    } else {
        waiting.push_back(std::move(task));
    }
}

RegistrationToken SourceWindow::observe(Handlers handlers) {
    const int number = nextObserver++;
    observers->emplace(number, std::move(handlers));
    return makeEndToken([weak = std::weak_ptr(observers), number] {
        if (const auto alive = weak.lock()) {
            alive->erase(number);
        }
    });
}

void SourceWindow::attributesArrived(const void* reply) {
    const auto* attributes = static_cast<const xcb_get_window_attributes_reply_t*>(reply);
    if (attributes == nullptr || attributes->_class == XCB_WINDOW_CLASS_INPUT_ONLY) {
        becomeGone();
        return;
    }
    currentState = State::present;
    geometry.visual = attributes->visual;
    mapped = attributes->map_state == XCB_MAP_STATE_VIEWABLE;
    if (mapped) {
        if (!wasWhole) {
            complete = std::chrono::steady_clock::now() + timeToRedraw;
        }
        namePicture();
    } else {
        becomeKnown();
    }
}

void SourceWindow::handle(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_MAP_NOTIFY:
        mapped = true;
        complete = std::chrono::steady_clock::now() + timeToRedraw;
        namePicture();
        break;
    case XCB_UNMAP_NOTIFY:
        mapped = false;
        break;
    case XCB_CONFIGURE_NOTIFY: {
        const auto& notice = as<xcb_configure_notify_event_t>(event);
        configured(notice.width, notice.height, notice.border_width);
        break;
    }
    case XCB_DESTROY_NOTIFY:
        becomeGone();
        break;
    default:
        break;
    }
}

/// Only another size makes the server give the window another pixmap. The window manager's notices of moves (sent
/// events) carry the size too.
void SourceWindow::configured(int width, int height, int border) {
    if (width == geometry.width && height == geometry.height && border == geometry.border) {
        return;
    }
    geometry.width = width;
    geometry.height = height;
    geometry.border = border;
    namePicture();
}

void SourceWindow::namePicture() {
    if (currentState != State::present) {
        return; // the reply with the window's state is on its way and leads here
    }
    auto* const xcb = connection.xcb();
    pictureReply.reset();
    pending = NamedPixmap(connection);
    connection.mayFail(xcb_composite_name_window_pixmap(xcb, window, pending.id()));
    pictureReply = connection.whenReplied(xcb_get_geometry(xcb, pending.id()).sequence,
                                          [this](void* reply) { pictureArrived(reply); });
}

/// The pixmap's own size counts: the window's may be older or newer. Without a reply the window is not mapped (any
/// more), and the picture there is remains.
void SourceWindow::pictureArrived(const void* pixmapGeometry) {
    const auto* pixmap = static_cast<const xcb_get_geometry_reply_t*>(pixmapGeometry);
    if (pixmap == nullptr) {
        pending.reset();
        becomeKnown();
        return;
    }
    auto shape = geometry;
    shape.width = pixmap->width - 2 * geometry.border;
    shape.height = pixmap->height - 2 * geometry.border;
    shape.depth = pixmap->depth;
    current = std::make_shared<CapturedPicture>(connection, std::move(pending), shape);
    if (!settled) {
        becomeKnown();
    } else {
        call(&Handlers::pictureReplaced);
    }
}

void SourceWindow::becomeGone() {
    if (currentState == State::gone) {
        return;
    }
    currentState = State::gone;
    mapped = false;
    pictureReply.reset();
    if (!settled) {
        becomeKnown();
    } else {
        call(&Handlers::gone);
    }
}

void SourceWindow::becomeKnown() {
    settled = true;
    const auto tasks = std::exchange(waiting, {});
    for (const auto& task : tasks) {
        task();
    }
}

void SourceWindow::call(std::function<void()> Handlers::*handler) {
    const auto registered = observers;
    const auto now = *registered;
    for (const auto& [number, handlers] : now) {
        if (registered->contains(number)) {
            (handlers.*handler)();
        }
    }
}

std::shared_ptr<SourceWindow> SourceWindows::hold(xcb_window_t window) {
    // A window that has gone may have left its number to another one.
    if (auto alive = held[window].lock(); alive && alive->state() != SourceWindow::State::gone) {
        return alive;
    }
    std::erase_if(held, [](const auto& entry) { return entry.second.expired(); });
    auto made = std::make_shared<SourceWindow>(connection, window, isWhole(window));
    held[window] = made;
    return made;
}

/// A compositor keeps what is covered too. Without one, the window in front usually is whole; beneath ordinary windows,
/// whose frames are not known here, none counts as visible.
bool SourceWindows::isWhole(xcb_window_t window) const {
    if (hasCompositor(connection)) {
        return true;
    }
    const auto list = windows.list();
    const auto found = std::ranges::find_if(list, [window](const ClientWindow& each) { return each.window == window; });
    const auto& screen = connection.screen();
    const PixelRect visible{0, 0, screen.width_in_pixels, screen.height_in_pixels};
    if (found == list.end() || !found->isOnScreen || !visible.contains(found->bounds)) {
        return false;
    }
    return std::none_of(list.begin(), found, [&](const ClientWindow& over) {
        return over.isOnScreen && (over.kind == ClientWindow::Kind::ordinary || over.bounds.intersects(found->bounds));
    });
}

} // namespace quillon::x11
