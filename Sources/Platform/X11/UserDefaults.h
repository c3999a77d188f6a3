#pragma once

#include "Platform/UserDefaults.h"
#include "Platform/X11/Handlers.h"

#include <QObject>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace quillon::x11 {

class SettingsFile;
class FileWatch;

/// The settings in quillon/defaults.json in the user's configuration directory, as JSON: truths, whole numbers,
/// numbers with a fraction and texts natively, data as {"data": its Base64 form}. A change of the file by hand is
/// taken over when the event loop notices it. Reading costs a look-up in memory.
class X11UserDefaults final : public UserDefaults {
public:
    X11UserDefaults();
    ~X11UserDefaults() override;

    [[nodiscard]] std::optional<PropertyValue> object(std::string_view key) const override;
    void set(std::string_view key, const PropertyValue& value) override;
    void remove(std::string_view key) override;
    [[nodiscard]] RegistrationToken observe(std::string_view key, std::function<void()> callback) override;

    /// Takes over the changes that are made to the file from now on. Needs the event loop. Main thread.
    void watchFile();
    /// Whether the latest change reached the file; false before the first.
    [[nodiscard]] bool isSaved() const;

private:
    using Values = std::map<std::string, PropertyValue, std::less<>>;
    struct Stored;

    // The keys whose values are others now. With the mutex held.
    using Keys = std::vector<std::string>;
    Keys load();
    Keys store(std::string_view key, const std::optional<PropertyValue>& value);
    Keys publish();

    void change(std::string_view key, const std::optional<PropertyValue>& value);
    void fileChanged();
    void reload();
    void announce(Keys changed);
    void report(const std::string& problem);

    std::unique_ptr<SettingsFile> file;
    std::unique_ptr<FileWatch> watch;
    mutable std::mutex mutex;
    std::unique_ptr<Stored> stored;
    std::string lastProblem;
    bool isLatestSaved = false;
    /// What readers see; replaced as a whole.
    std::atomic<std::shared_ptr<const Values>> values;
    Handlers<std::string> observers;
    /// Lives on the main thread; what another thread announces waits with it.
    QObject mainThread;
};

} // namespace quillon::x11
