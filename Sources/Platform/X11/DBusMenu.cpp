#include "Platform/X11/DBusMenu.h"

#include "Platform/X11/PopUpMenu.h"
#include "Platform/X11/SafeText.h"

#include <QDBusMetaType>
#include <QKeySequence>
#include <QTimer>

namespace quillon::x11 {

// Qt finds the operators by the types' namespace.

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout) {
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const auto& child : layout.children) {
        argument << QDBusVariant(QVariant::fromValue(child));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout) {
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    layout.children.clear();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.push_back(qdbus_cast<MenuLayout>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item) {
    argument.beginStructure();
    argument << item.id << item.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item) {
    argument.beginStructure();
    argument >> item.id >> item.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event) {
    argument.beginStructure();
    argument << event.id << event.eventId << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event) {
    argument.beginStructure();
    argument >> event.id >> event.eventId >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

namespace {

/// Panels take "_" for the mark of a letter to choose the item by.
QString labelOf(const MenuItem& item) {
    return QString::fromStdString(safeText(item.title)).replace('_', "__");
}

MenuShortcut shortcutOf(const QKeySequence& keys) {
    auto names = keys.toString(QKeySequence::PortableText).split('+');
    names.replaceInStrings("Ctrl", "Control");
    names.replaceInStrings("Meta", "Super");
    return {names};
}

/// Properties that have their default value are left out.
QVariantMap propertiesOf(const MenuItem& item) {
    if (item.isSeparator) {
        return {{"type", "separator"}};
    }
    QVariantMap properties{{"label", labelOf(item)}};
    if (!item.isEnabled) {
        properties["enabled"] = false;
    }
    if (item.isOn) {
        properties["toggle-type"] = "checkmark";
        properties["toggle-state"] = 1;
    }
    if (const auto keys = keysOf(item); !keys.isEmpty()) {
        properties["shortcut"] = QVariant::fromValue(shortcutOf(keys));
    }
    if (item.submenu) {
        properties["children-display"] = "submenu";
    }
    return properties;
}

/// Apart from the numbers.
bool looksTheSame(const MenuLayout& one, const MenuLayout& other) {
    return one.properties == other.properties && std::equal(one.children.begin(), one.children.end(),
                                                            other.children.begin(), other.children.end(), looksTheSame);
}

const MenuLayout* find(const MenuLayout& layout, int id) {
    if (layout.id == id) {
        return &layout;
    }
    for (const auto& child : layout.children) {
        if (const auto* found = find(child, id)) {
            return found;
        }
    }
    return nullptr;
}

/// An empty list asks for all.
QVariantMap chosen(const QVariantMap& properties, const QStringList& names) {
    QVariantMap result;
    for (auto property = properties.begin(); property != properties.end(); ++property) {
        if (names.isEmpty() || names.contains(property.key())) {
            result.insert(property.key(), property.value());
        }
    }
    return result;
}

/// A negative depth asks for everything below.
MenuLayout cut(const MenuLayout& layout, int depth, const QStringList& names) {
    MenuLayout result{layout.id, chosen(layout.properties, names), {}};
    if (depth != 0) {
        for (const auto& child : layout.children) {
            result.children.push_back(cut(child, depth - 1, names));
        }
    }
    return result;
}

} // namespace

DBusMenu::DBusMenu() {
    qDBusRegisterMetaType<MenuLayout>();
    qDBusRegisterMetaType<MenuItemProperties>();
    qDBusRegisterMetaType<QList<MenuItemProperties>>();
    qDBusRegisterMetaType<MenuEvent>();
    qDBusRegisterMetaType<QList<MenuEvent>>();
    qDBusRegisterMetaType<MenuShortcut>();
}

void DBusMenu::setMenu(std::shared_ptr<Menu> newMenu) {
    menu = std::move(newMenu);
    isFilled = false;
    Q_EMIT LayoutUpdated(++revision, 0);
}

void DBusMenu::addItems(const std::vector<MenuItem>& items, MenuLayout& parent) {
    for (const auto& item : items) {
        parent.children.push_back(addItem(item));
    }
}

MenuLayout DBusMenu::addItem(const MenuItem& item) {
    MenuLayout layout{++lastId, propertiesOf(item), {}};
    itemsById.emplace(layout.id, item);
    if (item.submenu) {
        addItems(item.submenu->items, layout);
    }
    return layout;
}

void DBusMenu::fill(int firstNumber) {
    firstId = firstNumber;
    lastId = firstNumber - 1;
    itemsById.clear();
    root = {0, {{"children-display", "submenu"}}, {}};
    addItems(menu->items, root);
}

/// Asks the delegate. True when panels must fetch the menu anew, as its items have new numbers; a menu that looks as
/// before keeps those that the panels know.
bool DBusMenu::refresh() {
    if (!menu) {
        return false;
    }
    if (const auto delegate = menu->delegate.lock()) {
        delegate->menuNeedsUpdate(*menu);
    }
    isFilled = true;
    const auto before = root;
    const int lastBefore = lastId;
    fill(firstId);
    if (looksTheSame(before, root)) {
        return false;
    }
    fill(lastBefore + 1);
    ++revision;
    return true;
}

void DBusMenu::refreshOnce() {
    if (!isFilled) {
        std::ignore = refresh();
    }
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames, MenuLayout& layout) {
    refreshOnce();
    const auto* found = find(root, parentId);
    layout = found != nullptr ? cut(*found, recursionDepth, propertyNames) : MenuLayout{parentId, {}, {}};
    return revision;
}

QList<MenuItemProperties> DBusMenu::GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames) {
    refreshOnce();
    QList<MenuItemProperties> result;
    for (const int id : ids) {
        if (const auto* found = find(root, id)) {
            result.push_back({id, chosen(found->properties, propertyNames)});
        }
    }
    return result;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) {
    refreshOnce();
    const auto* found = find(root, id);
    return QDBusVariant(found != nullptr ? found->properties.value(name, QString()) : QString());
}

void DBusMenu::Event(int id, const QString& eventId, const QDBusVariant& /*data*/, uint /*timestamp*/) {
    const auto found = itemsById.find(id);
    if (eventId != "clicked" || found == itemsById.end() || !found->second.isEnabled) {
        return;
    }
    // After the answer, since the action may take its time.
    QTimer::singleShot(0, this, [item = found->second] { performMenuItem(item); });
}

QList<int> DBusMenu::EventGroup(const QList<MenuEvent>& events) {
    QList<int> unknown;
    for (const auto& event : events) {
        if (find(root, event.id) == nullptr) {
            unknown.push_back(event.id);
        }
        Event(event.id, event.eventId, event.data, event.timestamp);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int id) {
    // Submenus are filled together with their menu.
    return id == 0 && refresh();
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    idErrors.clear();
    QList<int> changed;
    for (const int id : ids) {
        if (AboutToShow(id)) {
            changed.push_back(id);
        }
    }
    return changed;
}

} // namespace quillon::x11
