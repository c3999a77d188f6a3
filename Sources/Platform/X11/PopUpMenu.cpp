#include "Platform/X11/PopUpMenu.h"

#include "Platform/Application.h"
#include "Platform/Platform.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/SafeText.h"
#include "Platform/X11/StandardError.h"

#include <QAction>
#include <QCursor>
#include <QKeySequence>
#include <QMenu>

namespace quillon::x11 {

namespace {

/// Whoever has just pressed a key or a button holds the keyboard or the pointer until it is released.
constexpr Seconds retryInterval{0.05};
constexpr int mostTries = 60;

/// Qt takes "&" for the mark of a letter to choose the item by, and a tab for the start of the keys' column.
QString labelOf(const MenuItem& item) {
    return QString::fromStdString(safeText(item.title)).replace('&', "&&");
}

void addItems(QMenu& menu, const std::vector<MenuItem>& items) {
    for (const auto& item : items) {
        if (item.isSeparator) {
            menu.addSeparator();
            continue;
        }
        auto* action = item.submenu ? menu.addMenu(labelOf(item))->menuAction() : menu.addAction(labelOf(item));
        if (item.submenu) {
            addItems(*action->menu(), item.submenu->items);
        }
        action->setEnabled(item.isEnabled);
        action->setCheckable(item.isOn);
        action->setChecked(item.isOn);
        action->setShortcut(keysOf(item));
        action->setShortcutVisibleInContextMenu(true);
        QObject::connect(action, &QAction::triggered, action, [item] { performMenuItem(item); });
    }
}

} // namespace

void performMenuItem(const MenuItem& item) {
    if (const auto* action = std::get_if<MenuAction>(&item.action)) {
        (*action)(item);
    } else if (const auto* standard = std::get_if<StandardAction>(&item.action)) {
        // The others are for what has the keyboard focus: menus never take it, and text fields know their keys.
        if (*standard == StandardAction::terminate) {
            sharedApplication().terminate();
        }
    }
}

QKeySequence keysOf(const MenuItem& item) {
    const auto keys = QString::fromStdString(item.keyEquivalent);
    if (keys.isEmpty()) {
        return {};
    }
    const auto key = keys.front();
    auto modifiers = Qt::KeyboardModifiers();
    const auto add = [&](ModifierFlags flag, Qt::KeyboardModifier modifier) {
        modifiers.setFlag(modifier, (item.keyEquivalentModifierMask & flag) != 0);
    };
    add(modifierFlagCommand, Qt::ControlModifier);
    add(modifierFlagControl, Qt::MetaModifier);
    add(modifierFlagOption, Qt::AltModifier);
    add(modifierFlagShift, Qt::ShiftModifier);
    modifiers.setFlag(Qt::ShiftModifier, modifiers.testFlag(Qt::ShiftModifier) || key.isUpper());
    return QKeyCombination(modifiers, static_cast<Qt::Key>(key.toUpper().unicode()));
}

PopUpMenu::PopUpMenu(Connection& connection, Scheduler& scheduler) : connection(connection), scheduler(scheduler) {}

PopUpMenu::~PopUpMenu() {
    delete shown;
}

bool PopUpMenu::open(std::shared_ptr<Menu> menu) {
    if (waiting || (shown && shown->isVisible())) {
        return false;
    }
    waiting = std::move(menu);
    triesLeft = mostTries;
    tryToOpen();
    return true;
}

void PopUpMenu::close() {
    waiting = nullptr;
    nextTry = nullptr;
    if (shown) {
        shown->close();
    }
}

/// Takes both for a moment. Windows are told that this was no change of the focus.
bool PopUpMenu::isInputFree() {
    auto* const xcb = connection.xcb();
    const auto keyboard =
        xcb_grab_keyboard(xcb, 0, connection.root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const auto pointer = xcb_grab_pointer(xcb, 0, connection.root(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                                          XCB_NONE, XCB_NONE, XCB_CURRENT_TIME);
    xcb_ungrab_pointer(xcb, XCB_CURRENT_TIME);
    xcb_ungrab_keyboard(xcb, XCB_CURRENT_TIME);
    // The menu's grabs, which go out on Qt's connection, must come after the end of these.
    const auto end = xcb_get_input_focus(xcb);
    const Reply<xcb_grab_keyboard_reply_t> keyboardReply(xcb_grab_keyboard_reply(xcb, keyboard, nullptr));
    const Reply<xcb_grab_pointer_reply_t> pointerReply(xcb_grab_pointer_reply(xcb, pointer, nullptr));
    const Reply<xcb_get_input_focus_reply_t> ended(xcb_get_input_focus_reply(xcb, end, nullptr));
    return keyboardReply && keyboardReply->status == XCB_GRAB_STATUS_SUCCESS && pointerReply &&
           pointerReply->status == XCB_GRAB_STATUS_SUCCESS && ended;
}

void PopUpMenu::tryToOpen() {
    if (isInputFree()) {
        nextTry = nullptr;
        const auto menu = std::exchange(waiting, nullptr);
        if (const auto delegate = menu->delegate.lock()) {
            delegate->menuNeedsUpdate(*menu);
        }
        show(*menu);
        return;
    }
    if (--triesLeft == 0) {
        complain("Impossibile aprire il menu: un altro programma trattiene il puntatore o la tastiera");
        close();
        return;
    }
    if (!nextTry) {
        nextTry = scheduler.scheduleRepeatingTimer(retryInterval, [this] { tryToOpen(); });
    }
}

void PopUpMenu::show(const Menu& menu) {
    shown = new QMenu;
    addItems(*shown, menu.items);
    QObject::connect(shown, &QMenu::aboutToHide, shown, &QObject::deleteLater);
    shown->popup(QCursor::pos());
}

} // namespace quillon::x11
