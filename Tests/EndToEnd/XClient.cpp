#include "XClient.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <xcb/composite.h>
#include <xcb/res.h>
#include <xcb/xtest.h>

namespace quillon::e2e {

namespace {

constexpr Milliseconds betweenLooks{20};
/// A window that is not managed after this time was overlooked.
constexpr Milliseconds overlookedAfter{250};
/// _NET_WM_STATE_REMOVE, _NET_WM_STATE_ADD
constexpr std::uint32_t stateRemove = 0;
constexpr std::uint32_t stateAdd = 1;
/// Source indication of a pager: the window manager does what it says.
constexpr std::uint32_t sourcePager = 2;
/// ICCCM IconicState.
constexpr std::uint32_t iconicState = 3;
constexpr std::uint32_t allPlanes = ~0U;
constexpr std::uint32_t longestProperty = 1U << 20;

} // namespace

XClient::XClient(const std::string& displayName) {
    connection = xcb_connect(displayName.c_str(), nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        throw std::runtime_error("no connection to " + displayName);
    }
    screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection, root(), XCB_CW_EVENT_MASK, &mask);
    // A request of an extension that the server lacks would end the connection.
    if (hasExtension(xcb_composite_id)) {
        std::free(
            xcb_composite_query_version_reply(connection, xcb_composite_query_version(connection, 0, 4), nullptr));
    }
}

XClient::~XClient() {
    xcb_disconnect(connection);
}

bool XClient::hasExtension(xcb_extension_t& extension) const {
    const auto* data = xcb_get_extension_data(connection, &extension);
    return data != nullptr && data->present != 0;
}

xcb_atom_t XClient::atom(std::string_view name) const {
    if (const auto known = atoms.find(name); known != atoms.end()) {
        return known->second;
    }
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    return atoms[std::string(name)] = reply ? reply->atom : 0;
}

void XClient::dropEvents() const {
    while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
    }
}

bool XClient::waitUntil(const std::function<bool()>& condition, Milliseconds bound) const {
    const auto deadline = std::chrono::steady_clock::now() + bound;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
        xcb_flush(connection);
        pollfd entry{xcb_get_file_descriptor(connection), POLLIN, 0};
        poll(&entry, 1, betweenLooks.count());
        dropEvents();
    }
    return true;
}

bool XClient::holdsFor(const std::function<bool()>& condition, Milliseconds time) const {
    return !waitUntil([&] { return !condition(); }, time);
}

// The desktop

bool XClient::managesNewWindows() const {
    const Window window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root(), 0, 0, 10, 10, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection, window);
    const auto isManaged = [&] {
        const auto windows = managedWindows();
        return std::find(windows.begin(), windows.end(), window) != windows.end();
    };
    const bool managed = waitUntil(isManaged, overlookedAfter);
    xcb_destroy_window(connection, window);
    return managed && waitUntil([&] { return !isManaged(); });
}

bool XClient::hasCompositor() const {
    const auto cookie = xcb_get_selection_owner(connection, atom("_NET_WM_CM_S0"));
    const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply && reply->owner != XCB_NONE;
}

void XClient::setResourceManager(const std::string& text) const {
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, root(), XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(text.size()), text.data());
    xcb_flush(connection);
}

Window XClient::activeWindow() const {
    const auto value = property(root(), "_NET_ACTIVE_WINDOW");
    return value.empty() ? Window{XCB_NONE} : value.front();
}

std::uint32_t XClient::currentDesktop() const {
    const auto value = property(root(), "_NET_CURRENT_DESKTOP");
    return value.empty() ? 0 : value.front();
}

void XClient::switchToDesktop(std::uint32_t desktop) const {
    askWindowManager(root(), "_NET_CURRENT_DESKTOP", {desktop, XCB_CURRENT_TIME});
}

// Windows

std::vector<std::uint32_t> XClient::property(Window window, std::string_view name) const {
    const auto cookie =
        xcb_get_property(connection, 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longestProperty);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {values, values + reply->value_len};
}

std::vector<Window> XClient::managedWindows() const {
    return property(root(), "_NET_CLIENT_LIST");
}

std::vector<Window> XClient::managedWindowsOf(pid_t process) const {
    auto windows = managedWindows();
    const auto processes = processesOfClients();
    std::erase_if(windows, [&](Window window) {
        const auto entry = processes.find(clientBase(window));
        return entry == processes.end() || entry->second != process;
    });
    std::sort(windows.begin(), windows.end());
    return windows;
}

std::vector<Window> XClient::children(Window window) const {
    const Reply<xcb_query_tree_reply_t> reply(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!reply) {
        return {};
    }
    const auto* first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

std::string XClient::nameOf(Window window) const {
    constexpr std::uint32_t longest = 64;
    const auto cookie = xcb_get_property(connection, 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 0, longest);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection, cookie, nullptr));
    if (!reply) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())),
            static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
}

std::optional<Window> XClient::visibleDescendantNamed(Window window, const std::string& name) const {
    for (const auto child : children(window)) {
        if (nameOf(child) == name && isViewable(child)) {
            return child;
        }
        if (const auto found = visibleDescendantNamed(child, name)) {
            return found;
        }
    }
    return std::nullopt;
}

std::optional<Window> XClient::visibleWindowNamed(const std::string& name) const {
    return visibleDescendantNamed(root(), name);
}

std::vector<Window> XClient::visibleWindowsOf(pid_t process) const {
    const auto processes = processesOfClients();
    const auto isOwn = [&](Window window) {
        const auto entry = processes.find(clientBase(window));
        return entry != processes.end() && entry->second == process;
    };
    std::vector<Window> result;
    const auto addIfVisible = [&](Window window) {
        const auto where = place(window);
        if (where && where->width > 1 && where->height > 1 && isViewable(window)) {
            result.push_back(window);
        }
    };
    for (const auto outer : children(root())) {
        if (isOwn(outer)) {
            addIfVisible(outer);
            continue;
        }
        // A frame of the window manager.
        for (const auto inner : children(outer)) {
            if (isOwn(inner)) {
                addIfVisible(inner);
            }
        }
    }
    return result;
}

std::uint32_t XClient::clientBase(std::uint32_t resource) const {
    return resource & ~xcb_get_setup(connection)->resource_id_mask;
}

std::map<std::uint32_t, pid_t> XClient::processesOfClients() const {
    const xcb_res_client_id_spec_t all{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(connection, 1, &all);
    const Reply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(connection, cookie, nullptr));
    std::map<std::uint32_t, pid_t> result;
    if (!reply) {
        return result;
    }
    for (auto entry = xcb_res_query_client_ids_ids_iterator(reply.get()); entry.rem > 0;
         xcb_res_client_id_value_next(&entry)) {
        if (xcb_res_client_id_value_value_length(entry.data) > 0) {
            result[clientBase(entry.data->spec.client)] =
                static_cast<pid_t>(*xcb_res_client_id_value_value(entry.data));
        }
    }
    return result;
}

std::optional<pid_t> XClient::ownerOf(Window window) const {
    const auto processes = processesOfClients();
    const auto entry = processes.find(clientBase(window));
    return entry == processes.end() ? std::nullopt : std::optional(entry->second);
}

std::optional<Rect> XClient::place(Window window) const {
    const auto geometryCookie = xcb_get_geometry(connection, window);
    const auto originCookie = xcb_translate_coordinates(connection, window, root(), 0, 0);
    const Reply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection, geometryCookie, nullptr));
    const Reply<xcb_translate_coordinates_reply_t> origin(
        xcb_translate_coordinates_reply(connection, originCookie, nullptr));
    if (!geometry || !origin) {
        return std::nullopt;
    }
    return Rect{origin->dst_x, origin->dst_y, geometry->width, geometry->height};
}

bool XClient::isViewable(Window window) const {
    const auto cookie = xcb_get_window_attributes(connection, window);
    const Reply<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(connection, cookie, nullptr));
    return reply && reply->map_state == XCB_MAP_STATE_VIEWABLE && reply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
}

std::optional<std::size_t> XClient::stackingPosition(Window window) const {
    const auto outermost = children(root());
    for (std::size_t position = 0; position < outermost.size(); ++position) {
        const auto inner = children(outermost[position]);
        if (outermost[position] == window || std::find(inner.begin(), inner.end(), window) != inner.end()) {
            return position;
        }
    }
    return std::nullopt;
}

bool XClient::isAbove(Window window, Window other) const {
    const auto position = stackingPosition(window);
    const auto otherPosition = stackingPosition(other);
    return position && otherPosition && *position > *otherPosition;
}

// What a user asks of the window manager

void XClient::sendMessageTo(Window destination, std::uint32_t mask, Window window, std::string_view type,
                            const std::vector<std::uint32_t>& data) const {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(type);
    std::copy(data.begin(), data.end(), std::begin(event.data.data32));
    xcb_send_event(connection, 0, destination, mask, reinterpret_cast<const char*>(&event));
    xcb_flush(connection);
}

void XClient::sendMessage(Window window, std::string_view type, const std::vector<std::uint32_t>& data) const {
    sendMessageTo(window, XCB_EVENT_MASK_NO_EVENT, window, type, data);
}

void XClient::askWindowManager(Window window, std::string_view type, const std::vector<std::uint32_t>& data) const {
    sendMessageTo(root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT, window, type,
                  data);
}

void XClient::waitForWindowManager() const {
    const Window window = xcb_generate_id(connection);
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &mask);
    askWindowManager(window, "_NET_REQUEST_FRAME_EXTENTS", {});
    const bool answered = waitUntil([&] { return !property(window, "_NET_FRAME_EXTENTS").empty(); });
    xcb_destroy_window(connection, window);
    if (!answered) {
        throw std::runtime_error("the window manager does not answer");
    }
}

void XClient::activate(Window window) const {
    askWindowManager(window, "_NET_ACTIVE_WINDOW", {sourcePager, XCB_CURRENT_TIME, XCB_NONE});
}

void XClient::moveResize(Window window, const Rect& place) const {
    // Static gravity: the numbers are the client's own place, not its frame's.
    constexpr std::uint32_t gravity = XCB_GRAVITY_STATIC;
    constexpr std::uint32_t allFour = 0xf00;
    askWindowManager(window, "_NET_MOVERESIZE_WINDOW",
                     {gravity | allFour | (sourcePager << 12), static_cast<std::uint32_t>(place.x),
                      static_cast<std::uint32_t>(place.y), static_cast<std::uint32_t>(place.width),
                      static_cast<std::uint32_t>(place.height)});
}

void XClient::minimise(Window window) const {
    askWindowManager(window, "WM_CHANGE_STATE", {iconicState});
}

void XClient::closeWindow(Window window) const {
    askWindowManager(window, "_NET_CLOSE_WINDOW", {XCB_CURRENT_TIME, sourcePager});
}

void XClient::setFullScreen(Window window, bool on) const {
    askWindowManager(window, "_NET_WM_STATE",
                     {on ? stateAdd : stateRemove, atom("_NET_WM_STATE_FULLSCREEN"), XCB_NONE, sourcePager});
}

void XClient::setTitle(Window window, const std::string& bytes) const {
    for (const auto& [name, type] : {std::pair{"_NET_WM_NAME", "UTF8_STRING"}, std::pair{"WM_NAME", "STRING"}}) {
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, atom(name), atom(type), 8,
                            static_cast<std::uint32_t>(bytes.size()), bytes.data());
    }
    xcb_flush(connection);
}

// Pictures

Picture XClient::image(xcb_drawable_t drawable, const Rect& part) const {
    const auto cookie =
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, drawable, static_cast<std::int16_t>(part.x),
                      static_cast<std::int16_t>(part.y), static_cast<std::uint16_t>(part.width),
                      static_cast<std::uint16_t>(part.height), allPlanes);
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, nullptr));
    if (!reply) {
        return {};
    }
    Picture picture{part.width, part.height, {}};
    picture.pixels.resize(static_cast<std::size_t>(part.width * part.height));
    std::memcpy(picture.pixels.data(), xcb_get_image_data(reply.get()),
                picture.pixels.size() * sizeof(picture.pixels.front()));
    return picture;
}

Picture XClient::screenPicture(const Rect& place) const {
    const int left = std::max(place.x, 0);
    const int top = std::max(place.y, 0);
    const int right = std::min(place.x + place.width, static_cast<int>(screen->width_in_pixels));
    const int bottom = std::min(place.y + place.height, static_cast<int>(screen->height_in_pixels));
    if (right <= left || bottom <= top) {
        return {};
    }
    return image(root(), {left, top, right - left, bottom - top});
}

Picture XClient::wholeScreen() const {
    // Its size when the connection was made may be history.
    return screenPicture(place(root()).value_or(Rect()));
}

std::optional<Picture> XClient::windowPicture(Window window) const {
    const xcb_pixmap_t pixmap = xcb_generate_id(connection);
    const auto named = xcb_composite_name_window_pixmap_checked(connection, window, pixmap);
    const Reply<xcb_generic_error_t> error(xcb_request_check(connection, named));
    if (error) {
        return std::nullopt;
    }
    // The size of the pixmap, which may lag behind the window's.
    const Reply<xcb_get_geometry_reply_t> size(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, pixmap), nullptr));
    auto picture = size ? std::optional(image(pixmap, {0, 0, size->width, size->height})) : std::nullopt;
    xcb_free_pixmap(connection, pixmap);
    return picture;
}

// Real input

void XClient::fakeInput(std::uint8_t type, std::uint8_t detail, int x, int y) const {
    fakeInputWithoutFlush(type, detail, x, y);
    xcb_flush(connection);
}

void XClient::fakeInputWithoutFlush(std::uint8_t type, std::uint8_t detail, int x, int y) const {
    xcb_test_fake_input(connection, type, detail, XCB_CURRENT_TIME, root(), static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
}

void XClient::movePointer(int x, int y) const {
    fakeInput(XCB_MOTION_NOTIFY, 0, x, y);
}

XClient::Place XClient::pointer() const {
    const Reply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root()), nullptr));
    return reply ? Place{reply->root_x, reply->root_y} : Place();
}

void XClient::pressButton(std::uint8_t button) const {
    fakeInput(XCB_BUTTON_PRESS, button, 0, 0);
}

void XClient::releaseButton(std::uint8_t button) const {
    fakeInput(XCB_BUTTON_RELEASE, button, 0, 0);
}

void XClient::pressKey(std::uint8_t key) const {
    fakeInput(XCB_KEY_PRESS, key, 0, 0);
}

void XClient::releaseKey(std::uint8_t key) const {
    fakeInput(XCB_KEY_RELEASE, key, 0, 0);
}

void XClient::turnAutoRepeatOn() const {
    const std::uint32_t on = XCB_AUTO_REPEAT_MODE_ON;
    xcb_change_keyboard_control(connection, XCB_KB_AUTO_REPEAT_MODE, &on);
    xcb_flush(connection);
}

void XClient::type(const std::vector<std::uint8_t>& keys) const {
    for (const auto key : keys) {
        fakeInputWithoutFlush(XCB_KEY_PRESS, key, 0, 0);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        fakeInputWithoutFlush(XCB_KEY_RELEASE, *key, 0, 0);
    }
    xcb_flush(connection);
}

std::optional<std::string> XClient::selectedText() const {
    const Window requestor = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, requestor, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_convert_selection(connection, requestor, XCB_ATOM_PRIMARY, atom("UTF8_STRING"), XCB_ATOM_PRIMARY,
                          XCB_CURRENT_TIME);
    std::optional<std::string> text;
    std::ignore = waitUntil(
        [&] {
            const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
                connection,
                xcb_get_property(connection, 0, requestor, XCB_ATOM_PRIMARY, XCB_GET_PROPERTY_TYPE_ANY, 0, 4096),
                nullptr));
            if (!reply || reply->type == XCB_ATOM_NONE) {
                return false;
            }
            text.emplace(static_cast<const char*>(xcb_get_property_value(reply.get())),
                         static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
            return true;
        },
        Milliseconds(500));
    xcb_destroy_window(connection, requestor);
    xcb_flush(connection);
    return text;
}

bool XClient::grabKey(std::uint8_t key, std::uint16_t modifiers) const {
    const auto cookie =
        xcb_grab_key_checked(connection, 0, root(), modifiers, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const Reply<xcb_generic_error_t> error(xcb_request_check(connection, cookie));
    return !error;
}

void XClient::ungrabKey(std::uint8_t key, std::uint16_t modifiers) const {
    xcb_ungrab_key(connection, key, root(), modifiers);
    xcb_flush(connection);
}

// Synthetic input

void XClient::postInput(std::uint8_t type, std::uint8_t detail, Window window, int x, int y,
                        std::uint16_t state) const {
    const auto origin = place(window).value_or(Rect());
    // Key and button events have one layout.
    xcb_button_press_event_t event{};
    event.response_type = type;
    event.detail = detail;
    event.root = root();
    event.event = window;
    event.root_x = static_cast<std::int16_t>(origin.x + x);
    event.root_y = static_cast<std::int16_t>(origin.y + y);
    event.event_x = static_cast<std::int16_t>(x);
    event.event_y = static_cast<std::int16_t>(y);
    event.state = state;
    event.same_screen = 1;
    xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
    xcb_flush(connection);
}

void XClient::postClick(Window window, int x, int y) const {
    const auto origin = place(window).value_or(Rect());
    // GTK takes no click from a pointer that has not entered.
    xcb_enter_notify_event_t enter{};
    enter.response_type = XCB_ENTER_NOTIFY;
    enter.detail = XCB_NOTIFY_DETAIL_NONLINEAR;
    enter.root = root();
    enter.event = window;
    enter.root_x = static_cast<std::int16_t>(origin.x + x);
    enter.root_y = static_cast<std::int16_t>(origin.y + y);
    enter.event_x = static_cast<std::int16_t>(x);
    enter.event_y = static_cast<std::int16_t>(y);
    enter.mode = XCB_NOTIFY_MODE_NORMAL;
    enter.same_screen_focus = 1;
    xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&enter));
    postInput(XCB_BUTTON_PRESS, XCB_BUTTON_INDEX_1, window, x, y, 0);
    postInput(XCB_BUTTON_RELEASE, XCB_BUTTON_INDEX_1, window, x, y, XCB_BUTTON_MASK_1);
}

void XClient::postKey(Window window, std::uint8_t keyCode) const {
    postInput(XCB_KEY_PRESS, keyCode, window, 0, 0, 0);
    postInput(XCB_KEY_RELEASE, keyCode, window, 0, 0, 0);
}

// Resources

ServerResources XClient::resourcesOf(pid_t process) const {
    ServerResources result;
    for (const auto& [base, owner] : processesOfClients()) {
        if (owner != process) {
            continue;
        }
        const auto countsCookie = xcb_res_query_client_resources(connection, base);
        const auto bytesCookie = xcb_res_query_client_pixmap_bytes(connection, base);
        const Reply<xcb_res_query_client_resources_reply_t> counts(
            xcb_res_query_client_resources_reply(connection, countsCookie, nullptr));
        const Reply<xcb_res_query_client_pixmap_bytes_reply_t> bytes(
            xcb_res_query_client_pixmap_bytes_reply(connection, bytesCookie, nullptr));
        if (!counts || !bytes) {
            continue;
        }
        result.pixmapBytes += (static_cast<std::uint64_t>(bytes->bytes_overflow) << 32) + bytes->bytes;
        const auto* types = xcb_res_query_client_resources_types(counts.get());
        for (int index = 0; index < xcb_res_query_client_resources_types_length(counts.get()); ++index) {
            const auto cookie = xcb_get_atom_name(connection, types[index].resource_type);
            const Reply<xcb_get_atom_name_reply_t> name(xcb_get_atom_name_reply(connection, cookie, nullptr));
            if (name) {
                result.counts[{xcb_get_atom_name_name(name.get()),
                               static_cast<std::size_t>(xcb_get_atom_name_name_length(name.get()))}] +=
                    types[index].count;
            }
        }
    }
    return result;
}

} // namespace quillon::e2e
