#include "HeldWeakly.h"
#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/Handlers.h"
#include "Platform/X11/KeyGrab.h"
#include "Platform/X11/Keyboard.h"

#include <utility>

namespace quillon::x11 {

namespace {

constexpr Seconds retryInterval{2};
/// The one thing to observe.
constexpr int anyPress = 0;

/// Presses of grabbed keys. A handler sets the flag to keep the press from everyone else.
using KeyPresses = Handlers<int, const xcb_key_press_event_t&, bool&>;

class KeyDownEvent final : public SystemEvent {
public:
    KeyDownEvent(Keyboard& keyboard, const xcb_key_press_event_t& press)
        : keyCode(keyboard.virtualKeyCode(press.detail)), modifiers(keyboard.flags(press.state)) {}

    [[nodiscard]] bool isKnownKey() const { return keyCode.has_value(); }
    [[nodiscard]] std::int64_t integerValueField(SystemEventField field) const override {
        return field == SystemEventField::keyboardEventKeycode ? keyCode.value_or(0) : 0;
    }
    [[nodiscard]] EventFlags flags() const override { return modifiers; }

private:
    std::optional<std::uint16_t> keyCode;
    EventFlags modifiers;
};

/// What the taps share.
struct TapSurroundings {
    Connection& connection;
    Scheduler& scheduler;
    Keyboard& keyboard;
    KeyPresses presses{};
};

/// A tap on the one key press that it expects, which it grabs while it is switched on.
class X11EventTap final : public EventTap, private HeldWeakly<X11EventTap> {
    friend HeldWeakly<X11EventTap>;

public:
    X11EventTap(TapSurroundings& surroundings, EventTapOptions options, bool seesKeyDown, EventTapCallback callback)
        : surroundings(surroundings), options(options), seesKeyDown(seesKeyDown), callback(std::move(callback)) {
        presses = surroundings.presses.add(
            anyPress, [this](const auto& press, bool& isSwallowed) { isSwallowed = isSwallowed || swallows(press); });
        keyboardChanges = surroundings.keyboard.observeChanges([this] { grabExpected(); });
    }

    void addToMainRunLoop() override {
        isInRunLoop = true;
        grabExpected();
    }
    void setEnabled(bool enabled) override {
        isEnabled = enabled;
        grabExpected();
    }
    void expect(std::optional<KeyPress> press) override {
        expected = press;
        grabExpected();
    }
    [[nodiscard]] KeyPressReach reach() const override { return currentReach; }
    void setOnReachChange(std::function<void()> newCallback) override { reachChanged = std::move(newCallback); }

private:
    [[nodiscard]] bool isActive() const { return isInRunLoop && isEnabled && seesKeyDown; }

    void grabExpected() {
        if (!isActive()) {
            grab.reset();
            retries.reset();
            return;
        }
        if (!expected) {
            grab.reset();
            setReach(KeyPressReach::reaches);
            return;
        }
        const auto wanted = surroundings.keyboard.combinationFor(*expected);
        if (!wanted) {
            grab.reset();
            setReach(KeyPressReach::missingOnKeyboard);
            return;
        }
        if (!grab || grab->combination() != *wanted) {
            // Given back first: the two may have states of the locks in common.
            grab.reset();
            grab = KeyGrab::take(surroundings.connection, *wanted);
        }
        setReach(grab ? KeyPressReach::reaches : KeyPressReach::heldByAnotherProgram);
    }

    void setReach(KeyPressReach reach) {
        if (reach != KeyPressReach::heldByAnotherProgram) {
            retries.reset();
        } else if (!retries) {
            // The server does not tell when the other program lets go.
            retries = surroundings.scheduler.scheduleRepeatingTimer(
                retryInterval, weakly([](X11EventTap& self) { self.grabExpected(); }));
        }
        if (std::exchange(currentReach, reach) == reach) {
            return;
        }
        surroundings.scheduler.mainAsync(weakly([](X11EventTap& self) {
            if (self.reachChanged) {
                self.reachChanged();
            }
        }));
    }

    [[nodiscard]] bool swallows(const xcb_key_press_event_t& press) {
        const KeyDownEvent event(surroundings.keyboard, press);
        if (!isActive() || !event.isKnownKey()) {
            return false;
        }
        return callback(SystemEventType::keyDown, event) == TappedEvent::swallowed &&
               options == EventTapOptions::defaultTap;
    }

    TapSurroundings& surroundings;
    EventTapOptions options;
    bool seesKeyDown;
    EventTapCallback callback;
    std::function<void()> reachChanged;
    bool isInRunLoop = false;
    bool isEnabled = false;
    std::optional<KeyPress> expected;
    KeyPressReach currentReach = KeyPressReach::reaches;
    std::unique_ptr<KeyGrab> grab;
    RegistrationToken retries;
    RegistrationToken presses;
    RegistrationToken keyboardChanges;
};

class X11EventTaps final : public EventTaps {
public:
    X11EventTaps(Connection& connection, Scheduler& scheduler, Keyboard& keyboard)
        : surroundings{connection, scheduler, keyboard} {
        rootEvents = connection.observeWindow(connection.root(), [this](const auto& event) {
            // Anyone can send an event; only the server's own have stopped the keyboard.
            if (event.response_type == XCB_KEY_PRESS) {
                answer(as<xcb_key_press_event_t>(event));
            }
        });
    }

    /// Location and placement are the same for all: before any application, and after no other tap.
    [[nodiscard]] std::unique_ptr<EventTap> create(EventTapLocation /*location*/, EventTapPlacement /*placement*/,
                                                   EventTapOptions options, EventMask eventsOfInterest,
                                                   EventTapCallback callback) override {
        const bool seesKeyDown = (eventsOfInterest & eventMaskBit(SystemEventType::keyDown)) != 0;
        return std::make_unique<X11EventTap>(surroundings, options, seesKeyDown, std::move(callback));
    }

private:
    /// The port answers, not the tap, which may have ended between the press and its event.
    void answer(const xcb_key_press_event_t& press) {
        bool isSwallowed = false;
        surroundings.presses.call(anyPress, press, isSwallowed);
        if (isSwallowed) {
            KeyGrab::swallow(surroundings.connection);
        } else {
            KeyGrab::replay(surroundings.connection);
        }
    }

    TapSurroundings surroundings;
    RegistrationToken rootEvents;
};

} // namespace

std::unique_ptr<EventTaps> makeEventTaps(Connection& connection, Scheduler& scheduler, Keyboard& keyboard) {
    return std::make_unique<X11EventTaps>(connection, scheduler, keyboard);
}

} // namespace quillon::x11
