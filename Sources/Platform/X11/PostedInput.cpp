#include "Platform/X11/PostedInput.h"

#include "Platform/X11/PointerButtons.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <utility>

namespace quillon::x11 {

namespace {

/// While a button is down in a window, the user's own one is looked at that often.
constexpr Seconds buttonWatchInterval{0.1};

/// Between the program's answer that it has read the focus, and the press. Measured with FeatherPad (Qt 5.15) and xfwm4
/// 4.18: Qt looks at its focus when it reads the press, but takes in a focus only once it has read all events that are
/// there, so that both must not come together.
constexpr Seconds focusPause{0.03};

/// In points: as far as the pointer may move in a click (GTK's and Qt's distance from which on it is a drag is 8 to
/// 10).
constexpr double clickDistance = 5;

} // namespace

PostedInput::PostedInput(Connection& connection, Scheduler& scheduler, Keyboard& keyboard, FocusKeeper& focusKeeper)
    : connection(connection), scheduler(scheduler), keyboard(keyboard), focusKeeper(focusKeeper),
      secondPointer(connection, scheduler) {}

PostedInput::~PostedInput() {
    // No time is left for pauses.
    while (!waiting.empty()) {
        postFirst();
    }
    isPausing = false;
    releaseWhatIsUp(0);
}

void PostedInput::press(const PointerAction& action, xcb_button_t button) {
    if (button == rightButton) {
        heldBack = action;
        return;
    }
    inOrder([action, button](PostedInput& self) { self.postPress(action, button); });
}

void PostedInput::drag(const PointerAction& action) {
    if (isStillClick(action)) {
        return;
    }
    pressWhatWasHeldBack();
    inOrder([action](PostedInput& self) { self.postDrag(action); });
}

void PostedInput::release(const PointerAction& action, xcb_button_t button) {
    if (button == rightButton) {
        pressWhatWasHeldBack();
    }
    inOrder([action, button](PostedInput& self) { self.postRelease(action, button); });
}

void PostedInput::scroll(const PointerAction& action, int vertical, int horizontal) {
    inOrder([action, vertical, horizontal](PostedInput& self) { self.postScroll(action, vertical, horizontal); });
}

bool PostedInput::isStillClick(const PointerAction& action) const {
    const double distance = clickDistance * connection.scale();
    return heldBack && heldBack->window == action.window && std::abs(action.at.x - heldBack->at.x) <= distance &&
           std::abs(action.at.y - heldBack->at.y) <= distance;
}

void PostedInput::pressWhatWasHeldBack() {
    if (const auto action = std::exchange(heldBack, std::nullopt)) {
        inOrder([action = *action](PostedInput& self) { self.postPress(action, rightButton); });
    }
}

void PostedInput::inOrder(Step step) {
    if (isPausing) {
        waiting.push_back(std::move(step));
    } else {
        step(*this);
    }
}

void PostedInput::pauseBefore(Step step) {
    waiting.push_front(std::move(step));
    isPausing = true;
}

/// True when the route is not there yet; the step is taken again once it is.
bool PostedInput::mustPrepare(InputRoute route, Step step) {
    if (route != InputRoute::secondPointer ||
        !secondPointer.prepare(weakly([](PostedInput& self) { self.resume(); }))) {
        return false;
    }
    pauseBefore(std::move(step));
    return true;
}

void PostedInput::resume() {
    ping.reset();
    isPausing = false;
    while (!isPausing && !waiting.empty()) {
        postFirst();
    }
}

void PostedInput::postFirst() {
    const auto step = std::move(waiting.front());
    waiting.pop_front();
    step(*this);
}

void PostedInput::postPress(const PointerAction& action, xcb_button_t button) {
    const auto target = targetOf(action);
    const auto pointer = target ? pointerIn(target->window, action) : std::nullopt;
    if (!pointer) {
        return;
    }
    const bool isFirst = !held.contains(action.window);
    bool allowsDrags = true;
    if (isFirst && target->style == InputStyle::outermost) {
        const auto decoration = ownDecorationAt(connection, action.window, pointer->inWindow);
        if (decoration == OwnDecoration::border) {
            return;
        }
        allowsDrags = decoration != OwnDecoration::titleBar;
    }
    const Step again = [action, button](PostedInput& self) { self.postPress(action, button); };
    if (mustPrepare(target->buttonRoute, again)) {
        return;
    }
    if (focusKeeper.willPost(*target, true)) {
        pauseBefore(again);
        ping = std::make_unique<WindowPing>(connection, scheduler, target->outermost, [this] {
            scheduler.mainAfter(focusPause, weakly([](PostedInput& self) { self.resume(); }));
        });
        return;
    }
    if (target->buttonRoute == InputRoute::secondPointer) {
        if (!secondPointer.press(*pointer, button)) {
            return;
        }
    } else {
        if (isFirst) {
            enter(*target, *pointer);
        }
        postButton(connection, XCB_BUTTON_PRESS, button, *pointer);
    }
    if (isFirst) {
        held.emplace(action.window, Held{*target, {}, allowsDrags, action});
    }
    auto& window = held.at(action.window);
    window.buttons.push_back(button);
    window.last = action;
    watchButtons();
}

void PostedInput::postDrag(const PointerAction& action) {
    const auto found = held.find(action.window);
    if (found == held.end()) {
        return;
    }
    auto& window = found->second;
    window.last = action;
    if (!window.allowsDrags) {
        return;
    }
    if (const auto pointer = pointerIn(window.target.window, action)) {
        std::ignore = focusKeeper.willPost(window.target, false);
        if (window.target.buttonRoute == InputRoute::secondPointer) {
            secondPointer.move(*pointer);
        } else {
            postMotion(connection, *pointer);
        }
    }
}

void PostedInput::postRelease(const PointerAction& action, xcb_button_t button) {
    const auto found = held.find(action.window);
    if (found == held.end()) {
        return;
    }
    auto& [target, buttons, allowsDrags, last] = found->second;
    const auto down = std::find(buttons.begin(), buttons.end(), button);
    if (down == buttons.end()) {
        return;
    }
    const auto pointer = pointerIn(target.window, action);
    if (pointer) {
        std::ignore = focusKeeper.willPost(target, false);
    }
    if (target.buttonRoute == InputRoute::secondPointer) {
        if (pointer) {
            secondPointer.move(*pointer);
        }
        secondPointer.release(button);
    } else if (pointer) {
        postButton(connection, XCB_BUTTON_RELEASE, button, *pointer);
    }
    buttons.erase(down);
    if (!buttons.empty()) {
        return;
    }
    if (pointer) {
        auto afterwards = *pointer;
        afterwards.state = keyboard.state(action.modifiers);
        leave(target, afterwards);
    }
    focusKeeper.didReleaseAll(target);
    held.erase(found);
    watchButtons();
}

void PostedInput::postScroll(const PointerAction& action, int vertical, int horizontal) {
    const auto target = targetOf(action);
    const auto pointer = target ? pointerIn(target->window, action) : std::nullopt;
    if (!pointer) {
        return;
    }
    if (mustPrepare(target->wheelRoute, [action, vertical, horizontal](PostedInput& self) {
            self.postScroll(action, vertical, horizontal);
        })) {
        return;
    }
    const bool isOutside = !held.contains(action.window);
    std::ignore = focusKeeper.willPost(*target, false);
    if (isOutside) {
        enter(*target, *pointer);
    }
    turnWheel(target->wheelRoute, *pointer, vertical > 0 ? wheelUp : wheelDown, std::abs(vertical));
    turnWheel(target->wheelRoute, *pointer, horizontal > 0 ? wheelLeft : wheelRight, std::abs(horizontal));
    if (isOutside) {
        leave(*target, *pointer);
    }
}

void PostedInput::enter(const InputTarget& target, const PostedPointer& pointer) {
    if (target.wantsPointerInside()) {
        postCrossing(connection, XCB_ENTER_NOTIFY, pointer);
    }
}

void PostedInput::leave(const InputTarget& target, const PostedPointer& pointer) {
    if (target.wantsPointerInside()) {
        postCrossing(connection, XCB_LEAVE_NOTIFY, pointer);
    }
}

void PostedInput::turnWheel(InputRoute route, const PostedPointer& pointer, xcb_button_t button, int count) {
    if (route == InputRoute::secondPointer) {
        secondPointer.turnWheel(pointer, button, count);
        return;
    }
    auto pressed = pointer;
    pressed.state |= stateBit(button);
    for (int left = count; left > 0; --left) {
        postButton(connection, XCB_BUTTON_PRESS, button, pointer);
        postButton(connection, XCB_BUTTON_RELEASE, button, pressed);
    }
}

/// The part that got the press, if a button is down.
std::optional<InputTarget> PostedInput::targetOf(const PointerAction& action) const {
    const auto found = held.find(action.window);
    return found != held.end() ? found->second.target : findInputTarget(connection, action.window, action.at);
}

/// None when the window has closed.
std::optional<PostedPointer> PostedInput::pointerIn(xcb_window_t window, const PointerAction& action) {
    const auto cookie =
        xcb_translate_coordinates(connection.xcb(), connection.root(), window, static_cast<std::int16_t>(action.at.x),
                                  static_cast<std::int16_t>(action.at.y));
    const Reply<xcb_translate_coordinates_reply_t> reply(
        xcb_translate_coordinates_reply(connection.xcb(), cookie, nullptr));
    if (!reply) {
        return std::nullopt;
    }
    const auto state = static_cast<std::uint16_t>(keyboard.state(action.modifiers) | buttonBits(action.window));
    return PostedPointer{window, {reply->dst_x, reply->dst_y}, action.at, state, action.time};
}

std::uint16_t PostedInput::buttonBits(xcb_window_t outermost) const {
    std::uint16_t bits = 0;
    if (const auto found = held.find(outermost); found != held.end()) {
        for (const auto button : found->second.buttons) {
            bits |= stateBit(button);
        }
    }
    return bits;
}

void PostedInput::watchButtons() {
    if (held.empty()) {
        buttonWatch.reset();
        buttonReply.reset();
    } else if (!buttonWatch) {
        buttonWatch = scheduler.scheduleRepeatingTimer(buttonWatchInterval, [this] {
            const auto cookie = xcb_query_pointer(connection.xcb(), connection.root());
            buttonReply = connection.whenReplied(cookie.sequence, [this](void* reply) {
                if (reply == nullptr) {
                    return;
                }
                // The release may have been reported before this answer and wait to be handed out.
                scheduler.mainAsync(weakly([down = static_cast<xcb_query_pointer_reply_t*>(reply)->mask](
                                               PostedInput& self) { self.releaseWhatIsUp(down); }));
            });
        });
    }
}

void PostedInput::releaseWhatIsUp(std::uint16_t buttonsDown) {
    std::vector<std::pair<PointerAction, xcb_button_t>> releases;
    for (const auto& [outermost, window] : held) {
        for (const auto button : window.buttons) {
            if ((stateBit(button) & buttonsDown) == 0) {
                releases.emplace_back(window.last, button);
                releases.back().first.time = connection.latestTime();
            }
        }
    }
    for (const auto& [action, button] : releases) {
        release(action, button);
    }
}

} // namespace quillon::x11
