#include "Platform/X11/FileWatch.h"

#include <QDir>
#include <QFileInfo>

namespace quillon::x11 {

FileWatch::FileWatch(const std::string& path, std::function<void()> changed) : path(QString::fromStdString(path)) {
    const auto notify = [this, changed = std::move(changed)] {
        watchWhatExists();
        changed();
    };
    QObject::connect(&watcher, &QFileSystemWatcher::fileChanged, &watcher, notify);
    QObject::connect(&watcher, &QFileSystemWatcher::directoryChanged, &watcher, notify);
    watchWhatExists();
}

/// The file for changes in place, its directory for a file that comes or is replaced, and while there is no
/// directory the nearest one above. A path that was removed is no longer watched, so each change asks again.
void FileWatch::watchWhatExists() {
    QStringList wanted;
    if (QFileInfo::exists(path)) {
        wanted << path;
    }
    auto directory = QFileInfo(path).absolutePath();
    while (!QFileInfo::exists(directory) && directory != QDir::rootPath()) {
        directory = QFileInfo(directory).absolutePath();
    }
    wanted << directory;
    for (const auto& watched : watcher.files() + watcher.directories()) {
        if (!wanted.contains(watched)) {
            watcher.removePath(watched);
        }
    }
    for (const auto& item : wanted) {
        if (!watcher.files().contains(item) && !watcher.directories().contains(item)) {
            watcher.addPath(item);
        }
    }
}

} // namespace quillon::x11
