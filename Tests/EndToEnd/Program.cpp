#include "Program.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace quillon::e2e {

namespace {

/// Time for a program to end by itself before it is killed.
constexpr Milliseconds politeEnd{3000};

int checked(long result, const char* what) {
    if (result < 0) {
        throw std::system_error(errno, std::generic_category(), what);
    }
    return static_cast<int>(result);
}

/// The null-terminated array that exec wants; the strings stay where they are.
std::vector<char*> pointers(std::vector<std::string>& strings) {
    std::vector<char*> result;
    for (auto& string : strings) {
        result.push_back(string.data());
    }
    result.push_back(nullptr);
    return result;
}

bool isReadable(int file, Milliseconds bound) {
    pollfd entry{file, POLLIN, 0};
    return poll(&entry, 1, static_cast<int>(bound.count())) > 0;
}

} // namespace

Program::Program(const Command& command, const Environment& environment, const Options& options) {
    auto arguments = command;
    std::vector<std::string> settings;
    for (const auto& [name, value] : environment) {
        settings.push_back(name + "=" + value);
    }
    const auto argv = pointers(arguments);
    const auto envp = pointers(settings);
    outputFile = checked(memfd_create("output", MFD_CLOEXEC), "memfd_create");
    errorsFile = checked(memfd_create("errors", MFD_CLOEXEC), "memfd_create");
    const int nothing = checked(open("/dev/null", O_RDONLY | O_CLOEXEC), "/dev/null");
    const pid_t parent = getpid();

    processID = checked(fork(), "fork");
    if (processID == 0) {
        // Only calls that are safe in the child of a program with threads.
        prctl(PR_SET_PDEATHSIG, options.deathSignal);
        if (getppid() != parent) {
            _exit(127);
        }
        setpgid(0, 0);
        dup2(nothing, STDIN_FILENO);
        dup2(outputFile, STDOUT_FILENO);
        dup2(errorsFile, STDERR_FILENO);
        for (const int descriptor : options.inherited) {
            fcntl(descriptor, F_SETFD, 0);
        }
        execvpe(argv.front(), argv.data(), envp.data());
        constexpr std::string_view message = "cannot be started\n";
        std::ignore = write(STDERR_FILENO, message.data(), message.size());
        _exit(127);
    }
    close(nothing);
    setpgid(processID, processID);
    processFile = checked(syscall(SYS_pidfd_open, processID, 0), "pidfd_open");
}

Program::~Program() {
    if (isRunning()) {
        kill(-processID, SIGCONT);
        kill(-processID, SIGTERM);
        waitForExit(politeEnd);
    }
    kill(-processID, SIGKILL);
    waitForExit(politeEnd);
    close(processFile);
    close(outputFile);
    close(errorsFile);
}

std::optional<int> Program::waitForExit(Milliseconds bound) {
    if (exitStatus || !isReadable(processFile, bound)) {
        return exitStatus;
    }
    int status = 0;
    waitpid(processID, &status, 0);
    exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return exitStatus;
}

void Program::send(int signal) const {
    checked(kill(processID, signal), "kill");
}

std::string Program::readAll(int file) {
    std::string text;
    std::array<char, 4096> part{};
    while (true) {
        const auto count = pread(file, part.data(), part.size(), static_cast<off_t>(text.size()));
        if (count <= 0) {
            return text;
        }
        text.append(part.data(), static_cast<std::size_t>(count));
    }
}

Outcome run(const Command& command, const Environment& environment, Milliseconds bound) {
    Program program(command, environment);
    const auto status = program.waitForExit(bound);
    return {status, program.output(), program.errors()};
}

std::optional<std::string> readLine(int pipe, Milliseconds bound) {
    std::string line;
    char next = 0;
    while (isReadable(pipe, bound) && read(pipe, &next, 1) == 1) {
        if (next == '\n') {
            return line;
        }
        line += next;
    }
    return std::nullopt;
}

} // namespace quillon::e2e
