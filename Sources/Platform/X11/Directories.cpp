#include "Platform/X11/Directories.h"

#include <cstdlib>
#include <sstream>
#include <string_view>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::x11 {

namespace {

std::optional<std::string> absolutePath(const char* path) {
    if (path == nullptr || *path != '/') {
        return std::nullopt;
    }
    return path;
}

std::optional<std::string> homeDirectory() {
    if (auto home = absolutePath(std::getenv("HOME"))) {
        return home;
    }
    const passwd* entry = getpwuid(getuid());
    return entry != nullptr ? absolutePath(entry->pw_dir) : std::nullopt;
}

} // namespace

std::optional<std::string> userDirectory(const char* variable, const std::string& placeInHome) {
    if (auto named = absolutePath(std::getenv(variable))) {
        return named;
    }
    const auto home = homeDirectory();
    return home ? std::optional(*home + placeInHome) : std::nullopt;
}

std::vector<std::string> dataDirectories() {
    std::vector<std::string> directories;
    if (auto own = userDirectory("XDG_DATA_HOME", "/.local/share")) {
        directories.push_back(*std::move(own));
    }
    const auto* variable = std::getenv("XDG_DATA_DIRS");
    const std::string_view named = variable != nullptr ? variable : "";
    std::istringstream list(std::string(named.empty() ? "/usr/local/share:/usr/share" : named));
    for (std::string entry; std::getline(list, entry, ':');) {
        if (auto path = absolutePath(entry.c_str())) {
            directories.push_back(*std::move(path));
        }
    }
    return directories;
}

void createDirectories(const std::string& path, unsigned permissions) {
    for (auto end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
        mkdir(path.substr(0, end).c_str(), permissions);
    }
    mkdir(path.c_str(), permissions);
}

} // namespace quillon::x11
