#include "Platform/X11/SecondPointer.h"

#include "Platform/X11/InputOpening.h"

// The header has a member of that name, which C++ reserves.
#define explicit explicitComponents
#include <xcb/xkb.h>
#undef explicit
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>

namespace quillon::x11 {

namespace {

/// GTK 4 opens a menu where the pointer is when it gets to it, soon after the press.
constexpr Seconds parkingDelay{0.3};

constexpr std::string_view deviceName = "Quillon";
/// The server adds a word to the name.
constexpr std::string_view masterPointerName = "Quillon pointer";

/// A pointer and the keyboard whose modifiers go into its events.
struct MasterDevices {
    xcb_input_device_id_t pointer = 0;
    xcb_input_device_id_t keyboard = 0;
};

bool hasExtension(xcb_connection_t* xcb, xcb_extension_t& extension) {
    const auto* data = xcb_get_extension_data(xcb, &extension);
    return data != nullptr && data->present != 0;
}

bool hasSecondPointers(xcb_connection_t* xcb) {
    if (!hasExtension(xcb, xcb_input_id) || !hasExtension(xcb, xcb_test_id) || !hasExtension(xcb, xcb_xkb_id)) {
        return false;
    }
    const auto inputCookie = xcb_input_xi_query_version(xcb, 2, 0);
    const auto keyboardCookie = xcb_xkb_use_extension(xcb, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    const Reply<xcb_input_xi_query_version_reply_t> input(xcb_input_xi_query_version_reply(xcb, inputCookie, nullptr));
    const Reply<xcb_xkb_use_extension_reply_t> keyboard(xcb_xkb_use_extension_reply(xcb, keyboardCookie, nullptr));
    return input && input->major_version >= 2 && keyboard && keyboard->supported != 0;
}

std::optional<MasterDevices> findDevices(xcb_connection_t* xcb) {
    const auto cookie = xcb_input_xi_query_device(xcb, XCB_INPUT_DEVICE_ALL);
    const Reply<xcb_input_xi_query_device_reply_t> reply(xcb_input_xi_query_device_reply(xcb, cookie, nullptr));
    if (!reply) {
        return std::nullopt;
    }
    for (auto infos = xcb_input_xi_query_device_infos_iterator(reply.get()); infos.rem > 0;
         xcb_input_xi_device_info_next(&infos)) {
        const auto& info = *infos.data;
        if (info.type == XCB_INPUT_DEVICE_TYPE_MASTER_POINTER &&
            std::string_view(xcb_input_xi_device_info_name(&info), info.name_len) == masterPointerName) {
            return MasterDevices{info.deviceid, info.attachment};
        }
    }
    return std::nullopt;
}

template <class Change>
void changeHierarchy(Connection& connection, Change& change) {
    change.type.len = sizeof change / 4;
    connection.mayFail(xcb_input_xi_change_hierarchy(connection.xcb(), 1,
                                                     reinterpret_cast<const xcb_input_hierarchy_change_t*>(&change)));
}

void addDevices(Connection& connection) {
    struct {
        xcb_input_add_master_t type;
        std::array<char, 8> name;
    } change{};
    static_assert(deviceName.size() <= std::tuple_size_v<decltype(change.name)>);
    change.type.type = XCB_INPUT_HIERARCHY_CHANGE_TYPE_ADD_MASTER;
    change.type.name_len = deviceName.size();
    change.type.send_core = 1;
    change.type.enable = 1;
    std::copy(deviceName.begin(), deviceName.end(), change.name.begin());
    changeHierarchy(connection, change);
}

void removeDevices(Connection& connection, xcb_input_device_id_t pointer) {
    struct {
        xcb_input_remove_master_t type;
    } change{};
    change.type.type = XCB_INPUT_HIERARCHY_CHANGE_TYPE_REMOVE_MASTER;
    change.type.deviceid = pointer;
    change.type.return_mode = XCB_INPUT_CHANGE_MODE_FLOAT;
    changeHierarchy(connection, change);
}

/// Nobody else changes anything as long as it lives. Only requests of its own connection may be waited for meanwhile.
class ServerGrab {
public:
    explicit ServerGrab(Connection& connection) : connection(connection) { xcb_grab_server(connection.xcb()); }
    ~ServerGrab() {
        xcb_ungrab_server(connection.xcb());
        connection.flush();
    }
    ServerGrab(const ServerGrab&) = delete;
    ServerGrab& operator=(const ServerGrab&) = delete;

private:
    Connection& connection;
};

} // namespace

/// The device at the server, on a connection of its own, for which it is the pointer that requests are about.
class SecondPointer::Device {
public:
    /// Null when the server has no such thing. Any thread, which waits for the server.
    static std::unique_ptr<Device> make() {
        auto opened = Connection::open();
        auto* const connection = std::get_if<std::unique_ptr<Connection>>(&opened);
        if (connection == nullptr || !hasSecondPointers((*connection)->xcb())) {
            return nullptr;
        }
        if (const auto old = findDevices((*connection)->xcb())) {
            // Of a run that was killed; it may have a button down.
            removeDevices(**connection, old->pointer);
        }
        addDevices(**connection);
        const auto devices = findDevices((*connection)->xcb());
        return devices ? std::make_unique<Device>(std::move(*connection), *devices) : nullptr;
    }

    Device(std::unique_ptr<Connection> newConnection, const MasterDevices& devices)
        : connection(std::move(newConnection)), devices(devices) {
        connection->mayFail(xcb_input_xi_set_client_pointer(xcb(), XCB_WINDOW_NONE, devices.pointer));
        makeInvisibleCursor();
        makeParkingPlace();
        park();
    }
    ~Device() {
        removeDevices(*connection, devices.pointer);
        finish();
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// Calls back between the opening of the way to the window and its end; false when there is no way.
    template <class Use>
    bool reach(const PostedPointer& pointer, Use use) {
        bool isReached = false;
        {
            const ServerGrab grab(*connection);
            if (auto holes = findInputHoles(*connection, pointer.window, pointer.onRoot)) {
                const InputOpening opening(*connection, std::move(*holes));
                hideCursorIn(pointer.window);
                moveTo(pointer);
                use();
                isReached = true;
            }
        }
        finish();
        return isReached;
    }
    void press(xcb_window_t window, xcb_button_t button) {
        constexpr std::uint32_t anyModifier = 1U << 31;
        constexpr std::uint32_t anyButton = 0;
        const std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_BUTTON_PRESS;
        const auto grab = xcb_input_xi_passive_grab_device(xcb(), XCB_CURRENT_TIME, window, XCB_CURSOR_NONE, anyButton,
                                                           devices.pointer, 1, 1, XCB_INPUT_GRAB_TYPE_BUTTON,
                                                           XCB_INPUT_GRAB_MODE_22_SYNC, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                                           XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, &anyModifier);
        xcb_discard_reply(xcb(), grab.sequence);
        fake(XCB_BUTTON_PRESS, button);
        connection->mayFail(xcb_input_xi_allow_events(xcb(), XCB_CURRENT_TIME, devices.pointer,
                                                      XCB_INPUT_EVENT_MODE_REPLAY_DEVICE, 0, XCB_WINDOW_NONE));
        connection->mayFail(xcb_input_xi_passive_ungrab_device(xcb(), window, anyButton, devices.pointer, 1,
                                                               XCB_INPUT_GRAB_TYPE_BUTTON, &anyModifier));
    }
    void release(xcb_button_t button) { fake(XCB_BUTTON_RELEASE, button); }
    void moveTo(const PostedPointer& pointer) {
        setModifiers(pointer.state);
        fakeMove(pointer.onRoot);
    }
    void park() {
        setModifiers(0);
        hideCursorIn(XCB_WINDOW_NONE);
        constexpr std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(xcb(), parkingPlace, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        fakeMove(parkingPixel());
        finish();
    }
    /// Sends what was asked for, and drops the server's answers.
    void finish() {
        connection->flush();
        connection->processEvents();
    }

private:
    [[nodiscard]] xcb_connection_t* xcb() const { return connection->xcb(); }

    /// Away from the corners, where desktops wait for pointers, and where only a little of a cursor could be seen.
    [[nodiscard]] PixelPoint parkingPixel() const {
        const auto& screen = connection->screen();
        return {screen.width_in_pixels - 1, screen.height_in_pixels / 3};
    }

    /// Until it is hidden in another window, or none.
    void hideCursorIn(xcb_window_t window) {
        const auto change = [this](xcb_window_t of, xcb_cursor_t cursor) {
            if (of != XCB_WINDOW_NONE) {
                connection->mayFail(xcb_input_xi_change_cursor(xcb(), of, cursor, devices.pointer));
            }
        };
        change(std::exchange(windowWithoutCursor, window), XCB_CURSOR_NONE);
        change(window, invisibleCursor);
    }
    void makeInvisibleCursor() {
        const auto pixmap = xcb_generate_id(xcb());
        xcb_create_pixmap(xcb(), 1, pixmap, connection->root(), 1, 1);
        invisibleCursor = xcb_generate_id(xcb());
        xcb_create_cursor(xcb(), invisibleCursor, pixmap, pixmap, 0, 0, 0, 0, 0, 0, 0, 0);
        xcb_free_pixmap(xcb(), pixmap);
    }
    /// What lies below does not take it for the user's pointer.
    void makeParkingPlace() {
        const auto place = parkingPixel();
        const std::array<std::uint32_t, 2> values{1, invisibleCursor};
        parkingPlace = xcb_generate_id(xcb());
        xcb_create_window(xcb(), 0, parkingPlace, connection->root(), static_cast<std::int16_t>(place.x),
                          static_cast<std::int16_t>(place.y), 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_CURSOR, values.data());
        xcb_map_window(xcb(), parkingPlace);
    }
    void setModifiers(std::uint16_t state) {
        constexpr std::uint16_t modifierBits = 0xff;
        const auto wanted = static_cast<std::uint8_t>(state & modifierBits);
        if (wanted != modifiers) {
            // Locked, so that no keys have to be pressed, which somebody might notice.
            connection->mayFail(xcb_xkb_latch_lock_state(xcb(), devices.keyboard, modifierBits, wanted, 0, 0, 0, 0, 0));
            modifiers = wanted;
        }
    }
    void fake(std::uint8_t type, std::uint8_t detail, const PixelPoint& at = {}) {
        xcb_test_fake_input(xcb(), type, detail, XCB_CURRENT_TIME, connection->root(), static_cast<std::int16_t>(at.x),
                            static_cast<std::int16_t>(at.y), 0);
    }
    void fakeMove(const PixelPoint& at) { fake(XCB_MOTION_NOTIFY, 0, at); }

    std::unique_ptr<Connection> connection;
    MasterDevices devices;
    xcb_cursor_t invisibleCursor = XCB_CURSOR_NONE;
    xcb_window_t parkingPlace = XCB_WINDOW_NONE;
    xcb_window_t windowWithoutCursor = XCB_WINDOW_NONE;
    std::uint8_t modifiers = 0;
};

SecondPointer::SecondPointer(Connection& connection, Scheduler& scheduler) : scheduler(scheduler) {
    closeForgottenHoles(connection);
}

SecondPointer::~SecondPointer() = default;

bool SecondPointer::prepare(Task prepared) {
    if (std::exchange(wasPrepared, true)) {
        return false;
    }
    making = scheduler.makeSerialQueue("local.quillon.pointer");
    auto use = weakly([prepared = std::move(prepared)](SecondPointer& self, const std::shared_ptr<Device>& made) {
        self.device = made;
        self.making.reset();
        prepared();
    });
    making->async([&main = scheduler, use = std::move(use)] {
        main.mainAsync([use, made = std::shared_ptr<Device>(Device::make())] { use(made); });
    });
    return true;
}

bool SecondPointer::press(const PostedPointer& pointer, xcb_button_t button) {
    if (!device || isHeldElsewhere(pointer.window)) {
        return false;
    }
    if (!buttons.empty()) {
        // The window that got the first press gets all that follow.
        device->moveTo(pointer);
        device->press(pointer.window, button);
        device->finish();
    } else if (!device->reach(pointer, [&] { device->press(pointer.window, button); })) {
        return false;
    }
    heldWindow = pointer.window;
    buttons.push_back(button);
    return true;
}

void SecondPointer::move(const PostedPointer& pointer) {
    if (device && !buttons.empty()) {
        device->moveTo(pointer);
        device->finish();
    }
}

void SecondPointer::release(xcb_button_t button) {
    if (!device || std::erase(buttons, button) == 0) {
        return;
    }
    device->release(button);
    device->finish();
    parkSoon();
}

void SecondPointer::parkSoon() {
    ++uses;
    scheduler.mainAfter(parkingDelay, weakly([use = uses](SecondPointer& self) {
                            if (self.uses == use && self.buttons.empty()) {
                                self.device->park();
                            }
                        }));
}

void SecondPointer::turnWheel(const PostedPointer& pointer, xcb_button_t button, int count) {
    if (!device || count == 0 || isHeldElsewhere(pointer.window)) {
        return;
    }
    const auto turn = [&] {
        for (int left = count; left > 0; --left) {
            device->press(pointer.window, button);
            device->release(button);
        }
    };
    if (buttons.empty()) {
        if (device->reach(pointer, turn)) {
            parkSoon();
        }
    } else {
        device->moveTo(pointer);
        turn();
        device->finish();
    }
}

} // namespace quillon::x11
