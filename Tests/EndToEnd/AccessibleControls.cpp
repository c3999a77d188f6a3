#include "AccessibleControls.h"

#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>

#include <stdexcept>

namespace quillon::e2e {

namespace {

constexpr auto accessibleInterface = "org.a11y.atspi.Accessible";
constexpr int timeout = 2000; // ms

// AT-SPI's numbers.
constexpr unsigned checkedState = 4;
constexpr unsigned focusedState = 12;
constexpr unsigned showingState = 25;
constexpr unsigned labelledByRelation = 2;

QDBusConnection connectTo(const std::string& address, const char* name) {
    auto connection = QDBusConnection::connectToBus(QString::fromStdString(address), name);
    if (!connection.isConnected()) {
        throw std::runtime_error("no bus at " + address);
    }
    return connection;
}

std::string accessibilityAddress(const Environment& environment) {
    constexpr auto name = "test-session";
    const auto session = connectTo(environment.at("DBUS_SESSION_BUS_ADDRESS"), name);
    const QDBusReply<QString> address =
        session.call(QDBusMessage::createMethodCall("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress"),
                     QDBus::Block, timeout);
    QDBusConnection::disconnectFromBus(name);
    return address.value().toStdString();
}

constexpr auto connectionName = "test-accessibility";

} // namespace

struct AccessibleControls::Reference {
    QString service;
    QString path;
};

AccessibleControls::AccessibleControls(const Environment& environment)
    : bus(connectTo(accessibilityAddress(environment), connectionName)) {}

AccessibleControls::~AccessibleControls() {
    QDBusConnection::disconnectFromBus(connectionName);
}

QDBusMessage AccessibleControls::call(const Reference& object, const char* interface, const char* method,
                                      const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(object.service, object.path, interface, method);
    message.setArguments(arguments);
    return bus.call(message, QDBus::Block, timeout);
}

std::vector<AccessibleControls::Reference> AccessibleControls::children(const Reference& parent) const {
    const auto answer = call(parent, accessibleInterface, "GetChildren");
    return answer.signature() == "a(so)" ? referencesIn(qvariant_cast<QDBusArgument>(answer.arguments().front()))
                                         : std::vector<Reference>();
}

std::vector<AccessibleControls::Reference> AccessibleControls::referencesIn(const QDBusArgument& list) {
    std::vector<Reference> found;
    list.beginArray();
    while (!list.atEnd()) {
        Reference reference;
        QDBusObjectPath path;
        list.beginStructure();
        list >> reference.service >> path;
        list.endStructure();
        reference.path = path.path();
        found.push_back(reference);
    }
    list.endArray();
    return found;
}

std::string AccessibleControls::text(const Reference& object, const char* property) const {
    const QDBusReply<QDBusVariant> value =
        call(object, "org.freedesktop.DBus.Properties", "Get", {accessibleInterface, property});
    return value.value().variant().toString().toStdString();
}

std::string AccessibleControls::labelOf(const Reference& object) const {
    const auto answer = call(object, accessibleInterface, "GetRelationSet");
    if (answer.signature() != "a(ua(so))") {
        return "";
    }
    std::string label;
    const auto relations = qvariant_cast<QDBusArgument>(answer.arguments().front());
    relations.beginArray();
    while (!relations.atEnd()) {
        unsigned type = 0;
        relations.beginStructure();
        relations >> type;
        for (const auto& target : referencesIn(relations)) {
            if (type == labelledByRelation) {
                label = text(target, "Name");
            }
        }
        relations.endStructure();
    }
    relations.endArray();
    return label;
}

AccessibleControl AccessibleControls::read(const Reference& object) const {
    AccessibleControl control;
    control.name = text(object, "Name");
    control.label = labelOf(object);
    control.description = text(object, "Description");
    const QDBusReply<unsigned> role = call(object, accessibleInterface, "GetRole");
    control.role = static_cast<AccessibleControl::Role>(role.value());
    const QDBusReply<QList<unsigned>> states = call(object, accessibleInterface, "GetState");
    const auto bits = states.value();
    const auto has = [&](unsigned state) { return !bits.isEmpty() && (bits.front() >> state & 1U) != 0; };
    control.isChecked = has(checkedState);
    control.isFocused = has(focusedState);
    control.isShowing = has(showingState);
    constexpr unsigned onScreen = 0;
    const auto extents = call(object, "org.a11y.atspi.Component", "GetExtents", {onScreen});
    if (extents.signature() == "(iiii)") {
        const auto numbers = qvariant_cast<QDBusArgument>(extents.arguments().front());
        numbers.beginStructure();
        numbers >> control.place.x >> control.place.y >> control.place.width >> control.place.height;
        numbers.endStructure();
    }
    return control;
}

void AccessibleControls::collect(const Reference& object, std::vector<AccessibleControl>& found) const {
    for (const auto& child : children(object)) {
        found.push_back(read(child));
        collect(child, found);
    }
}

std::vector<AccessibleControl> AccessibleControls::of(pid_t process) const {
    std::vector<AccessibleControl> found;
    for (const auto& application : children({"org.a11y.atspi.Registry", "/org/a11y/atspi/accessible/root"})) {
        const QDBusReply<unsigned> owner =
            call({"org.freedesktop.DBus", "/org/freedesktop/DBus"}, "org.freedesktop.DBus",
                 "GetConnectionUnixProcessID", {application.service});
        if (static_cast<pid_t>(owner.value()) == process) {
            collect(application, found);
        }
    }
    return found;
}

} // namespace quillon::e2e
