// A program with a window whose content it describes badly on the accessibility bus, for tests. Of the ways:
//   endless   everything has 20 children, which are new ones each time, and so on
//   circle    everything contains the window
//   crowd     everything has as many children as can be counted
//   slow      as endless, and every answer takes 100 ms
//   nonsense  answers of wrong types, and places that no screen has

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QList>
#include <QThread>

#include <xcb/xcb.h>

#include <cstdio>
#include <limits>

namespace {

struct Reference {
    QString service;
    QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Reference& reference) {
    argument.beginStructure();
    argument << reference.service << reference.path;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Reference& reference) {
    argument.beginStructure();
    argument >> reference.service >> reference.path;
    argument.endStructure();
    return argument;
}

struct Extents {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const Extents& extents) {
    argument.beginStructure();
    argument << extents.x << extents.y << extents.width << extents.height;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Extents& extents) {
    argument.beginStructure();
    argument >> extents.x >> extents.y >> extents.width >> extents.height;
    argument.endStructure();
    return argument;
}

} // namespace

Q_DECLARE_METATYPE(Reference)
Q_DECLARE_METATYPE(Extents)

namespace {

constexpr auto rootPath = "/org/a11y/atspi/accessible/root";
constexpr auto windowPath = "/org/a11y/atspi/accessible/1";
constexpr Extents place{100, 100, 400, 300};

class BadTree final : public QDBusVirtualObject {
public:
    explicit BadTree(QString way) : way(std::move(way)) {}

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (way == "slow") {
            QThread::msleep(100);
        }
        connection.send(message.createReply(answer(message, connection.baseService())));
        return true;
    }

private:
    QVariant answer(const QDBusMessage& message, const QString& service) {
        const bool isApplication = message.path() == rootPath;
        const bool isWindow = message.path() == windowPath;
        const auto member = message.member();
        if (member == "GetChildren") {
            return QVariant::fromValue(isApplication ? QList<Reference>{{service, QDBusObjectPath(windowPath)}}
                                                     : children(service));
        }
        if (way == "nonsense" && !isApplication && !isWindow) {
            return QString("nonsense");
        }
        if (member == "GetRole") {
            return isWindow ? 23U : 39U;
        }
        if (member == "GetState") {
            return QVariant::fromValue(QList<uint>{0, 0});
        }
        if (member == "GetExtents") {
            return QVariant::fromValue(place);
        }
        const auto property = message.arguments().value(1).toString();
        if (property == "ChildCount") {
            return QVariant::fromValue(
                QDBusVariant(way == "crowd" && !isApplication && !isWindow ? std::numeric_limits<int>::max() : 20));
        }
        return QVariant::fromValue(QDBusVariant(property == "Name" ? QString("Bad tree") : QString()));
    }

    QList<Reference> children(const QString& service) {
        if (way == "circle") {
            return QList<Reference>(20, {service, QDBusObjectPath(windowPath)});
        }
        QList<Reference> result;
        for (int index = 0; index < 20; ++index) {
            result.append({service, QDBusObjectPath(QString("/org/a11y/atspi/accessible/%1").arg(++last))});
        }
        return result;
    }

    QString way;
    int last = 1;
};

/// A window of this process, with nothing in it.
void showWindow(xcb_connection_t* connection) {
    const auto* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const auto window = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, place.x, place.y, place.width,
                      place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    constexpr char title[] = "Bad tree";
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8,
                        sizeof title - 1, title);
    xcb_map_window(connection, window);
    xcb_flush(connection);
}

/// Not connected when there is no bus.
QDBusConnection connectToAccessibilityBus() {
    const auto question = QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress");
    const auto address = QDBusConnection::sessionBus().call(question).arguments().value(0).toString();
    return QDBusConnection::connectToBus(address, "accessibility");
}

bool registerAt(const QDBusConnection& bus) {
    auto call = QDBusMessage::createMethodCall("org.a11y.atspi.Registry", rootPath, "org.a11y.atspi.Socket", "Embed");
    call.setArguments({QVariant::fromValue(Reference{bus.baseService(), QDBusObjectPath(rootPath)})});
    return bus.call(call, QDBus::BlockWithGui).type() == QDBusMessage::ReplyMessage;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const QCoreApplication application(argumentCount, arguments);
    qDBusRegisterMetaType<Reference>();
    qDBusRegisterMetaType<QList<Reference>>();
    qDBusRegisterMetaType<Extents>();
    auto bus = connectToAccessibilityBus();
    BadTree tree(application.arguments().value(1));
    if (!bus.isConnected() || !bus.registerVirtualObject("/org/a11y/atspi", &tree, QDBusConnection::SubPath) ||
        !registerAt(bus)) {
        std::fputs("no accessibility bus\n", stderr);
        return 1;
    }
    auto* const connection = xcb_connect(nullptr, nullptr);
    showWindow(connection);
    const int status = QCoreApplication::exec();
    xcb_disconnect(connection);
    return status;
}
