#include "Platform/X11/SettingsFile.h"

#include "Platform/X11/Directories.h"
#include "Platform/X11/StandardError.h"

#include <QSaveFile>

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::x11 {

namespace {

using nlohmann::json;

/// Far more than the settings need; keeps a wrong file from being read whole.
constexpr std::size_t longestFile = 4'000'000; // bytes

class Descriptor {
public:
    explicit Descriptor(int number) : number(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (number >= 0) {
            close(number);
        }
    }
    [[nodiscard]] int get() const { return number; }

private:
    int number;
};

std::string systemError() {
    return std::strerror(errno);
}

/// The content, or what went wrong; none when there is no such file.
std::optional<std::variant<std::string, int>> readWhole(const std::string& path) {
    // Without waiting for the writer of a pipe that was put in the file's place.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0) {
        return errno == ENOENT ? std::nullopt : std::optional<std::variant<std::string, int>>(errno);
    }
    std::string content;
    char buffer[4096];
    while (content.size() <= longestFile) {
        const auto length = ::read(file.get(), buffer, sizeof buffer);
        if (length < 0 && errno == EINTR) {
            continue;
        }
        if (length < 0) {
            return errno;
        }
        if (length == 0) {
            return content;
        }
        content.append(buffer, static_cast<std::size_t>(length));
    }
    return EFBIG;
}

/// Where the byte of that number, counted from 1, lies.
std::string positionText(const std::string& content, std::size_t byte) {
    const auto end = content.begin() + static_cast<std::ptrdiff_t>(std::min(byte > 0 ? byte - 1 : 0, content.size()));
    const auto line = 1 + std::count(content.begin(), end, '\n');
    const auto lastBreak = std::find(std::make_reverse_iterator(end), content.rend(), '\n').base();
    return fmt::format("riga {}, colonna {}", line, 1 + (end - lastBreak));
}

/// The name, or the first one with a number behind it, that no file has.
std::string freeName(const std::string& name) {
    auto candidate = name;
    struct stat found {};
    for (int number = 2; lstat(candidate.c_str(), &found) == 0; ++number) {
        candidate = fmt::format("{}.{}", name, number);
    }
    return candidate;
}

} // namespace

std::string SettingsFile::damagedText(const std::string& problem) const {
    return fmt::format("Il file delle impostazioni «{}» non si può usare ({}): correggilo o eliminalo; fino ad "
                       "allora valgono gli ultimi valori letti o quelli predefiniti",
                       path, problem);
}

std::variant<json, std::string> SettingsFile::read() const {
    const auto content = readWhole(path);
    if (!content) {
        return json::object();
    }
    if (const auto* error = std::get_if<int>(&*content)) {
        return damagedText(std::strerror(*error));
    }
    const auto& text = std::get<std::string>(*content);
    try {
        auto document = json::parse(text);
        if (!document.is_object()) {
            return damagedText("riga 1, colonna 1: deve contenere un oggetto JSON, tra { e }");
        }
        return document;
    } catch (const json::parse_error& error) {
        return damagedText(positionText(text, error.byte) + ": JSON non valido");
    } catch (const json::exception&) {
        // A number beyond every type.
        return damagedText("JSON non valido");
    }
}

std::optional<std::string> SettingsFile::change(const json& fallback, const std::function<void(json&)>& apply) const {
    createDirectories(directory(), 0700);
    const Descriptor lock(open(directory().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (lock.get() < 0) {
        return fmt::format("Impossibile scrivere le impostazioni in «{}»: {}", path, systemError());
    }
    flock(lock.get(), LOCK_EX);
    auto content = read();
    if (std::holds_alternative<std::string>(content)) {
        const auto kept = freeName(path + ".damaged");
        if (rename(path.c_str(), kept.c_str()) != 0) {
            return fmt::format("Impossibile mettere da parte il file danneggiato «{}»: {}", path, systemError());
        }
        complain(fmt::format("Il file danneggiato delle impostazioni è ora «{}»; quello nuovo è «{}»", kept, path));
        content = fallback;
    }
    auto& document = std::get<json>(content);
    apply(document);
    return write(document);
}

std::optional<std::string> SettingsFile::write(const json& document) const {
    const auto text = document.dump(2) + "\n";
    QSaveFile file(QString::fromStdString(path));
    const bool isWritten =
        file.open(QIODevice::WriteOnly) && file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner) &&
        file.write(text.data(), static_cast<qint64>(text.size())) == static_cast<qint64>(text.size()) && file.commit();
    if (isWritten) {
        return std::nullopt;
    }
    return fmt::format("Impossibile scrivere le impostazioni in «{}»: {}", path, file.errorString().toStdString());
}

} // namespace quillon::x11
