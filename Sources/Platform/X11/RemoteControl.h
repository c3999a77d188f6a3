#pragma once

#include "Platform/Application.h"
#include "Platform/ProcessInfo.h"

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace quillon::x11 {

/// What the running program does for other processes of the same user: the object of its D-Bus service.
class RemoteService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "local.quillon.floating")

public:
    std::function<ScriptReply(const ScriptCommand&)> onCommand;
    std::function<void()> onReopen;

public Q_SLOTS:
    /// Returns the exit status and, as the second result, the text to show.
    // The names and the parameters' types are those of the D-Bus interface.
    int Perform(const QString& verb, const QStringList& arguments, QString& text);
    void Reopen();
};

/// The one running program of a user's session, found over the session bus. Main thread.
class RemoteControl {
public:
    RemoteControl();
    ~RemoteControl();
    RemoteControl(const RemoteControl&) = delete;
    RemoteControl& operator=(const RemoteControl&) = delete;

    /// False in a session without a bus.
    [[nodiscard]] bool hasBus() const;

    /// Makes this process the running program. False when another one is; of several that try at the same time one
    /// succeeds. Calls that arrive meanwhile wait for the event loop.
    [[nodiscard]] bool acquire();
    /// The object that other processes call.
    [[nodiscard]] RemoteService& service() { return object; }

    // For the other processes. They wait for the answer, a few seconds at most.

    /// The answer of the running program, or a reply with the status and the text of what stood in the way.
    [[nodiscard]] ScriptReply perform(const ScriptCommand& command) const;
    /// Reopens the running program. `ExitStatus::notRunning` when there is none.
    [[nodiscard]] ScriptReply reopen() const;
    /// The process of the running program; none when there is none or no bus tells it.
    [[nodiscard]] std::optional<ProcessID> runningProcess() const;

private:
    [[nodiscard]] ScriptReply call(const QString& method, const QVariantList& arguments) const;

    RemoteService object;
    QDBusConnection bus;
};

} // namespace quillon::x11
