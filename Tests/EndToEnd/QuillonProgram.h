#pragma once

#include "Desktop.h"
#include "XClient.h"

namespace quillon::e2e {

/// The built program on a desktop: the instance that runs, and commands for it.
class QuillonProgram {
public:
    explicit QuillonProgram(const Desktop& desktop) : desktop(desktop) {}

    /// Starts it and waits until it answers commands. Throws when it does not. `launcher` is a command that turns
    /// into the program that it is given. It has asked for accessibility before, as far as it knows, and asks no more.
    void start(const Command& launcher = {}, const std::vector<std::string>& arguments = {});
    /// The same without that.
    void startForTheFirstTime(const Command& launcher = {}, const std::vector<std::string>& arguments = {});
    /// Asks it to end (SIGTERM) and waits; the exit status, or none when it does not end.
    std::optional<int> stop();
    /// Runs `quillon` with the arguments, to its end.
    [[nodiscard]] Outcome command(const std::vector<std::string>& arguments) const;
    [[nodiscard]] Outcome pin(Window window) const { return command({"pin", std::to_string(window)}); }
    [[nodiscard]] Outcome unpin(Window window) const { return command({"unpin", std::to_string(window)}); }
    /// The numbers that `quillon list` shows.
    [[nodiscard]] std::vector<Window> pinned() const;

    [[nodiscard]] Program& program() const { return *running; }
    [[nodiscard]] pid_t pid() const { return running->pid(); }
    /// All that were started, also those that ended.
    [[nodiscard]] const std::vector<pid_t>& startedProcesses() const { return started; }

    [[nodiscard]] std::filesystem::path settingsFile() const;
    void writeSettings(const std::string& text) const;
    [[nodiscard]] std::filesystem::path logFile() const;
    /// Empty when there is no file.
    [[nodiscard]] std::string log() const;

    [[nodiscard]] std::size_t openDescriptors() const;
    [[nodiscard]] std::size_t residentKilobytes() const;

private:
    const Desktop& desktop;
    std::unique_ptr<Program> running;
    std::vector<pid_t> started;
};

/// The program under test, as built.
[[nodiscard]] std::string quillonPath();

} // namespace quillon::e2e
