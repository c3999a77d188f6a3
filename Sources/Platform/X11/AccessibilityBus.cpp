#include "Platform/X11/AccessibilityBus.h"

#include <QDBusArgument>
#include <QDBusError>
#include <QDBusPendingCall>
#include <QDBusVariant>

#include <algorithm>
#include <atomic>
#include <cmath>

namespace quillon::x11 {

namespace {

std::atomic<unsigned> connectionCount{0};

/// In milliseconds, at least one.
int timeUntil(Deadline deadline) {
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    return static_cast<int>(std::clamp<std::int64_t>(rest.count(), 1, INT32_MAX));
}

QDBusMessage noBus() {
    return QDBusMessage::createError(QDBusError::Disconnected, "no accessibility bus");
}

std::optional<QVariant> property(const QDBusMessage& answer) {
    if (resultOf(answer, "v") != AccessibilityError::success) {
        return std::nullopt;
    }
    return qvariant_cast<QDBusVariant>(answer.arguments().front()).variant();
}

} // namespace

AccessibilityBus::AccessibilityBus() : name(QString("quillon-accessibility-%1").arg(++connectionCount)) {}

AccessibilityBus::~AccessibilityBus() {
    QDBusConnection::disconnectFromBus(name);
}

std::optional<QDBusConnection> AccessibilityBus::connect(Deadline deadline) {
    const std::lock_guard lock(mutex);
    if (QDBusConnection known(name); known.isConnected()) {
        return known;
    }
    // A lost connection keeps its name until it is given up.
    QDBusConnection::disconnectFromBus(name);
    const auto question = methodCall({"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress");
    const auto answer = QDBusConnection::sessionBus().call(question, QDBus::Block, timeUntil(deadline));
    if (resultOf(answer, "s") != AccessibilityError::success) {
        return std::nullopt;
    }
    const auto made = QDBusConnection::connectToBus(answer.arguments().front().toString(), name);
    return made.isConnected() ? std::optional(made) : std::nullopt;
}

std::vector<QDBusMessage> AccessibilityBus::call(std::span<const QDBusMessage> messages, Deadline deadline) {
    const auto connection = connect(deadline);
    if (!connection) {
        return {messages.size(), noBus()};
    }
    std::vector<QDBusPendingCall> calls;
    calls.reserve(messages.size());
    for (const auto& message : messages) {
        calls.push_back(connection->asyncCall(message, timeUntil(deadline)));
    }
    std::vector<QDBusMessage> answers;
    answers.reserve(messages.size());
    for (auto& pending : calls) {
        pending.waitForFinished();
        answers.push_back(pending.reply());
    }
    return answers;
}

QDBusMessage AccessibilityBus::call(const QDBusMessage& message, Deadline deadline) {
    return call(std::span(&message, 1), deadline).front();
}

QDBusMessage methodCall(const AccessibleReference& object, const char* interface, const char* method,
                        const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(object.service, object.path, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage extentsCall(const AccessibleReference& object) {
    constexpr unsigned screenCoordinates = 0; // ATSPI_COORD_TYPE_SCREEN
    return methodCall(object, "org.a11y.atspi.Component", "GetExtents", {screenCoordinates});
}

QDBusMessage propertyRead(const AccessibleReference& object, const char* interface, const char* property) {
    return methodCall(object, "org.freedesktop.DBus.Properties", "Get", {QString(interface), QString(property)});
}

AccessibilityError resultOf(const QDBusMessage& answer, const char* signature) {
    if (answer.type() == QDBusMessage::ReplyMessage) {
        return answer.signature() == signature ? AccessibilityError::success : AccessibilityError::failure;
    }
    const QDBusError error(answer);
    switch (error.type()) {
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
        return AccessibilityError::apiDisabled;
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return AccessibilityError::cannotComplete;
    case QDBusError::ServiceUnknown:
    case QDBusError::UnknownObject:
        return AccessibilityError::invalidUIElement;
    default:
        // The bus's answer for a connection that has ended; Qt has no number for it.
        return error.name() == "org.freedesktop.DBus.Error.NameHasNoOwner" ? AccessibilityError::invalidUIElement
                                                                           : AccessibilityError::attributeUnsupported;
    }
}

std::optional<double> propertyNumber(const QDBusMessage& answer) {
    bool isNumber = false;
    const double number = property(answer).value_or(QVariant()).toDouble(&isNumber);
    return isNumber && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

std::optional<QString> propertyText(const QDBusMessage& answer) {
    const auto value = property(answer);
    return value ? std::optional(value->toString()) : std::nullopt;
}

std::optional<std::uint32_t> numberIn(const QDBusMessage& answer) {
    return resultOf(answer, "u") == AccessibilityError::success ? std::optional(answer.arguments().front().toUInt())
                                                                : std::nullopt;
}

std::optional<PixelRect> extentsIn(const QDBusMessage& answer) {
    if (resultOf(answer, "(iiii)") != AccessibilityError::success) {
        return std::nullopt;
    }
    PixelRect rect;
    const auto structure = qvariant_cast<QDBusArgument>(answer.arguments().front());
    structure.beginStructure();
    structure >> rect.x >> rect.y >> rect.width >> rect.height;
    structure.endStructure();
    return rect;
}

AccessibleChildren childrenOf(AccessibilityBus& bus, const AccessibleReference& parent, std::size_t most,
                              Deadline deadline) {
    const auto answer = bus.call(methodCall(parent, accessibleInterface, "GetChildren"), deadline);
    AccessibleChildren children{resultOf(answer, "a(so)"), {}};
    if (children.error != AccessibilityError::success) {
        return children;
    }
    const auto list = qvariant_cast<QDBusArgument>(answer.arguments().front());
    list.beginArray();
    while (!list.atEnd() && children.references.size() < most) {
        AccessibleReference reference;
        QDBusObjectPath path;
        list.beginStructure();
        list >> reference.service >> path;
        list.endStructure();
        reference.path = path.path();
        // A toolkit's way to say that there is nothing; no message could be sent there.
        if (!reference.service.isEmpty() && !reference.path.isEmpty()) {
            children.references.push_back(std::move(reference));
        }
    }
    list.endArray();
    return children;
}

} // namespace quillon::x11
