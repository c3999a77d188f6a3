#include "Platform/KeyMonitor.h"

#include "Platform/X11/DesktopPorts.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/Handlers.h"
#include "Platform/X11/Keyboard.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>

#include <utility>

namespace quillon::x11 {

namespace {

/// The one thing to observe.
constexpr int anyPress = 0;
/// NSEventModifierFlagCapsLock: that it is locked, not that it is held.
constexpr ModifierFlags modifierFlagCapsLock = 0x10000;

/// Sees the key presses that Qt gets from the server, before Qt does anything with them: what a handler swallows
/// reaches neither a widget nor a shortcut nor an input method. Keys in an open menu are the menu's own, and keys that
/// macOS does not know are not seen.
class X11KeyMonitors final : public KeyMonitors, private QAbstractNativeEventFilter {
public:
    explicit X11KeyMonitors(Keyboard& keyboard) : keyboard(keyboard) {}

    [[nodiscard]] RegistrationToken addLocalMonitor(std::function<TappedEvent(const KeyEvent&)> handler) override;

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    [[nodiscard]] bool swallows(const xcb_key_press_event_t& press);

    Keyboard& keyboard;
    bool isInstalled = false;
    /// A handler sets the flag to keep the press from everyone else.
    Handlers<int, const KeyEvent&, bool&> monitors;
};

RegistrationToken X11KeyMonitors::addLocalMonitor(std::function<TappedEvent(const KeyEvent&)> handler) {
    if (!std::exchange(isInstalled, true)) {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    return monitors.add(anyPress, [handler = std::move(handler)](const KeyEvent& event, bool& isSwallowed) {
        isSwallowed = isSwallowed || handler(event) == TappedEvent::swallowed;
    });
}

bool X11KeyMonitors::nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) {
    const auto& event = *static_cast<const xcb_generic_event_t*>(message);
    return monitors.has(anyPress) && eventType(event) == XCB_KEY_PRESS &&
           QApplication::activePopupWidget() == nullptr && swallows(as<xcb_key_press_event_t>(event));
}

bool X11KeyMonitors::swallows(const xcb_key_press_event_t& press) {
    const auto keyCode = keyboard.virtualKeyCode(press.detail);
    if (!keyCode) {
        return false;
    }
    const auto capsLock = (press.state & XCB_MOD_MASK_LOCK) != 0 ? modifierFlagCapsLock : 0;
    bool isSwallowed = false;
    monitors.call(anyPress, {*keyCode, keyboard.flags(press.state) | capsLock}, isSwallowed);
    return isSwallowed;
}

} // namespace

std::unique_ptr<KeyMonitors> makeKeyMonitors(Keyboard& keyboard) {
    return std::make_unique<X11KeyMonitors>(keyboard);
}

} // namespace quillon::x11
