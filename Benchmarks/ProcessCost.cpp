#include "ProcessCost.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace quillon::benchmarks {

namespace {

std::filesystem::path directoryOf(pid_t process) {
    return std::filesystem::path("/proc") / std::to_string(process);
}

/// The fields of /proc/PID/stat after the program's name, the third one (state) first.
std::vector<std::string> statFields(pid_t process) {
    std::ifstream file(directoryOf(process) / "stat");
    std::string line;
    std::getline(file, line);
    const auto nameEnd = line.rfind(')');
    std::vector<std::string> fields;
    if (nameEnd != std::string::npos) {
        std::istringstream rest(line.substr(nameEnd + 1));
        for (std::string field; rest >> field;) {
            fields.push_back(field);
        }
    }
    return fields;
}

/// A number from a file of lines "Name: number"; 0 when it is not there.
std::uint64_t statusNumber(const std::filesystem::path& file, const std::string& name) {
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(name + ":")) {
            return std::stoull(line.substr(name.size() + 1));
        }
    }
    return 0;
}

pid_t parentOf(pid_t process) {
    const auto fields = statFields(process);
    return fields.size() > 1 ? std::stoi(fields[1]) : 0;
}

} // namespace

double processorSeconds(const std::vector<pid_t>& processes) {
    // The first number of each thread's schedstat, in nanoseconds; the times in stat come in steps of 10 ms.
    double nanoseconds = 0;
    for (const auto process : processes) {
        for (const auto& thread : std::filesystem::directory_iterator(directoryOf(process) / "task")) {
            double running = 0;
            std::ifstream(thread.path() / "schedstat") >> running;
            nanoseconds += running;
        }
    }
    return nanoseconds / 1e9;
}

std::uint64_t wakeups(pid_t process) {
    std::uint64_t sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator(directoryOf(process) / "task")) {
        sum += statusNumber(thread.path() / "status", "voluntary_ctxt_switches");
    }
    return sum;
}

std::uint64_t residentKilobytes(pid_t process) {
    return statusNumber(directoryOf(process) / "status", "VmRSS");
}

std::vector<pid_t> descendants(pid_t process) {
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const auto name = entry.path().filename().string();
        if (!std::all_of(name.begin(), name.end(), [](char letter) { return letter >= '0' && letter <= '9'; })) {
            continue;
        }
        const pid_t candidate = std::stoi(name);
        for (auto ancestor = parentOf(candidate); ancestor > 1; ancestor = parentOf(ancestor)) {
            if (ancestor == process) {
                found.push_back(candidate);
                break;
            }
        }
    }
    return found;
}

} // namespace quillon::benchmarks
