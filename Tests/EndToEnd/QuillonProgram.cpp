#include "QuillonProgram.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace quillon::e2e {

namespace {

constexpr int notRunning = 4;

std::string contents(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

std::string quillonPath() {
    return QUILLON_PROGRAM;
}

void QuillonProgram::start(const Command& launcher, const std::vector<std::string>& arguments) {
    const auto outcome = command({"defaults", "write", "didPromptForAccessibilityStableIdentity", "true"});
    if (outcome.status != 0) {
        throw std::runtime_error("The settings cannot be written: " + outcome.errors);
    }
    startForTheFirstTime(launcher, arguments);
}

void QuillonProgram::startForTheFirstTime(const Command& launcher, const std::vector<std::string>& arguments) {
    auto command = launcher;
    command.push_back(quillonPath());
    command.insert(command.end(), arguments.begin(), arguments.end());
    running = desktop.start(command);
    started.push_back(running->pid());
    const auto deadline = std::chrono::steady_clock::now() + stepBound;
    while (this->command({"list"}).status == notRunning) {
        if (!running->isRunning() || std::chrono::steady_clock::now() > deadline) {
            throw std::runtime_error("Quillon did not start: " + running->errors());
        }
    }
}

std::optional<int> QuillonProgram::stop() {
    running->send(SIGTERM);
    return running->waitForExit(stepBound);
}

Outcome QuillonProgram::command(const std::vector<std::string>& arguments) const {
    Command command{quillonPath()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command, desktop.environment());
}

std::vector<Window> QuillonProgram::pinned() const {
    std::vector<Window> windows;
    std::istringstream lines(command({"list"}).output);
    for (std::string line; std::getline(lines, line);) {
        windows.push_back(static_cast<Window>(std::stoul(line)));
    }
    return windows;
}

std::filesystem::path QuillonProgram::settingsFile() const {
    return std::filesystem::path(desktop.environment().at("XDG_CONFIG_HOME")) / "quillon" / "defaults.json";
}

void QuillonProgram::writeSettings(const std::string& text) const {
    std::filesystem::create_directories(settingsFile().parent_path());
    std::ofstream(settingsFile(), std::ios::binary) << text;
}

std::filesystem::path QuillonProgram::logFile() const {
    return std::filesystem::path(desktop.environment().at("XDG_STATE_HOME")) / "Logs" / "Quillon" / "quillon.log";
}

std::string QuillonProgram::log() const {
    return contents(logFile());
}

std::size_t QuillonProgram::openDescriptors() const {
    const std::filesystem::directory_iterator entries("/proc/" + std::to_string(pid()) + "/fd");
    return static_cast<std::size_t>(std::distance(entries, {}));
}

std::size_t QuillonProgram::residentKilobytes() const {
    std::istringstream status(contents("/proc/" + std::to_string(pid()) + "/status"));
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return std::stoul(line.substr(6));
        }
    }
    throw std::runtime_error("the size of the process is unknown");
}

} // namespace quillon::e2e
