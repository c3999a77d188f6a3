#pragma once

#include "Platform/Menu.h"

#include <QDBusArgument>
#include <QDBusVariant>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <map>
#include <memory>
#include <vector>

namespace quillon::x11 {

// The types and names of com.canonical.dbusmenu.

/// An item with what is below it.
struct MenuLayout {
    int id = 0;
    QVariantMap properties;
    std::vector<MenuLayout> children;
};

struct MenuItemProperties {
    int id = 0;
    QVariantMap properties;
};

struct MenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};

/// Keys that are held together, for each step of a shortcut.
using MenuShortcut = QList<QStringList>;

/// Hands a menu to panels, which show it themselves. The delegate is asked when a panel is about to open the menu.
/// Exported with its slots, properties and signals. Main thread.
class DBusMenu final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    DBusMenu();

    void setMenu(std::shared_ptr<Menu> newMenu);

    [[nodiscard]] uint version() const { return 3; }
    [[nodiscard]] QString textDirection() const { return "ltr"; }
    [[nodiscard]] QString status() const { return "normal"; }
    [[nodiscard]] QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   quillon::x11::MenuLayout& layout);
    QList<quillon::x11::MenuItemProperties> GetGroupProperties(const QList<int>& ids, const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<quillon::x11::MenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

Q_SIGNALS:
    void LayoutUpdated(uint revision, int parent);
    void ItemsPropertiesUpdated(const QList<quillon::x11::MenuItemProperties>& updated,
                                const QList<quillon::x11::MenuItemProperties>& removed);
    void ItemActivationRequested(int id, uint timestamp);

private:
    [[nodiscard]] bool refresh();
    void refreshOnce();
    void fill(int firstNumber);
    MenuLayout addItem(const MenuItem& item);
    void addItems(const std::vector<MenuItem>& items, MenuLayout& parent);

    std::shared_ptr<Menu> menu;
    bool isFilled = false;
    uint revision = 1;
    int firstId = 1;
    int lastId = 0;
    /// What panels see; the root has the number 0.
    MenuLayout root;
    /// What the numbers stand for.
    std::map<int, MenuItem> itemsById;
};

} // namespace quillon::x11

Q_DECLARE_METATYPE(quillon::x11::MenuLayout)
Q_DECLARE_METATYPE(quillon::x11::MenuItemProperties)
Q_DECLARE_METATYPE(quillon::x11::MenuEvent)
