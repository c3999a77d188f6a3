#include "Platform/X11/Connection.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/Handlers.h"
#include "Platform/X11/StandardError.h"
#include "Text.h"

#include <fmt/format.h>
#include <xcb/composite.h>
#include <xcb/damage.h>
#include <xcb/randr.h>
#include <xcb/render.h>
#include <xcb/res.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <optional>

namespace quillon::x11 {

void FreeReply::operator()(void* reply) const {
    std::free(reply);
}

struct Connection::Tables {
    struct PendingReply {
        std::uint64_t number = 0;
        std::function<void(void*)> handler;
    };
    struct Selection {
        std::map<std::uint64_t, std::uint32_t> masks;
    };

    /// Null once the connection is closed.
    xcb_connection_t* connection = nullptr;
    std::uint64_t nextNumber = 0;
    Handlers<xcb_window_t, const xcb_generic_event_t&> windows;
    Handlers<std::uint32_t, const xcb_generic_event_t&> damages;
    Handlers<std::uint8_t, const xcb_generic_event_t&> types;
    /// In the order of the requests, which is the order of the replies, until the 32 bits wrap.
    std::map<unsigned, PendingReply> replies;
    std::unordered_map<xcb_window_t, Selection> selections;

    void applySelection(xcb_window_t window);
    void endSelection(xcb_window_t window, std::uint64_t number);
    void endReply(unsigned sequence, std::uint64_t number);
    bool deliverReply(std::optional<unsigned> latest = std::nullopt);
};

namespace {

constexpr double dotsPerInchOfOnePoint = 96;

/// The window with respect to which a core event is reported.
std::optional<xcb_window_t> windowOf(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
    case XCB_MOTION_NOTIFY:
        return as<xcb_button_press_event_t>(event).event;
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
        return as<xcb_enter_notify_event_t>(event).event;
    // The remaining ones begin with their window, whatever the protocol calls it.
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT:
    case XCB_EXPOSE:
    case XCB_GRAPHICS_EXPOSURE:
    case XCB_NO_EXPOSURE:
    case XCB_VISIBILITY_NOTIFY:
    case XCB_CREATE_NOTIFY:
    case XCB_DESTROY_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_MAP_NOTIFY:
    case XCB_MAP_REQUEST:
    case XCB_REPARENT_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_CONFIGURE_REQUEST:
    case XCB_GRAVITY_NOTIFY:
    case XCB_RESIZE_REQUEST:
    case XCB_CIRCULATE_NOTIFY:
    case XCB_CIRCULATE_REQUEST:
    case XCB_PROPERTY_NOTIFY:
    case XCB_COLORMAP_NOTIFY:
    case XCB_CLIENT_MESSAGE:
        return as<xcb_focus_in_event_t>(event).event;
    case XCB_SELECTION_CLEAR:
        return as<xcb_selection_clear_event_t>(event).owner;
    case XCB_SELECTION_REQUEST:
        return as<xcb_selection_request_event_t>(event).owner;
    case XCB_SELECTION_NOTIFY:
        return as<xcb_selection_notify_event_t>(event).requestor;
    default:
        return std::nullopt;
    }
}

/// The server's time that a core event carries.
std::optional<xcb_timestamp_t> timeOf(const xcb_generic_event_t& event) {
    switch (eventType(event)) {
    case XCB_KEY_PRESS:
    case XCB_KEY_RELEASE:
    case XCB_BUTTON_PRESS:
    case XCB_BUTTON_RELEASE:
    case XCB_MOTION_NOTIFY:
    case XCB_ENTER_NOTIFY:
    case XCB_LEAVE_NOTIFY:
        return as<xcb_button_press_event_t>(event).time;
    case XCB_PROPERTY_NOTIFY:
        return as<xcb_property_notify_event_t>(event).time;
    default:
        return std::nullopt;
    }
}

void reportUnexpectedError(const xcb_generic_error_t& error) {
    complain(fmt::format("errore X inatteso {} (richiesta {}.{}, risorsa 0x{:x}): è un difetto di Quillon, segnalalo",
                         error.error_code, error.major_code, error.minor_code, error.resource_id));
}

std::string cannotConnectText() {
    const char* display = std::getenv("DISPLAY");
    if (display != nullptr && *display != '\0') {
        return fmt::format("Impossibile aprire il display X «{}»: controlla che il server X sia attivo, che DISPLAY "
                           "sia giusto e che l'accesso sia consentito (xauth)",
                           display);
    }
    if (std::getenv("WAYLAND_DISPLAY") != nullptr) {
        return "Una sessione Wayland senza X non è supportata: avvia Quillon in una sessione X11 o attiva Xwayland";
    }
    return "Nessun display X (DISPLAY non è impostata): avvia Quillon da una sessione X11";
}

struct Extension {
    xcb_extension_t* extension;
    const char* name;
};

/// What the program cannot do without.
const std::array<Extension, 4>& requiredExtensions() {
    static const std::array<Extension, 4> extensions{{{&xcb_composite_id, "Composite"},
                                                      {&xcb_damage_id, "DAMAGE"},
                                                      {&xcb_xfixes_id, "XFIXES"},
                                                      {&xcb_render_id, "RENDER"}}};
    return extensions;
}

/// Names what is missing; empty when all is there.
std::string missingExtensions(xcb_connection_t* connection) {
    std::string missing;
    for (const auto& [extension, name] : requiredExtensions()) {
        const auto* data = xcb_get_extension_data(connection, extension);
        if (data == nullptr || data->present == 0) {
            missing += (missing.empty() ? "" : ", ") + std::string(name);
        }
    }
    return missing;
}

bool hasExtension(xcb_connection_t* connection, xcb_extension_t& extension) {
    const auto* data = xcb_get_extension_data(connection, &extension);
    return data != nullptr && data->present != 0;
}

/// Each extension serves a client only after it was told the version that the client knows.
void announceVersions(xcb_connection_t* connection) {
    std::vector<unsigned> sequences{
        xcb_composite_query_version(connection, 0, 4).sequence,
        xcb_damage_query_version(connection, 1, 1).sequence,
        xcb_xfixes_query_version(connection, 5, 0).sequence,
        xcb_render_query_version(connection, 0, 11).sequence,
    };
    if (hasExtension(connection, xcb_randr_id)) {
        sequences.push_back(xcb_randr_query_version(connection, 1, 5).sequence);
    }
    if (hasExtension(connection, xcb_res_id)) {
        sequences.push_back(xcb_res_query_version(connection, 1, 2).sequence);
    }
    for (const auto sequence : sequences) {
        xcb_discard_reply(connection, sequence);
    }
}

/// The value of a resource in the text of the resource manager's property.
std::optional<double> numberResource(std::string_view resources, std::string_view name) {
    while (!resources.empty()) {
        const auto end = std::min(resources.find('\n'), resources.size());
        auto line = resources.substr(0, end);
        resources.remove_prefix(std::min(end + 1, resources.size()));
        if (!line.starts_with(name) || !line.substr(name.size()).starts_with(':')) {
            continue;
        }
        line.remove_prefix(std::min(line.find_first_not_of(": \t", name.size()), line.size()));
        if (const auto number = readLeadingNumber(line)) {
            return number->value;
        }
    }
    return std::nullopt;
}

double readScale(xcb_connection_t* connection, xcb_window_t root) {
    // In 4-byte units; far more than a resource database holds.
    constexpr std::uint32_t longestDatabase = 65536;
    const auto cookie =
        xcb_get_property(connection, 0, root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 0, longestDatabase);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 8) {
        return 1;
    }
    const std::string_view text(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
    const double density = numberResource(text, "Xft.dpi").value_or(dotsPerInchOfOnePoint);
    constexpr double steps = 4;
    constexpr double highest = 8;
    return std::clamp(std::round(density / dotsPerInchOfOnePoint * steps) / steps, 1.0, highest);
}

} // namespace

void Connection::Tables::applySelection(xcb_window_t window) {
    std::uint32_t mask = 0;
    const auto found = selections.find(window);
    if (found != selections.end()) {
        for (const auto& [number, bits] : found->second.masks) {
            mask |= bits;
        }
    }
    const auto cookie = xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &mask);
    xcb_discard_reply(connection, cookie.sequence);
}

void Connection::Tables::endSelection(xcb_window_t window, std::uint64_t number) {
    const auto found = selections.find(window);
    found->second.masks.erase(number);
    if (found->second.masks.empty()) {
        selections.erase(found);
    }
    if (connection != nullptr) {
        applySelection(window);
    }
}

void Connection::Tables::endReply(unsigned sequence, std::uint64_t number) {
    const auto found = replies.find(sequence);
    if (found == replies.end() || found->second.number != number) {
        return;
    }
    replies.erase(found);
    if (connection != nullptr) {
        xcb_discard_reply(connection, sequence);
    }
}

/// Hands out the first reply that has arrived, of the requests up to the latest one if that is given; false when
/// there is none.
bool Connection::Tables::deliverReply(std::optional<unsigned> latest) {
    for (auto entry = replies.begin(); entry != replies.end(); ++entry) {
        // Sequence numbers wrap, so their distance counts.
        if (latest && static_cast<std::int32_t>(entry->first - *latest) > 0) {
            continue;
        }
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(connection, entry->first, &reply, &error) == 0) {
            continue;
        }
        const Reply<void> owner(reply);
        const Reply<xcb_generic_error_t> errorOwner(error);
        const auto handler = std::move(entry->second.handler);
        replies.erase(entry);
        handler(reply);
        return true;
    }
    return false;
}

std::variant<std::unique_ptr<Connection>, std::string> Connection::open() {
    int screenNumber = 0;
    std::unique_ptr<Connection> made(new Connection());
    made->tables = std::make_shared<Tables>();
    made->connection = xcb_connect(nullptr, &screenNumber);
    auto* const xcb = made->connection;
    if (xcb_connection_has_error(xcb) != 0) {
        return cannotConnectText();
    }
    made->tables->connection = xcb;
    for (const auto& required : requiredExtensions()) {
        xcb_prefetch_extension_data(xcb, required.extension);
    }
    xcb_prefetch_extension_data(xcb, &xcb_randr_id);
    xcb_prefetch_extension_data(xcb, &xcb_res_id);
    if (const auto missing = missingExtensions(xcb); !missing.empty()) {
        return fmt::format("Al server X mancano estensioni necessarie ({}): attivale o usa un altro server X", missing);
    }
    announceVersions(xcb);

    auto screens = xcb_setup_roots_iterator(xcb_get_setup(xcb));
    made->defaultScreenNumber = screenNumber;
    for (; screenNumber > 0 && screens.rem > 1; --screenNumber) {
        xcb_screen_next(&screens);
    }
    made->defaultScreen = screens.data;
    made->damageBase = xcb_get_extension_data(xcb, &xcb_damage_id)->first_event;
    if (hasExtension(xcb, xcb_randr_id)) {
        made->randrBase = xcb_get_extension_data(xcb, &xcb_randr_id)->first_event;
    }
    made->pixelsPerPoint = readScale(xcb, made->root());
    made->primaryScreenPixels = {0, 0, made->defaultScreen->width_in_pixels, made->defaultScreen->height_in_pixels};
    if (!made->isAlive()) {
        return cannotConnectText();
    }
    return made;
}

Connection::~Connection() {
    tables->connection = nullptr;
    // The server drops what it has not looked at yet when a client leaves: the answer shows that it has.
    const Reply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_disconnect(connection);
}

xcb_atom_t Connection::atom(std::string_view name) {
    const auto known = atoms.find(std::string(name));
    if (known != atoms.end()) {
        return known->second;
    }
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    if (!reply) {
        return XCB_ATOM_NONE;
    }
    atoms.emplace(name, reply->atom);
    return reply->atom;
}

std::string Connection::selectionName(std::string_view kind) const {
    return fmt::format("{}_S{}", kind, defaultScreenNumber);
}

xcb_window_t Connection::selectionOwner(xcb_atom_t selection) {
    const auto cookie = xcb_get_selection_owner(connection, selection);
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

RegistrationToken Connection::observeWindow(xcb_window_t window, EventHandler handler) {
    return tables->windows.add(window, std::move(handler));
}

RegistrationToken Connection::observeDamage(std::uint32_t damage, EventHandler handler) {
    return tables->damages.add(damage, std::move(handler));
}

RegistrationToken Connection::observeEventType(std::uint8_t type, EventHandler handler) {
    return tables->types.add(type, std::move(handler));
}

RegistrationToken Connection::selectInput(xcb_window_t window, std::uint32_t eventMask) {
    const auto number = tables->nextNumber++;
    tables->selections[window].masks.emplace(number, eventMask);
    tables->applySelection(window);
    return makeEndToken([weak = std::weak_ptr(tables), window, number] {
        if (const auto alive = weak.lock()) {
            alive->endSelection(window, number);
        }
    });
}

RegistrationToken Connection::whenReplied(unsigned sequence, std::function<void(void*)> handler) {
    const auto number = tables->nextNumber++;
    tables->replies[sequence] = {number, std::move(handler)};
    return makeEndToken([weak = std::weak_ptr(tables), sequence, number] {
        if (const auto alive = weak.lock()) {
            alive->endReply(sequence, number);
        }
    });
}

void Connection::mayFail(xcb_void_cookie_t cookie) {
    xcb_discard_reply(connection, cookie.sequence);
}

void Connection::processEvents() {
    dispatchEvent(xcb_poll_for_event(connection));
    processReadEvents();
}

bool Connection::processReadEvents() {
    // A handler may wait for a reply, and events may be read meanwhile.
    bool hasHandled = false;
    while (isAlive() && (dispatchEvent(xcb_poll_for_queued_event(connection)) || tables->deliverReply())) {
        hasHandled = true;
    }
    return hasHandled;
}

/// Takes the event over; false when there is none.
bool Connection::dispatchEvent(xcb_generic_event_t* taken) {
    const Reply<xcb_generic_event_t> event(taken);
    if (!event) {
        return false;
    }
    // In the server's order: a reply may tell of a state that the event ends.
    while (tables->deliverReply(event->full_sequence)) {
    }
    dispatch(*event);
    return true;
}

void Connection::dispatch(const xcb_generic_event_t& event) {
    const auto type = eventType(event);
    if (event.response_type == 0) {
        reportUnexpectedError(as<xcb_generic_error_t>(event));
        return;
    }
    lastTimestamp = timeOf(event).value_or(lastTimestamp);
    tables->types.call(type, event);
    if (type == damageBase + XCB_DAMAGE_NOTIFY) {
        tables->damages.call(as<xcb_damage_notify_event_t>(event).damage, event);
    } else if (const auto window = windowOf(event)) {
        tables->windows.call(*window, event);
    }
}

DisplayRect Connection::toPoints(const PixelRect& rect) const {
    const auto screen = primaryScreen();
    return {{(rect.x - screen.x) / pixelsPerPoint, (rect.y - screen.y) / pixelsPerPoint},
            {rect.width / pixelsPerPoint, rect.height / pixelsPerPoint}};
}

PixelRect Connection::toPixels(const DisplayRect& rect) const {
    const auto pixels = [this](double points) { return static_cast<int>(std::lround(points * pixelsPerPoint)); };
    const auto screen = primaryScreen();
    return {screen.x + pixels(rect.origin.x), screen.y + pixels(rect.origin.y), pixels(rect.size.width),
            pixels(rect.size.height)};
}

PixelPoint Connection::toPixel(const DisplayPoint& point) const {
    // A point that a computation put a little before its pixel is meant to lie in it.
    constexpr double tolerance = 1.0 / 64;
    const auto pixel = [this](double points) {
        return static_cast<int>(std::floor(points * pixelsPerPoint + tolerance));
    };
    const auto screen = primaryScreen();
    return {screen.x + pixel(point.x), screen.y + pixel(point.y)};
}

ScreenRect Connection::flipped(const DisplayRect& rect) const {
    return {{rect.origin.x, primaryScreenHeight() - rect.maxY()}, rect.size};
}

DisplayRect Connection::flipped(const ScreenRect& rect) const {
    return {{rect.origin.x, primaryScreenHeight() - rect.maxY()}, rect.size};
}

} // namespace quillon::x11
