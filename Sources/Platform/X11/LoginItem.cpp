#include "Platform/X11/LoginItem.h"

#include "Platform/X11/Directories.h"
#include "Platform/X11/ProgramName.h"

#include <QSaveFile>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace quillon::x11 {

namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view mainGroup = "[Desktop Entry]";

struct KeyAndValue {
    std::string_view key;
    std::string_view value;
};

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t\r";
    const auto first = text.find_first_not_of(blank);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blank) - first + 1);
}

/// Both are empty for a line without a key.
KeyAndValue parse(std::string_view line) {
    const auto sign = line.find('=');
    if (sign == std::string_view::npos || line.starts_with('#')) {
        return {};
    }
    return {trimmed(line.substr(0, sign)), trimmed(line.substr(sign + 1))};
}

/// The second key is that of GNOME and of the settings of other desktops, older than the first one for this use.
bool switchesOff(const KeyAndValue& line) {
    return (line.key == "Hidden" && line.value == "true") ||
           (line.key == "X-GNOME-Autostart-enabled" && line.value == "false");
}

Lines linesOf(const std::string& path) {
    Lines lines;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

struct Entry {
    bool startsSomething = false;
    bool isOff = false;
};

Entry entryIn(const Lines& lines) {
    Entry entry;
    bool isInMainGroup = false;
    for (const auto& line : lines) {
        if (line.starts_with('[')) {
            isInMainGroup = trimmed(line) == mainGroup;
        } else if (isInMainGroup) {
            const auto parsed = parse(line);
            entry.startsSomething = entry.startsSomething || (parsed.key == "Exec" && !parsed.value.empty());
            entry.isOff = entry.isOff || switchesOff(parsed);
        }
    }
    return entry;
}

/// The running program; empty when the system does not tell.
std::string programPath() {
    std::error_code error;
    auto path = std::filesystem::read_symlink("/proc/self/exe", error).string();
    // What the kernel adds when the file was replaced, as an update does.
    constexpr std::string_view replaced = " (deleted)";
    if (path.ends_with(replaced)) {
        path.resize(path.size() - replaced.size());
    }
    return path;
}

Lines newEntry() {
    return {std::string(mainGroup),
            "Type=Application",
            "Name=Quillon",
            "Exec=" + quotedForExec(programPath()),
            fmt::format("Icon={}", programIdentifier),
            "Terminal=false"};
}

bool write(const std::string& path, const Lines& lines) {
    const auto text = fmt::format("{}\n", fmt::join(lines, "\n"));
    QSaveFile file(QString::fromStdString(path));
    return file.open(QIODevice::WriteOnly) &&
           file.write(text.data(), static_cast<qint64>(text.size())) == static_cast<qint64>(text.size()) &&
           file.commit();
}

} // namespace

std::string quotedForExec(const std::string& path) {
    std::string quoted = "\"";
    for (const char character : path) {
        switch (character) {
        case '"':
        case '`':
        case '$':
            // A backslash for the quotes, which every value has to have doubled.
            quoted += "\\\\";
            quoted += character;
            break;
        case '\\':
            quoted += R"(\\\\)";
            break;
        case '%':
            quoted += "%%";
            break;
        case '\n':
            quoted += R"(\n)";
            break;
        default:
            quoted += character;
        }
    }
    return quoted + "\"";
}

X11LoginItem::X11LoginItem() {
    const auto configuration = userDirectory("XDG_CONFIG_HOME", "/.config");
    if (configuration) {
        directory = *configuration + "/autostart";
        path = fmt::format("{}/{}.desktop", *directory, programIdentifier);
    }
}

bool X11LoginItem::isEnabled() const {
    const auto entry = entryIn(linesOf(path));
    return entry.startsSomething && !entry.isOff;
}

bool X11LoginItem::registerItem() {
    if (!directory) {
        return false;
    }
    auto lines = linesOf(path);
    if (entryIn(lines).startsSomething) {
        std::erase_if(lines, [](const auto& line) { return switchesOff(parse(line)); });
    } else {
        lines = newEntry();
    }
    createDirectories(*directory, 0700);
    return write(path, lines);
}

bool X11LoginItem::unregisterItem() {
    return directory && (unlink(path.c_str()) == 0 || errno == ENOENT);
}

} // namespace quillon::x11
