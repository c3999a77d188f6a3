// A desktop panel reduced to what it says over D-Bus, for tests.
//   sample-panel watch               shows status items until it is ended: a line for each that registers
//   sample-panel portal light|dark   tells programs that preference until it is ended
// Both write "ready" on the standard error when they serve.
//   sample-panel icon SERVICE        prints the item's tool tip and the sizes and middles of its pictures
//   sample-panel menu SERVICE        opens the item's menu and prints it: number, tabulation, item
//   sample-panel click SERVICE ID    chooses the menu item of that number
//   sample-panel activate SERVICE    clicks on the icon

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStringList>
#include <QVariantMap>

#include <cstdio>

namespace {

void print(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

class Watcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

public:
    [[nodiscard]] bool hasHost() const { return true; }
    [[nodiscard]] int protocolVersion() const { return 0; }

public Q_SLOTS:
    void RegisterStatusNotifierItem(const QString& service) { print(service); }

Q_SIGNALS:
    void StatusNotifierHostRegistered();
};

class Portal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit Portal(bool isDark) : scheme(isDark ? 1 : 2) {}

public Q_SLOTS:
    QDBusVariant Read(const QString& /*nameSpace*/, const QString& /*key*/) {
        return QDBusVariant(QVariant::fromValue(QDBusVariant(scheme)));
    }

private:
    uint scheme;
};

int serve(QObject& object, const char* path, const char* service) {
    auto bus = QDBusConnection::sessionBus();
    const bool served = bus.registerObject(path, &object,
                                           QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties |
                                               QDBusConnection::ExportAllSignals) &&
                        bus.registerService(service);
    if (!served) {
        return 1;
    }
    std::fprintf(stderr, "ready\n");
    return QCoreApplication::exec();
}

QVariant itemProperty(const QString& service, const QString& name) {
    auto call =
        QDBusMessage::createMethodCall(service, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get");
    call << "org.kde.StatusNotifierItem" << name;
    const QDBusReply<QDBusVariant> reply = QDBusConnection::sessionBus().call(call);
    return reply.isValid() ? reply.value().variant() : QVariant();
}

void printPixmaps(const QDBusArgument& pixmaps) {
    pixmaps.beginArray();
    while (!pixmaps.atEnd()) {
        int width = 0;
        int height = 0;
        QByteArray bytes;
        pixmaps.beginStructure();
        pixmaps >> width >> height >> bytes;
        pixmaps.endStructure();
        const auto middle = bytes.mid((height / 2 * width + width / 2) * 4, 4);
        print(QString("pixmap %1x%2 %3").arg(width).arg(height).arg(QString::fromLatin1(middle.toHex())));
    }
    pixmaps.endArray();
}

int showIcon(const QString& service) {
    for (const QString name : {"Category", "Id", "Title", "Status"}) {
        print(name + " " + itemProperty(service, name).toString());
    }
    const auto toolTip = itemProperty(service, "ToolTip").value<QDBusArgument>();
    QString iconName;
    QString title;
    toolTip.beginStructure();
    toolTip >> iconName;
    toolTip.beginArray();
    toolTip.endArray();
    toolTip >> title;
    print("ToolTip " + title);
    printPixmaps(itemProperty(service, "IconPixmap").value<QDBusArgument>());
    return 0;
}

QDBusMessage menuCall(const QString& service, const QString& method) {
    const auto path = itemProperty(service, "Menu").value<QDBusObjectPath>().path();
    return QDBusMessage::createMethodCall(service, path, "com.canonical.dbusmenu", method);
}

void printItems(const QDBusArgument& layout, int depth) {
    int id = 0;
    QVariantMap properties;
    layout.beginStructure();
    layout >> id >> properties;
    if (depth > 0) {
        QString text = properties.value("type") == "separator" ? "---" : properties.value("label").toString();
        if (!properties.value("enabled", true).toBool()) {
            text = "[" + text + "]";
        }
        if (properties.value("toggle-state", 0).toInt() == 1) {
            text += " on";
        }
        if (properties.contains("shortcut")) {
            text += " " + qdbus_cast<QList<QStringList>>(properties.value("shortcut")).value(0).join('+');
        }
        print(QString("%1\t%2").arg(id).arg(text));
    }
    layout.beginArray();
    while (!layout.atEnd()) {
        QDBusVariant child;
        layout >> child;
        printItems(child.variant().value<QDBusArgument>(), depth + 1);
    }
    layout.endArray();
    layout.endStructure();
}

int showMenu(const QString& service) {
    QDBusConnection::sessionBus().call(menuCall(service, "AboutToShow") << 0);
    const auto answer = QDBusConnection::sessionBus().call(menuCall(service, "GetLayout") << 0 << -1 << QStringList());
    if (answer.type() != QDBusMessage::ReplyMessage) {
        print(answer.errorMessage());
        return 1;
    }
    printItems(answer.arguments().at(1).value<QDBusArgument>(), 0);
    return 0;
}

int click(const QString& service, int id) {
    const auto answer = QDBusConnection::sessionBus().call(
        menuCall(service, "Event") << id << "clicked" << QVariant::fromValue(QDBusVariant(0)) << 0U);
    return answer.type() == QDBusMessage::ReplyMessage ? 0 : 1;
}

int activate(const QString& service) {
    const auto answer = QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(service, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate")
        << 0 << 0);
    return answer.type() == QDBusMessage::ReplyMessage ? 0 : 1;
}

int perform(const QStringList& arguments) {
    const auto verb = arguments.value(1);
    const auto subject = arguments.value(2);
    if (verb == "watch") {
        Watcher watcher;
        return serve(watcher, "/StatusNotifierWatcher", "org.kde.StatusNotifierWatcher");
    }
    if (verb == "portal") {
        Portal portal(subject == "dark");
        return serve(portal, "/org/freedesktop/portal/desktop", "org.freedesktop.portal.Desktop");
    }
    if (verb == "icon") {
        return showIcon(subject);
    }
    if (verb == "menu") {
        return showMenu(subject);
    }
    if (verb == "click") {
        return click(subject, arguments.value(3).toInt());
    }
    return verb == "activate" ? activate(subject) : 2;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    qDBusRegisterMetaType<QList<QStringList>>();
    return perform(QCoreApplication::arguments());
}

#include "SamplePanel.moc"
