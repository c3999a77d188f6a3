#pragma once

#include <chrono>
#include <csignal>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quillon::e2e {

using Milliseconds = std::chrono::milliseconds;
using Environment = std::map<std::string, std::string>;
using Command = std::vector<std::string>;

/// How long a step of a test may take before it counts as failed. Far above what it takes on an idle machine.
inline constexpr Milliseconds stepBound{10000};

/// A child process in a process group of its own; its output is kept. The destructor ends the whole group.
class Program {
public:
    struct Options {
        /// Descriptors that the child keeps, under the same numbers.
        std::vector<int> inherited;
        /// What the child gets when the test itself dies.
        int deathSignal = SIGKILL;
    };

    Program(const Command& command, const Environment& environment, const Options& options);
    Program(const Command& command, const Environment& environment) : Program(command, environment, Options()) {}
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] pid_t pid() const { return processID; }
    [[nodiscard]] bool isRunning() { return !waitForExit(Milliseconds(0)); }
    /// The exit status, or 128 and the number of the signal that ended it; none when it still runs then.
    std::optional<int> waitForExit(Milliseconds bound);
    void send(int signal) const;
    /// What it has written so far.
    [[nodiscard]] std::string output() const { return readAll(outputFile); }
    [[nodiscard]] std::string errors() const { return readAll(errorsFile); }

private:
    static std::string readAll(int file);

    pid_t processID = -1;
    int processFile = -1;
    int outputFile = -1;
    int errorsFile = -1;
    std::optional<int> exitStatus;
};

struct Outcome {
    /// None when the program did not end in time.
    std::optional<int> status;
    std::string output;
    std::string errors;
};

/// Runs a program to its end.
Outcome run(const Command& command, const Environment& environment, Milliseconds bound = stepBound);

/// The first line that is written into a pipe, without its line feed; none when it does not come in time.
std::optional<std::string> readLine(int pipe, Milliseconds bound);

} // namespace quillon::e2e
