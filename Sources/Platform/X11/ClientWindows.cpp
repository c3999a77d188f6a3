#include "Platform/X11/ClientWindows.h"

#include "Platform/X11/PropertyReply.h"
#include "Platform/X11/SafeText.h"
#include "Platform/X11/WindowManager.h"

#include <xcb/res.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <iterator>

#include <unistd.h>

namespace quillon::x11 {

namespace {

/// In units of 4 bytes: the longest text, and one character more to cut at a boundary.
constexpr std::uint32_t longestText = longestForeignText / 4 + 1;
constexpr std::uint32_t longestAtomList = 64;
/// More windows than a desktop holds.
constexpr std::uint32_t longestWindowList = 65536;

/// WM_STATE's values.
constexpr std::uint32_t normalState = 1;

const std::string& hostName() {
    static const std::string name = [] {
        // The last byte stays 0, whatever the system does with a longer name.
        std::array<char, 256> buffer{};
        gethostname(buffer.data(), buffer.size() - 1);
        return std::string(buffer.data());
    }();
    return name;
}

std::optional<std::string> nonEmpty(std::string text) {
    return text.empty() ? std::nullopt : std::optional(std::move(text));
}

/// The second of the two texts of WM_CLASS; the first one is the instance's.
std::optional<std::string> classText(std::string_view bytes) {
    const auto end = bytes.find('\0');
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    bytes.remove_prefix(end + 1);
    return nonEmpty(safeText(latin1ToUTF8(bytes.substr(0, bytes.find('\0')))));
}

/// The requests for everything that describes one window.
struct WindowRequests {
    WindowRequests(Connection& connection, xcb_window_t window)
        : connection(connection), window(window), attributes(xcb_get_window_attributes(connection.xcb(), window)),
          geometry(xcb_get_geometry(connection.xcb(), window)),
          origin(xcb_translate_coordinates(connection.xcb(), window, connection.root(), 0, 0)),
          state(connection, window, connection.atom("WM_STATE"), 1),
          netState(connection, window, connection.atom("_NET_WM_STATE"), longestAtomList),
          desktop(connection, window, connection.atom("_NET_WM_DESKTOP"), 1),
          type(connection, window, connection.atom("_NET_WM_WINDOW_TYPE"), longestAtomList),
          pid(connection, window, connection.atom("_NET_WM_PID"), 1),
          machine(connection, window, XCB_ATOM_WM_CLIENT_MACHINE, longestText),
          netName(connection, window, connection.atom("_NET_WM_NAME"), longestText),
          name(connection, window, XCB_ATOM_WM_NAME, longestText),
          className(connection, window, XCB_ATOM_WM_CLASS, longestText) {}

    /// None when the window has closed.
    std::optional<ClientWindow> receive(std::optional<std::uint32_t> currentDesktop) {
        auto* const xcb = connection.xcb();
        const Reply<xcb_get_window_attributes_reply_t> attributesReply(
            xcb_get_window_attributes_reply(xcb, attributes, nullptr));
        const Reply<xcb_get_geometry_reply_t> geometryReply(xcb_get_geometry_reply(xcb, geometry, nullptr));
        const Reply<xcb_translate_coordinates_reply_t> originReply(
            xcb_translate_coordinates_reply(xcb, origin, nullptr));
        for (auto* property : {&state, &netState, &desktop, &type, &pid, &machine, &netName, &name, &className}) {
            property->wait();
        }
        if (!attributesReply || !geometryReply || !originReply) {
            return std::nullopt;
        }
        ClientWindow result;
        result.window = window;
        result.owner = owner();
        result.title = title();
        result.applicationName = classText(className.bytes().value_or(std::string_view()));
        result.bounds = {originReply->dst_x, originReply->dst_y, geometryReply->width, geometryReply->height};
        result.kind = kind();
        result.isOverrideRedirect = attributesReply->override_redirect != 0;
        result.hasPicture = attributesReply->_class == XCB_WINDOW_CLASS_INPUT_OUTPUT;
        result.isOnScreen = attributesReply->map_state == XCB_MAP_STATE_VIEWABLE &&
                            state.number().value_or(normalState) == normalState && !isHidden() &&
                            isOnDesktop(currentDesktop);
        return result;
    }

private:
    [[nodiscard]] bool isLocal() const {
        const auto host = machine.bytes();
        return !host || host->empty() || *host == hostName();
    }

    [[nodiscard]] std::optional<ProcessID> owner() const {
        const auto number = pid.number();
        if (!number || *number == 0 || *number > INT32_MAX || !isLocal()) {
            return std::nullopt;
        }
        return static_cast<ProcessID>(*number);
    }

    [[nodiscard]] std::optional<std::string> title() const {
        if (const auto bytes = netName.bytes(); bytes && !bytes->empty()) {
            return safeText(*bytes);
        }
        const auto bytes = name.bytes();
        if (!bytes) {
            return std::nullopt;
        }
        if (name.type() == connection.atom("UTF8_STRING")) {
            return safeText(*bytes);
        }
        const bool isCompound = name.type() == connection.atom("COMPOUND_TEXT");
        return safeText(isCompound ? compoundTextToUTF8(*bytes) : latin1ToUTF8(*bytes));
    }

    /// The first type that is known counts; the client lists them in the order of preference.
    [[nodiscard]] ClientWindow::Kind kind() const {
        using Kind = ClientWindow::Kind;
        const auto is = [this](xcb_atom_t atom, std::string_view suffix) {
            return atom == connection.atom("_NET_WM_WINDOW_TYPE_" + std::string(suffix));
        };
        for (const auto atom : type.numbers()) {
            if (is(atom, "DESKTOP")) {
                return Kind::desktop;
            }
            if (is(atom, "DOCK")) {
                return Kind::dock;
            }
            for (const auto* suffix :
                 {"NOTIFICATION", "TOOLTIP", "MENU", "DROPDOWN_MENU", "POPUP_MENU", "COMBO", "DND"}) {
                if (is(atom, suffix)) {
                    return Kind::transitory;
                }
            }
            for (const auto* suffix : {"NORMAL", "DIALOG", "UTILITY", "TOOLBAR", "SPLASH"}) {
                if (is(atom, suffix)) {
                    return Kind::ordinary;
                }
            }
        }
        return Kind::ordinary;
    }

    [[nodiscard]] bool isHidden() const { return netState.contains(connection.atom("_NET_WM_STATE_HIDDEN")); }

    [[nodiscard]] bool isOnDesktop(std::optional<std::uint32_t> currentDesktop) const {
        const auto number = desktop.number();
        return !number || !currentDesktop || *number == allDesktops || *number == *currentDesktop;
    }

    Connection& connection;
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t origin;
    PropertyReply state;
    PropertyReply netState;
    PropertyReply desktop;
    PropertyReply type;
    PropertyReply pid;
    PropertyReply machine;
    PropertyReply netName;
    PropertyReply name;
    PropertyReply className;
};

/// Left, right, top, bottom.
constexpr std::uint32_t marginCount = 4;

Margins marginsIn(const PropertyReply& property) {
    const auto numbers = property.numbers();
    // No window is larger.
    constexpr std::uint32_t widest = 32767;
    const auto width = [&](std::size_t index) { return static_cast<int>(std::min(numbers[index], widest)); };
    return numbers.size() == marginCount ? Margins{width(0), width(1), width(2), width(3)} : Margins();
}

bool hasResourceExtension(Connection& connection) {
    const auto* data = xcb_get_extension_data(connection.xcb(), &xcb_res_id);
    return data != nullptr && data->present != 0;
}

/// The process of the client that made the window, as the server knows it.
std::optional<ProcessID> localClientPID(const xcb_res_query_client_ids_reply_t& reply) {
    for (auto ids = xcb_res_query_client_ids_ids_iterator(&reply); ids.rem > 0; xcb_res_client_id_value_next(&ids)) {
        if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) != 0 &&
            xcb_res_client_id_value_value_length(ids.data) > 0) {
            return static_cast<ProcessID>(*xcb_res_client_id_value_value(ids.data));
        }
    }
    return std::nullopt;
}

} // namespace

/// What the window manager says of the whole desktop.
struct ClientWindows::Desktop {
    bool isManaged = false;
    /// Back to front.
    std::vector<xcb_window_t> windows;
    std::optional<std::uint32_t> currentDesktop;
    std::optional<xcb_window_t> activeWindow;
};

ClientWindows::Desktop ClientWindows::readDesktop() const {
    const auto ask = [this](std::string_view property, std::uint32_t longest) {
        return PropertyReply(connection, connection.root(), connection.atom(property), longest);
    };
    // The atoms come first, so that asking for one does not end the pipeline.
    auto check = ask("_NET_SUPPORTING_WM_CHECK", 1);
    auto stacking = ask("_NET_CLIENT_LIST_STACKING", longestWindowList);
    auto clients = ask("_NET_CLIENT_LIST", longestWindowList);
    auto current = ask("_NET_CURRENT_DESKTOP", 1);
    auto active = ask("_NET_ACTIVE_WINDOW", 1);
    for (auto* property : {&check, &stacking, &clients, &current, &active}) {
        property->wait();
    }
    // The properties of a window manager that has ended may have stayed behind.
    if (!check.number() || !isManagerAlive(*check.number())) {
        return {};
    }
    Desktop desktop;
    desktop.isManaged = true;
    const auto windows = stacking.type() != XCB_ATOM_NONE ? stacking.numbers() : clients.numbers();
    desktop.windows.assign(windows.begin(), windows.end());
    desktop.currentDesktop = current.number();
    desktop.activeWindow = active.number();
    if (desktop.activeWindow == xcb_window_t{XCB_WINDOW_NONE}) {
        desktop.activeWindow.reset();
    }
    return desktop;
}

bool ClientWindows::isManagerAlive(xcb_window_t check) const {
    PropertyReply itself(connection, check, connection.atom("_NET_SUPPORTING_WM_CHECK"), 1);
    itself.wait();
    return itself.number() == check;
}

/// Back to front.
std::vector<xcb_window_t> ClientWindows::childrenOfRoot() const {
    const auto cookie = xcb_query_tree(connection.xcb(), connection.root());
    const Reply<xcb_query_tree_reply_t> reply(xcb_query_tree_reply(connection.xcb(), cookie, nullptr));
    if (!reply) {
        return {};
    }
    const auto* first = xcb_query_tree_children(reply.get());
    return {first, first + xcb_query_tree_children_length(reply.get())};
}

std::vector<ClientWindow> ClientWindows::list() const {
    const auto desktop = readDesktop();
    auto windows = describe(desktop.isManaged ? desktop.windows : childrenOfRoot(), desktop.currentDesktop);
    if (!desktop.isManaged) {
        std::erase_if(windows, [](const ClientWindow& window) {
            return window.isOverrideRedirect || !window.hasPicture || !window.isOnScreen;
        });
    }
    std::reverse(windows.begin(), windows.end());
    return windows;
}

std::vector<xcb_window_t> ClientWindows::numbers() const {
    auto desktop = readDesktop();
    return desktop.isManaged ? std::move(desktop.windows) : childrenOfRoot();
}

std::vector<ClientWindow> ClientWindows::describe(std::span<const xcb_window_t> windows) const {
    return describe(windows, std::nullopt);
}

std::optional<ClientWindow> ClientWindows::describe(xcb_window_t window) const {
    auto found = describe(std::span(&window, 1));
    return found.empty() ? std::nullopt : std::optional(std::move(found.front()));
}

WindowMargins ClientWindows::margins(xcb_window_t window) const {
    const auto frameAtom = connection.atom("_NET_FRAME_EXTENTS");
    const auto shadowAtom = connection.atom("_GTK_FRAME_EXTENTS");
    PropertyReply frame(connection, window, frameAtom, marginCount);
    PropertyReply shadow(connection, window, shadowAtom, marginCount);
    frame.wait();
    shadow.wait();
    return {marginsIn(frame), marginsIn(shadow)};
}

bool ClientWindows::hasManager() const {
    return readDesktop().isManaged;
}

std::optional<xcb_window_t> ClientWindows::activeWindow() const {
    return readDesktop().activeWindow;
}

std::optional<xcb_window_t> ClientWindows::windowOver(xcb_window_t window) const {
    const auto all = readDesktop().windows;
    const auto found = std::find(all.begin(), all.end(), window);
    return found != all.end() && found + 1 != all.end() ? std::optional(*(found + 1)) : std::nullopt;
}

bool ClientWindows::isOver(xcb_window_t window, xcb_window_t other) const {
    const auto all = readDesktop().windows;
    const auto found = std::find(all.begin(), all.end(), other);
    return std::find(found, all.end(), window) != all.end() && window != other;
}

std::vector<ClientWindow> ClientWindows::describe(std::span<const xcb_window_t> windows,
                                                  std::optional<std::uint32_t> currentDesktop) const {
    std::vector<WindowRequests> requests;
    requests.reserve(windows.size());
    for (const auto window : windows) {
        requests.emplace_back(connection, window);
    }
    std::vector<ClientWindow> result;
    for (auto& request : requests) {
        if (auto window = request.receive(currentDesktop)) {
            result.push_back(std::move(*window));
        }
    }
    findOwners(result);
    return result;
}

/// Asks the server for the owners that the windows do not name themselves.
void ClientWindows::findOwners(std::vector<ClientWindow>& windows) const {
    if (!hasResourceExtension(connection)) {
        return;
    }
    std::vector<std::pair<ClientWindow*, xcb_res_query_client_ids_cookie_t>> requests;
    for (auto& window : windows) {
        if (!window.owner) {
            const xcb_res_client_id_spec_t spec{window.window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
            requests.emplace_back(&window, xcb_res_query_client_ids(connection.xcb(), 1, &spec));
        }
    }
    for (const auto& [window, cookie] : requests) {
        const Reply<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(connection.xcb(), cookie, nullptr));
        if (reply) {
            window->owner = localClientPID(*reply);
        }
    }
}

std::optional<std::string> processName(ProcessID pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/comm");
    std::string name;
    if (!std::getline(file, name)) {
        return std::nullopt;
    }
    return nonEmpty(safeText(name));
}

} // namespace quillon::x11
