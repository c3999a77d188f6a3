#include "Platform/macOS/NativeMenu.h"

#include "Platform/Menu.h"
#include "Platform/macOS/Conversions.h"

/// What AppKit's windows do for text fields without saying so in its headers.
@protocol QuillonUndoActions
- (void)undo:(nullable id)sender;
- (void)redo:(nullable id)sender;
@end

/// The target of an item, which holds it weakly, and its represented object, which keeps it alive.
@interface QuillonMenuChoice : NSObject
- (instancetype)initWithPortItem:(const quillon::MenuItem&)item;
- (void)choose:(nullable id)sender;
@end

@implementation QuillonMenuChoice {
    quillon::MenuItem portItem;
}

- (instancetype)initWithPortItem:(const quillon::MenuItem&)item {
    self = [super init];
    portItem = item;
    return self;
}

- (void)choose:(nullable id)sender {
    // The action may replace the menu's items, and with them this object.
    const quillon::MenuItem chosen = portItem;
    std::get<quillon::MenuAction>(chosen.action)(chosen);
}

@end

namespace quillon::macos {

namespace {

SEL toSelector(StandardAction action) {
    switch (action) {
    case StandardAction::terminate:
        return @selector(terminate:);
    case StandardAction::undo:
        return @selector(undo:);
    case StandardAction::redo:
        return @selector(redo:);
    case StandardAction::cut:
        return @selector(cut:);
    case StandardAction::copy:
        return @selector(copy:);
    case StandardAction::paste:
        return @selector(paste:);
    case StandardAction::selectAll:
        return @selector(selectAll:);
    }
}

void setAction(NSMenuItem* item, const MenuItem& portItem) {
    if (std::holds_alternative<MenuAction>(portItem.action)) {
        QuillonMenuChoice* const choice = [[QuillonMenuChoice alloc] initWithPortItem:portItem];
        item.representedObject = choice;
        item.target = choice;
        item.action = @selector(choose:);
    } else if (const auto* const standard = std::get_if<StandardAction>(&portItem.action)) {
        item.action = toSelector(*standard); // Without a target it goes to whatever has the keyboard focus.
    }
}

NSMenuItem* toNSMenuItem(const MenuItem& portItem) {
    if (portItem.isSeparator) {
        return [NSMenuItem separatorItem];
    }
    NSMenuItem* const item = [[NSMenuItem alloc] initWithTitle:toNSString(portItem.title)
                                                        action:nil
                                                 keyEquivalent:toNSString(portItem.keyEquivalent)];
    item.keyEquivalentModifierMask = portItem.keyEquivalentModifierMask;
    item.state = portItem.isOn ? NSControlStateValueOn : NSControlStateValueOff;
    // A menu enables its items by itself, a standard action where it can be performed, and disables those that have
    // neither an action nor a submenu.
    if (portItem.isEnabled) {
        setAction(item, portItem);
        if (portItem.submenu != nullptr) {
            item.submenu = makeNativeMenu(portItem.submenu);
        }
    }
    return item;
}

} // namespace

} // namespace quillon::macos

/// Its own delegate.
@interface QuillonMenu : NSMenu <NSMenuDelegate>
- (instancetype)initWithPortMenu:(std::shared_ptr<quillon::Menu>)menu;
@end

@implementation QuillonMenu {
    std::shared_ptr<quillon::Menu> portMenu;
}

- (instancetype)initWithPortMenu:(std::shared_ptr<quillon::Menu>)menu {
    self = [self initWithTitle:quillon::macos::toNSString(menu->title)];
    portMenu = std::move(menu);
    self.delegate = self;
    [self showItems];
    return self;
}

- (void)menuNeedsUpdate:(NSMenu*)menu {
    // A menu without a delegate keeps its items, among them those that AppKit adds to an edit menu.
    if (const auto delegate = portMenu->delegate.lock()) {
        delegate->menuNeedsUpdate(*portMenu);
        [self showItems];
    }
}

- (void)showItems {
    [self removeAllItems];
    for (const auto& item : portMenu->items) {
        [self addItem:quillon::macos::toNSMenuItem(item)];
    }
}

@end

namespace quillon::macos {

NSMenu* makeNativeMenu(std::shared_ptr<Menu> menu) {
    return [[QuillonMenu alloc] initWithPortMenu:std::move(menu)];
}

} // namespace quillon::macos
