#include "Platform/X11/KeyGrab.h"

#include <algorithm>
#include <utility>

namespace quillon::x11 {

std::unique_ptr<KeyGrab> KeyGrab::take(Connection& connection, const KeyCombination& combination) {
    auto* const xcb = connection.xcb();
    std::vector<xcb_void_cookie_t> requests;
    for (const auto locks : combination.lockStates) {
        // The pointer goes on; only the keyboard waits for the answer.
        constexpr std::uint8_t reportToRoot = 0;
        requests.push_back(xcb_grab_key_checked(xcb, reportToRoot, connection.root(), combination.modifiers | locks,
                                                combination.key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_SYNC));
    }
    std::unique_ptr<KeyGrab> grab(new KeyGrab(connection, combination));
    bool isHeld = true;
    for (const auto request : requests) {
        const Reply<xcb_generic_error_t> error(xcb_request_check(xcb, request));
        isHeld = isHeld && !error;
    }
    return isHeld ? std::move(grab) : nullptr;
}

KeyGrab::KeyGrab(Connection& connection, KeyCombination combination)
    : connection(connection), held(std::move(combination)) {}

KeyGrab::~KeyGrab() {
    // What another program holds stays its own.
    for (const auto locks : held.lockStates) {
        xcb_ungrab_key(connection.xcb(), held.key, connection.root(), held.modifiers | locks);
    }
}

void KeyGrab::replay(Connection& connection) {
    xcb_allow_events(connection.xcb(), XCB_ALLOW_REPLAY_KEYBOARD, XCB_CURRENT_TIME);
}

void KeyGrab::swallow(Connection& connection) {
    xcb_ungrab_keyboard(connection.xcb(), XCB_CURRENT_TIME);
}

} // namespace quillon::x11
