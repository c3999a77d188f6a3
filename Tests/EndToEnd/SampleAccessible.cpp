// A program with a window whose content it describes badly on the accessibility bus, for tests. Of the ways:
//   endless   everything has 20 children, which are new ones each time, and so on
//   circle    everything contains the window
//   crowd     everything has as many children as can be counted
//   slow      as endless, and every answer takes 100 ms
//   nonsense  answers of wrong types, and places that no screen has
// With a scroll area of 380x250 at 10,50 in the window, and a bar that counts from 0 to 100:
//   displaced  all places are those of a window far away
//   swollen    the window has a border of 20 that is not there, and lies at the origin
//   boundless  the area and its bar are as large as can be told and lie as far away, and their values are no numbers

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
#include <QVariantList>

#include <xcb/xcb.h>

#include <cstdio>
#include <limits>
#include <memory>
#include <optional>

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

QVariant propertyValue(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

class Tree : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        connection.send(message.createReply(answer(message, connection.baseService())));
        return true;
    }

protected:
    virtual QVariantList answer(const QDBusMessage& message, const QString& service) = 0;
};

/// Far too much, or nothing that makes sense.
class BadTree final : public Tree {
public:
    explicit BadTree(QString way) : way(std::move(way)) {}

protected:
    QVariantList answer(const QDBusMessage& message, const QString& service) override {
        if (way == "slow") {
            QThread::msleep(100);
        }
        const bool isApplication = message.path() == rootPath;
        const bool isWindow = message.path() == windowPath;
        const auto member = message.member();
        if (member == "GetChildren") {
            return {QVariant::fromValue(isApplication ? QList<Reference>{{service, QDBusObjectPath(windowPath)}}
                                                      : children(service))};
        }
        if (way == "nonsense" && !isApplication && !isWindow) {
            return {QString("nonsense")};
        }
        if (member == "GetRole") {
            return {isWindow ? 23U : 39U};
        }
        if (member == "GetState") {
            return {QVariant::fromValue(QList<uint>{0, 0})};
        }
        if (member == "GetExtents") {
            return {QVariant::fromValue(place)};
        }
        const auto name = message.arguments().value(1).toString();
        if (name == "ChildCount") {
            return {
                propertyValue(way == "crowd" && !isApplication && !isWindow ? std::numeric_limits<int>::max() : 20)};
        }
        return {propertyValue(name == "Name" ? QString("Bad tree") : QString())};
    }

private:
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

/// What a program tells of a scroll area in its window.
struct Lie {
    Extents window;
    Extents area;
    Extents bar;
    double minimum = 0;
    double maximum = 100;
    double current = 0;
};

std::optional<Lie> lieOf(const QString& way) {
    if (way == "displaced") {
        return Lie{{3000, -2000, place.width, place.height}, {3010, -1950, 380, 250}, {3375, -1950, 15, 250}};
    }
    if (way == "swollen") {
        return Lie{{0, 0, place.width + 40, place.height + 40}, {30, 70, 380, 250}, {395, 70, 15, 250}};
    }
    if (way == "boundless") {
        constexpr int most = std::numeric_limits<int>::max();
        constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
        constexpr double endless = std::numeric_limits<double>::infinity();
        return Lie{place, {most, most, most, most}, {most, most, most - 1, most}, noNumber, endless, noNumber};
    }
    return std::nullopt;
}

/// Application, window, scroll area, and in that a bar and its content.
class LyingTree final : public Tree {
public:
    explicit LyingTree(const Lie& lie) : lie(lie) {}

protected:
    QVariantList answer(const QDBusMessage& message, const QString& service) override {
        const auto path = message.path();
        const auto member = message.member();
        if (member == "GetChildren") {
            QList<Reference> references;
            for (const auto* child : childrenOf(path)) {
                references.append({service, QDBusObjectPath(child)});
            }
            return {QVariant::fromValue(references)};
        }
        if (member == "GetRole") {
            return {path == windowPath ? 23U : path == areaPath ? 49U : path == barPath ? 48U : 39U};
        }
        if (member == "GetState") {
            return {QVariant::fromValue(QList<uint>{0, 0})};
        }
        if (member == "GetExtents") {
            return {QVariant::fromValue(path == windowPath ? lie.window : path == barPath ? lie.bar : lie.area)};
        }
        if (member == "Set") {
            lie.current = qvariant_cast<QDBusVariant>(message.arguments().value(2)).variant().toDouble();
            return {};
        }
        return {propertyValue(propertyOf(path, message.arguments().value(1).toString()))};
    }

private:
    static constexpr auto areaPath = "/org/a11y/atspi/accessible/2";
    static constexpr auto barPath = "/org/a11y/atspi/accessible/3";
    static constexpr auto contentPath = "/org/a11y/atspi/accessible/4";

    [[nodiscard]] static QList<const char*> childrenOf(const QString& path) {
        if (path == rootPath) {
            return {windowPath};
        }
        if (path == windowPath) {
            return {areaPath};
        }
        return path == areaPath ? QList<const char*>{barPath, contentPath} : QList<const char*>();
    }
    [[nodiscard]] QVariant propertyOf(const QString& path, const QString& name) const {
        if (name == "ChildCount") {
            return static_cast<int>(childrenOf(path).size());
        }
        if (name == "MinimumValue") {
            return lie.minimum;
        }
        if (name == "MaximumValue") {
            return lie.maximum;
        }
        return name == "CurrentValue" ? QVariant(lie.current) : QVariant(QString("Bad tree"));
    }

    Lie lie;
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
    const auto way = application.arguments().value(1);
    const auto lie = lieOf(way);
    const std::unique_ptr<Tree> tree =
        lie ? std::unique_ptr<Tree>(std::make_unique<LyingTree>(*lie)) : std::make_unique<BadTree>(way);
    if (!bus.isConnected() || !bus.registerVirtualObject("/org/a11y/atspi", tree.get(), QDBusConnection::SubPath) ||
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
