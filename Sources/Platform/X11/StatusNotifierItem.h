#pragma once

#include "Platform/Images.h"
#include "Platform/X11/DBusMenu.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>

#include <functional>
#include <memory>
#include <string>

namespace quillon::x11 {

// The types and names of org.kde.StatusNotifierItem.

/// 32 bits a pixel, alpha first, not premultiplied, in network byte order.
struct NotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray bytes;
};
using NotifierPixmaps = QList<NotifierPixmap>;

struct NotifierToolTip {
    QString iconName;
    NotifierPixmaps icon;
    QString title;
    QString text;
};

/// An icon for panels that take icons over D-Bus, known on the session bus from its construction to its destruction.
/// Main thread.
class StatusNotifierItem final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(uint WindowId READ windowId)
    Q_PROPERTY(QString IconName READ noIconName)
    Q_PROPERTY(quillon::x11::NotifierPixmaps IconPixmap READ iconPixmap)
    Q_PROPERTY(QString OverlayIconName READ noIconName)
    Q_PROPERTY(QString AttentionIconName READ noIconName)
    Q_PROPERTY(quillon::x11::NotifierToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath)

public:
    /// The name is the one under which panels remember the icon's place.
    explicit StatusNotifierItem(const std::string& name);
    ~StatusNotifierItem() override;

    /// The service to register with panels.
    [[nodiscard]] const QString& service() const { return serviceName; }

    void setImage(std::shared_ptr<Image> image, Appearance appearance);
    void setToolTip(const std::string& text);
    void setMenu(std::shared_ptr<Menu> menu) { menuObject.setMenu(std::move(menu)); }
    /// A click that the panel does not answer with the menu by itself.
    std::function<void()> onClick;

    [[nodiscard]] QString category() const { return "ApplicationStatus"; }
    [[nodiscard]] QString id() const { return itemName; }
    [[nodiscard]] QString title() const { return toolTipText; }
    [[nodiscard]] QString status() const { return "Active"; }
    [[nodiscard]] uint windowId() const { return 0; }
    [[nodiscard]] QString noIconName() const { return {}; }
    [[nodiscard]] NotifierPixmaps iconPixmap() const;
    [[nodiscard]] NotifierToolTip toolTip() const { return {{}, {}, toolTipText, {}}; }
    [[nodiscard]] bool itemIsMenu() const { return true; }
    [[nodiscard]] QDBusObjectPath menuPath() const;

public Q_SLOTS:
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString& orientation);

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewToolTip();

private:
    QDBusConnection bus;
    QString itemName;
    QString serviceName;
    DBusMenu menuObject;
    std::shared_ptr<Image> image;
    Appearance appearance = Appearance::aqua;
    QString toolTipText;
};

} // namespace quillon::x11

Q_DECLARE_METATYPE(quillon::x11::NotifierPixmap)
Q_DECLARE_METATYPE(quillon::x11::NotifierToolTip)
