#include "Platform/X11/RemoteControl.h"

#include "ExitStatus.h"
#include "Platform/X11/ProgramName.h"

#include <QDBusConnectionInterface>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusReply>

namespace quillon::x11 {

namespace {

constexpr const char* objectPath = "/local/quillon/floating";

/// How long the running program may take to answer before it counts as hung.
constexpr int answerTimeout = 5000; // ms

/// The bus's answer for a name that nobody owns, when it was told not to start a service.
constexpr const char* nobodyOwnsName = "org.freedesktop.DBus.Error.NameHasNoOwner";

ScriptReply failureText(const QDBusMessage& answer) {
    const QDBusError error(answer);
    if (error.type() == QDBusError::ServiceUnknown || error.name() == nobodyOwnsName) {
        return {ExitStatus::notRunning, "Quillon non è in esecuzione: avvialo con \"quillon\""};
    }
    switch (error.type()) {
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
        return {ExitStatus::failure,
                "Quillon è in esecuzione ma non risponde: riprova o termina il processo e riavvialo"};
    default:
        return {ExitStatus::failure, "Quillon non ha potuto rispondere: " + answer.errorMessage().toStdString()};
    }
}

} // namespace

int RemoteService::Perform(const QString& verb, const QStringList& arguments, QString& text) {
    ScriptCommand command{verb.toStdString(), {}};
    for (const auto& argument : arguments) {
        command.arguments.push_back(argument.toStdString());
    }
    const auto reply = onCommand ? onCommand(command) : ScriptReply{ExitStatus::notRunning, {}};
    text = QString::fromStdString(reply.text);
    return reply.exitStatus;
}

void RemoteService::Reopen() {
    if (onReopen) {
        onReopen();
    }
}

RemoteControl::RemoteControl() : bus(QDBusConnection::sessionBus()) {}

RemoteControl::~RemoteControl() {
    if (hasBus()) {
        bus.unregisterObject(objectPath);
        bus.unregisterService(programIdentifier);
    }
}

bool RemoteControl::hasBus() const {
    return bus.isConnected();
}

bool RemoteControl::acquire() {
    // The object comes first: whoever sees the name may call it.
    bus.registerObject(objectPath, &object, QDBusConnection::ExportAllSlots);
    const auto reply = bus.interface()->registerService(programIdentifier, QDBusConnectionInterface::DontQueueService,
                                                        QDBusConnectionInterface::DontAllowReplacement);
    return reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

ScriptReply RemoteControl::perform(const ScriptCommand& command) const {
    QStringList arguments;
    for (const auto& argument : command.arguments) {
        arguments << QString::fromStdString(argument);
    }
    return call("Perform", {QString::fromStdString(command.verb), arguments});
}

ScriptReply RemoteControl::reopen() const {
    return call("Reopen", {});
}

std::optional<ProcessID> RemoteControl::runningProcess() const {
    if (!hasBus()) {
        return std::nullopt;
    }
    const QDBusReply<uint> reply = bus.interface()->servicePid(programIdentifier);
    return reply.isValid() ? std::optional(static_cast<ProcessID>(reply.value())) : std::nullopt;
}

ScriptReply RemoteControl::call(const QString& method, const QVariantList& arguments) const {
    if (!hasBus()) {
        return {ExitStatus::failure, "Nessun bus di sessione D-Bus: i comandi ne hanno bisogno (dbus-run-session ne "
                                     "avvia uno)"};
    }
    auto message = QDBusMessage::createMethodCall(programIdentifier, objectPath, programIdentifier, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    const auto answer = bus.call(message, QDBus::Block, answerTimeout);
    if (answer.type() != QDBusMessage::ReplyMessage) {
        return failureText(answer);
    }
    const auto results = answer.arguments();
    return results.size() == 2 ? ScriptReply{results[0].toInt(), results[1].toString().toStdString()} : ScriptReply{};
}

} // namespace quillon::x11
