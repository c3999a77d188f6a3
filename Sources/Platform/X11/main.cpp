#include "CommandLine.h"
#include "ExitStatus.h"
#include "Platform/X11/QtApplication.h"
#include "Platform/X11/RemoteControl.h"
#include "Platform/X11/StandardError.h"
#include "Platform/X11/UserDefaults.h"
#include "Platform/X11/WindowTable.h"
#include "Platform/X11/X11Platform.h"
#include "PropertyText.h"
#include "QuillonApp.h"

#include <QApplication>

#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace quillon::x11 {

namespace {

/// Standard streams that were closed before the start would be taken by the next files and sockets, and text for
/// the user would end up in them.
void openClosedStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) {
            // The lowest free number is the stream's.
            [[maybe_unused]] const int opened = open("/dev/null", O_RDWR);
        }
    }
}

/// Writes the text on the standard output. A reader that has gone does not want it.
int show(std::string_view text) {
    while (!text.empty()) {
        const auto length = write(STDOUT_FILENO, text.data(), text.size());
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length < 0) {
            if (errno != EPIPE) {
                complain(fmt::format("Impossibile scrivere sull'uscita: {}", std::strerror(errno)));
            }
            return ExitStatus::failure;
        }
        text.remove_prefix(static_cast<std::size_t>(length));
    }
    return ExitStatus::success;
}

int show(const ScriptReply& reply) {
    if (reply.exitStatus == ExitStatus::success) {
        return reply.text.empty() ? ExitStatus::success : show(reply.text + "\n");
    }
    complain(reply.text);
    return reply.exitStatus;
}

class Program {
public:
    int operator()(const CommandLine::Run& request) const {
        if (const auto reply = reopenRunningProgram()) {
            return show(*reply);
        }
        return onDisplay([&request](std::unique_ptr<Connection> connection) {
            const auto application = makeApplication(connection->scale());
            RemoteControl remoteControl;
            if (!remoteControl.hasBus()) {
                complain("Nessun bus di sessione D-Bus: niente comandi e nessun controllo di altre istanze "
                         "(dbus-run-session ne avvia uno)");
                return run(request, std::move(connection), nullptr);
            }
            // The program that holds the name may end between the two calls.
            constexpr int mostAttempts = 5;
            for (int attempt = 0; attempt < mostAttempts; ++attempt) {
                if (remoteControl.acquire()) {
                    return run(request, std::move(connection), &remoteControl);
                }
                const auto reply = remoteControl.reopen();
                if (reply.exitStatus != ExitStatus::notRunning) {
                    return show(reply);
                }
            }
            complain("Impossibile registrare Quillon sul bus di sessione D-Bus");
            return ExitStatus::failure;
        });
    }

    int operator()(const CommandLine::ShowHelp&) const { return show(CommandLine::helpText()); }

    int operator()(const CommandLine::ShowVersion&) const { return show("Quillon " QUILLON_VERSION "\n"); }

    int operator()(const CommandLine::ListWindows&) const {
        const auto application = makeCoreApplication();
        const auto runningProgram = RemoteControl().runningProcess();
        return onDisplay([&](std::unique_ptr<Connection> connection) {
            X11Platform platform(std::move(connection));
            const PlatformScope scope(platform);
            return show(pinnableWindowsText(platform, runningProgram));
        });
    }

    int operator()(const CommandLine::Script& request) const {
        const auto application = makeCoreApplication();
        return show(RemoteControl().perform(request.command));
    }

    int operator()(const CommandLine::ReadDefault& request) const {
        const auto value = X11UserDefaults().object(request.key);
        if (!value) {
            complain(fmt::format("Nessun valore per «{}»", request.key));
            return ExitStatus::failure;
        }
        return show(quillon::propertyText(*value) + "\n");
    }

    int operator()(const CommandLine::WriteDefault& request) const {
        X11UserDefaults defaults;
        defaults.set(request.key, parsePropertyText(request.value));
        return defaults.isSaved() ? ExitStatus::success : ExitStatus::failure;
    }

    int operator()(const CommandLine::DeleteDefault& request) const {
        X11UserDefaults defaults;
        defaults.remove(request.key);
        return defaults.isSaved() ? ExitStatus::success : ExitStatus::failure;
    }

    int operator()(const CommandLine::UsageError& error) const {
        complain(error.text);
        return ExitStatus::usage;
    }

private:
    /// A second start only passes the word on, for which it needs neither a display nor what shows menus. None when no
    /// program runs.
    static std::optional<ScriptReply> reopenRunningProgram() {
        const auto application = makeCoreApplication();
        const RemoteControl remoteControl;
        // Qt holds back what arrives on the bus until the application that made the connection has turned its loop
        // once; the next application uses the same connection.
        QCoreApplication::processEvents();
        if (!remoteControl.runningProcess()) {
            return std::nullopt;
        }
        auto reply = remoteControl.reopen();
        return reply.exitStatus != ExitStatus::notRunning ? std::optional(std::move(reply)) : std::nullopt;
    }

    /// Does the action with a connection to the display that the environment names.
    template <class Action>
    static int onDisplay(Action action) {
        auto opened = Connection::open();
        if (const auto* problem = std::get_if<std::string>(&opened)) {
            complain(*problem);
            return ExitStatus::noDisplay;
        }
        return action(std::move(std::get<std::unique_ptr<Connection>>(opened)));
    }

    static int run(const CommandLine::Run& request, std::unique_ptr<Connection> connection,
                   RemoteControl* remoteControl) {
        X11Platform platform(std::move(connection), remoteControl, request.inputRouting);
        const PlatformScope scope(platform);
        const int status = runQuillonApp();
        return status != ExitStatus::success ? status : platform.sharedApplication()->exitStatus();
    }
};

} // namespace

} // namespace quillon::x11

int main(int argumentCount, char** arguments) {
    using namespace quillon;
    x11::openClosedStandardStreams();
    // A reader that has gone shows as a failed write.
    signal(SIGPIPE, SIG_IGN);
    const auto request = CommandLine::parse({arguments + std::min(argumentCount, 1), arguments + argumentCount});
    return std::visit(x11::Program(), request);
}
