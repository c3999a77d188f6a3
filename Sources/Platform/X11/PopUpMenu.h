#pragma once

#include "Platform/Menu.h"
#include "Platform/Registration.h"
#include "Platform/Scheduler.h"

#include <QPointer>

#include <memory>

class QKeySequence;
class QMenu;

namespace quillon::x11 {

class Connection;

/// Does what a chosen item stands for.
void performMenuItem(const MenuItem& item);
/// The keys that choose the item, Command being Control here as in Qt; empty for none.
[[nodiscard]] QKeySequence keysOf(const MenuItem& item);

/// Shows menus at the pointer, one at a time, without making the program active. Main thread.
class PopUpMenu {
public:
    PopUpMenu(Connection& connection, Scheduler& scheduler);
    ~PopUpMenu();
    PopUpMenu(const PopUpMenu&) = delete;
    PopUpMenu& operator=(const PopUpMenu&) = delete;

    /// Asks the menu's delegate and opens it as soon as the pointer and the keyboard are free: a menu that cannot
    /// have both would not close. Returns at once; false while another menu is open or waits.
    bool open(std::shared_ptr<Menu> menu);
    void close();

private:
    [[nodiscard]] bool isInputFree();
    void tryToOpen();
    void show(const Menu& menu);

    Connection& connection;
    Scheduler& scheduler;
    /// Waits to be opened.
    std::shared_ptr<Menu> waiting;
    int triesLeft = 0;
    RegistrationToken nextTry;
    QPointer<QMenu> shown;
};

} // namespace quillon::x11
