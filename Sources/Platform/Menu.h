#pragma once

#include "Platform/Panel.h"

#include <any>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace quillon {

struct Menu;
struct MenuItem;

/// What the platform does by itself, for whatever has the keyboard focus.
enum class StandardAction {
    terminate, ///< terminate:
    undo,      ///< undo:
    redo,      ///< redo:
    cut,       ///< cut:
    copy,      ///< copy:
    paste,     ///< paste:
    selectAll, ///< selectAll:
};

/// Called with the item that was chosen.
using MenuAction = std::function<void(const MenuItem& sender)>;

/// One line of a menu (NSMenuItem).
struct MenuItem {
    std::string title;
    bool isSeparator = false;
    /// None for a line that only tells something, or that only opens its submenu.
    std::variant<std::monostate, MenuAction, StandardAction> action;
    /// The character that chooses the item from the keyboard; an upper-case letter stands for Shift too; empty for
    /// none.
    std::string keyEquivalent;
    /// Held together with `keyEquivalent`.
    ModifierFlags keyEquivalentModifierMask = modifierFlagCommand;
    bool isEnabled = true;
    /// Shown with a check mark (NSControlStateValueOn).
    bool isOn = false;
    std::any representedObject;
    std::shared_ptr<Menu> submenu;

    [[nodiscard]] static MenuItem separator() {
        MenuItem item;
        item.isSeparator = true;
        return item;
    }
};

/// NSMenuDelegate.
class MenuDelegate {
public:
    virtual ~MenuDelegate() = default;

    /// The menu is about to open: its items may be replaced.
    virtual void menuNeedsUpdate(Menu& menu) = 0;
};

/// NSMenu. A plain value that a platform draws; what it shows while it is open is what it held when it opened. Once a
/// platform has it, its items change in `menuNeedsUpdate` only: some platforms look at them at no other time.
struct Menu {
    std::string title;
    std::vector<MenuItem> items;
    std::weak_ptr<MenuDelegate> delegate;
};

} // namespace quillon
