#include "Platform/X11/FocusKeeper.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/PostedEvents.h"
#include "Platform/X11/PropertyReply.h"
#include "Platform/X11/WindowManager.h"

#include <algorithm>

namespace quillon::x11 {

namespace {

/// How long after posted input a change of focus or order counts as its consequence, and how long a program may take
/// to open a menu. Measured: Qt and Chromium ask within some milliseconds, a busy machine takes longer.
constexpr std::chrono::milliseconds consequenceTime{300};

} // namespace

FocusKeeper::FocusKeeper(Connection& connection, Scheduler& scheduler, const ClientWindows& windows)
    : connection(connection), scheduler(scheduler), windows(windows),
      rootSelection(connection.selectInput(connection.root(), XCB_EVENT_MASK_PROPERTY_CHANGE)),
      rootEvents(connection.observeWindow(connection.root(), [this](const auto& event) { handle(event); })) {}

FocusKeeper::~FocusKeeper() {
    if (lent) {
        takeBack();
    }
}

bool FocusKeeper::willPost(const InputTarget& target, bool isPress) {
    guard(target.outermost);
    if (!isPress) {
        return false;
    }
    ++presses;
    menuEvents.reset();
    menuSelection.reset();
    return target.style == InputStyle::outermostWithFocus && lend(target.outermost);
}

void FocusKeeper::didReleaseAll(const InputTarget& target) {
    if (lent == target.outermost) {
        takeBackSoon();
    }
}

void FocusKeeper::guard(xcb_window_t window) {
    const auto now = Clock::now();
    if (!guarded || guarded->window != window || guarded->end < now) {
        guarded = Guarded{window, windows.activeWindow(), windows.windowOver(window), {}};
    }
    guarded->end = now + consequenceTime;
}

void FocusKeeper::handle(const xcb_generic_event_t& event) {
    if (!guarded || eventType(event) != XCB_PROPERTY_NOTIFY) {
        return;
    }
    const auto property = as<xcb_property_notify_event_t>(event).atom;
    if (property != connection.atom("_NET_ACTIVE_WINDOW") && property != connection.atom("_NET_CLIENT_LIST_STACKING")) {
        return;
    }
    if (Clock::now() > guarded->end) {
        guarded.reset();
        return;
    }
    restore();
}

void FocusKeeper::restore() {
    const auto active = windows.activeWindow();
    const bool tookFocus = active == guarded->window && guarded->active && guarded->active != guarded->window;
    const bool cameForward = guarded->over && windows.isOver(guarded->window, *guarded->over);
    if ((tookFocus && !isOnScreen(*guarded->active)) || ((tookFocus || cameForward) && isPointerIn(guarded->window))) {
        guarded.reset();
        return;
    }
    if (tookFocus) {
        activate(connection, *guarded->active);
    } else if (active) {
        guarded->active = active;
    }
    // The list of the windows may show only later that one that took the focus has come to the front, too.
    if (guarded->over && (tookFocus || cameForward) && isOnScreen(*guarded->over)) {
        restackBehind(connection, guarded->window, *guarded->over);
    }
}

/// Windows on other desktops are not, since window managers unmap them.
bool FocusKeeper::isOnScreen(xcb_window_t window) const {
    const auto found = windows.describe(window);
    return found && found->isOnScreen;
}

/// Whether the window, or the frame that it lies in, is the foremost one under the user's pointer.
bool FocusKeeper::isPointerIn(xcb_window_t window) const {
    auto* const xcb = connection.xcb();
    const auto pointerCookie = xcb_query_pointer(xcb, connection.root());
    const Reply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(xcb, pointerCookie, nullptr));
    if (!pointer || pointer->child == XCB_WINDOW_NONE) {
        return false;
    }
    while (window != pointer->child) {
        const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, xcb_query_tree(xcb, window), nullptr));
        if (!tree || tree->parent == connection.root()) {
            return false;
        }
        window = tree->parent;
    }
    return true;
}

bool FocusKeeper::lend(xcb_window_t window) {
    if (lent == window) {
        return false;
    }
    if (lent) {
        takeBack();
    }
    if (windows.activeWindow() != window) {
        lent = window;
        postFocus(connection, XCB_FOCUS_IN, window);
        return true;
    }
    return false;
}

void FocusKeeper::takeBackSoon() {
    scheduler.mainAfter(consequenceTime, weakly([press = presses](FocusKeeper& self) {
                            if (self.presses == press) {
                                self.takeBackUnlessMenuIsOpen();
                            }
                        }));
}

void FocusKeeper::takeBackUnlessMenuIsOpen() {
    menuEvents.reset();
    menuSelection.reset();
    if (!lent) {
        return;
    }
    const auto menu = openMenuOf(*lent);
    if (!menu) {
        takeBack();
        return;
    }
    // Closing the menu, whenever the user does it, is a consequence of what was posted, too.
    guard(*lent);
    guarded->end = Clock::time_point::max();
    menuSelection = connection.selectInput(*menu, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
    menuEvents = connection.observeWindow(*menu, [this](const auto& event) {
        const auto type = eventType(event);
        if (type == XCB_UNMAP_NOTIFY || type == XCB_DESTROY_NOTIFY) {
            menuClosed();
        }
    });
}

void FocusKeeper::menuClosed() {
    if (lent) {
        guard(*lent);
    }
    // Another menu may take its place.
    takeBackSoon();
}

void FocusKeeper::takeBack() {
    const auto window = *lent;
    lent.reset();
    const auto active = windows.activeWindow();
    if (active == window) {
        return; // it has really got the focus meanwhile
    }
    postFocus(connection, XCB_FOCUS_OUT, window);
    if (active && isSameProgram(*active, window)) {
        // The program has one focus, and thinks that nobody has it now.
        postFocus(connection, XCB_FOCUS_IN, *active);
    }
}

/// A window of the same program that the window manager has nothing to do with.
std::optional<xcb_window_t> FocusKeeper::openMenuOf(xcb_window_t window) const {
    auto* const xcb = connection.xcb();
    const auto cookie = xcb_query_tree(xcb, connection.root());
    const Reply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(xcb, cookie, nullptr));
    if (!tree) {
        return std::nullopt;
    }
    std::vector<std::pair<xcb_window_t, xcb_get_window_attributes_cookie_t>> requests;
    const auto* first = xcb_query_tree_children(tree.get());
    for (const auto* child = first; child != first + xcb_query_tree_children_length(tree.get()); ++child) {
        if (isSameProgram(*child, window)) {
            requests.emplace_back(*child, xcb_get_window_attributes(xcb, *child));
        }
    }
    std::optional<xcb_window_t> menu;
    for (const auto& [child, request] : requests) {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(xcb, request, nullptr));
        if (attributes && attributes->override_redirect != 0 && attributes->map_state == XCB_MAP_STATE_VIEWABLE &&
            attributes->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT) {
            menu = child;
        }
    }
    return menu;
}

/// The server gives every client its own range of numbers.
bool FocusKeeper::isSameProgram(xcb_window_t window, xcb_window_t other) const {
    const auto range = ~xcb_get_setup(connection.xcb())->resource_id_mask;
    return (window & range) == (other & range);
}

} // namespace quillon::x11
