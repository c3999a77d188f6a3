#include "Platform/X11/UserDefaults.h"

#include "Platform/X11/Directories.h"
#include "Platform/X11/FileWatch.h"
#include "Platform/X11/SettingsFile.h"
#include "Platform/X11/StandardError.h"
#include "Text.h"

#include <QByteArray>
#include <QTimer>

#include <fmt/format.h>

#include <chrono>
#include <cmath>
#include <variant>

namespace quillon::x11 {

namespace {

using nlohmann::json;

constexpr const char* dataMember = "data";

std::optional<PropertyData> dataOf(const json& value) {
    if (value.size() != 1 || !value.contains(dataMember) || !value[dataMember].is_string()) {
        return std::nullopt;
    }
    const auto decoded = QByteArray::fromBase64Encoding(QByteArray::fromStdString(value[dataMember].get<std::string>()),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded) {
        return std::nullopt;
    }
    const auto* first = reinterpret_cast<const std::byte*>((*decoded).constData());
    return PropertyData(first, first + (*decoded).size());
}

std::optional<PropertyValue> fromJson(const json& value) {
    switch (value.type()) {
    case json::value_t::boolean:
        return value.get<bool>();
    case json::value_t::number_integer:
        return value.get<std::int64_t>();
    case json::value_t::number_unsigned:
        // A whole number that is not negative comes with this type.
        if (value.get<std::uint64_t>() > static_cast<std::uint64_t>(INT64_MAX)) {
            return std::nullopt;
        }
        return value.get<std::int64_t>();
    case json::value_t::number_float:
        return value.get<double>();
    case json::value_t::string:
        return value.get<std::string>();
    case json::value_t::object:
        if (auto data = dataOf(value)) {
            return std::move(*data);
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

/// None when JSON cannot hold the value.
struct ToJson {
    std::optional<json> operator()(double number) const {
        return std::isfinite(number) ? std::optional<json>(number) : std::nullopt;
    }
    std::optional<json> operator()(const std::string& text) const {
        return isValidUTF8(text) ? std::optional<json>(text) : std::nullopt;
    }
    std::optional<json> operator()(const PropertyData& data) const {
        const QByteArray bytes(reinterpret_cast<const char*>(data.data()), static_cast<qsizetype>(data.size()));
        return json::object({{dataMember, bytes.toBase64().toStdString()}});
    }
    std::optional<json> operator()(auto value) const { return json(value); }
};

template <class Values>
std::vector<std::string> differences(const Values& one, const Values& other) {
    std::vector<std::string> keys;
    for (const auto& [key, value] : one) {
        const auto found = other.find(key);
        if (found == other.end() || found->second != value) {
            keys.push_back(key);
        }
    }
    for (const auto& [key, value] : other) {
        if (!one.contains(key)) {
            keys.push_back(key);
        }
    }
    return keys;
}

/// Null stands for a value that is to go.
void applyChange(json& document, const std::string& key, const json& value) {
    if (value.is_null()) {
        document.erase(key);
    } else {
        document[key] = value;
    }
}

} // namespace

struct X11UserDefaults::Stored {
    /// The file's content as it was last read without fault.
    json document = json::object();
    /// Changes that could not be written; they hold for this run.
    std::map<std::string, json> unsaved;
};

X11UserDefaults::X11UserDefaults() : stored(std::make_unique<Stored>()), values(std::make_shared<const Values>()) {
    const auto directory = userDirectory("XDG_CONFIG_HOME", "/.config");
    if (directory) {
        file = std::make_unique<SettingsFile>(*directory + "/quillon/defaults.json");
    } else {
        report("Nessuna cartella personale: le impostazioni non vengono lette né salvate (imposta HOME)");
    }
    const std::lock_guard lock(mutex);
    load();
}

X11UserDefaults::~X11UserDefaults() = default;

std::optional<PropertyValue> X11UserDefaults::object(std::string_view key) const {
    const auto current = values.load();
    const auto found = current->find(key);
    return found != current->end() ? std::optional(found->second) : std::nullopt;
}

void X11UserDefaults::set(std::string_view key, const PropertyValue& value) {
    change(key, value);
}

void X11UserDefaults::remove(std::string_view key) {
    change(key, std::nullopt);
}

RegistrationToken X11UserDefaults::observe(std::string_view key, std::function<void()> callback) {
    return observers.add(std::string(key), std::move(callback));
}

void X11UserDefaults::change(std::string_view key, const std::optional<PropertyValue>& value) {
    std::unique_lock lock(mutex);
    auto changed = store(key, value);
    lock.unlock();
    announce(std::move(changed));
}

/// Some programs empty a file before they fill it again: what cannot be read gets a second look.
void X11UserDefaults::fileChanged() {
    constexpr std::chrono::milliseconds timeToWrite{50};
    if (std::holds_alternative<std::string>(file->read())) {
        QTimer::singleShot(timeToWrite, &mainThread, [this] { reload(); });
    } else {
        reload();
    }
}

void X11UserDefaults::reload() {
    std::unique_lock lock(mutex);
    auto changed = load();
    lock.unlock();
    announce(std::move(changed));
}

/// Without the mutex, since an observer may set a value.
void X11UserDefaults::announce(Keys changed) {
    if (changed.empty()) {
        return;
    }
    QMetaObject::invokeMethod(&mainThread, [this, changed = std::move(changed)] {
        for (const auto& key : changed) {
            observers.call(key);
        }
    });
}

X11UserDefaults::Keys X11UserDefaults::store(std::string_view key, const std::optional<PropertyValue>& value) {
    const auto encoded = value ? std::visit(ToJson(), *value) : std::optional<json>(nullptr);
    isLatestSaved = false;
    if (!encoded || !isValidUTF8(key)) {
        report(fmt::format("Il valore per «{}» non si può salvare: vuole UTF-8 valido o un numero finito", key));
        return {};
    }
    stored->unsaved[std::string(key)] = *encoded;
    const auto problem = !file ? std::optional<std::string>() : file->change(stored->document, [this](json& document) {
        for (const auto& [name, change] : stored->unsaved) {
            applyChange(document, name, change);
        }
        stored->document = document;
    });
    if (problem) {
        report(*problem);
    } else if (file) {
        stored->unsaved.clear();
        isLatestSaved = true;
    }
    return publish();
}

X11UserDefaults::Keys X11UserDefaults::load() {
    if (file) {
        auto content = file->read();
        if (const auto* problem = std::get_if<std::string>(&content)) {
            report(*problem);
        } else {
            stored->document = std::get<json>(std::move(content));
            lastProblem.clear();
        }
    }
    return publish();
}

X11UserDefaults::Keys X11UserDefaults::publish() {
    auto document = stored->document;
    for (const auto& [key, value] : stored->unsaved) {
        applyChange(document, key, value);
    }
    const auto next = std::make_shared<Values>();
    for (const auto& [key, value] : document.items()) {
        if (auto property = fromJson(value)) {
            next->emplace(key, std::move(*property));
        }
    }
    return differences(*values.exchange(next), *next);
}

/// Once for as long as nothing changes: an editor may write a file several times.
void X11UserDefaults::report(const std::string& problem) {
    if (problem != lastProblem) {
        lastProblem = problem;
        complain(problem);
    }
}

void X11UserDefaults::watchFile() {
    if (!file) {
        return;
    }
    watch = std::make_unique<FileWatch>(file->filePath(), [this] { fileChanged(); });
    reload();
}

bool X11UserDefaults::isSaved() const {
    const std::lock_guard lock(mutex);
    return isLatestSaved;
}

} // namespace quillon::x11
