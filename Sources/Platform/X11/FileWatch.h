#pragma once

#include <QFileSystemWatcher>
#include <QString>
#include <QStringList>

#include <functional>
#include <string>

namespace quillon::x11 {

/// Calls back from the event loop when a file was changed, replaced, created or removed, also when its directory
/// does not exist yet. Costs nothing while nothing happens. Main thread.
class FileWatch {
public:
    FileWatch(const std::string& path, std::function<void()> changed);

private:
    [[nodiscard]] QStringList existingPaths() const;
    void watchWhatExists();
    void watchOnly(const QStringList& wanted);

    QString path;
    QFileSystemWatcher watcher;
};

} // namespace quillon::x11
