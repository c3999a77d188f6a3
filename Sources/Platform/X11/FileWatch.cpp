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
/// directory the nearest one above.
QStringList FileWatch::existingPaths() const {
    QStringList paths;
    if (QFileInfo::exists(path)) {
        paths << path;
    }
    auto directory = QFileInfo(path).absolutePath();
    while (!QFileInfo::exists(directory) && directory != QDir::rootPath()) {
        directory = QFileInfo(directory).absolutePath();
    }
    return paths << directory;
}

/// A path that was removed is no longer watched, so each change asks again.
void FileWatch::watchWhatExists() {
    QStringList wanted;
    do {
        wanted = existingPaths();
        watchOnly(wanted);
        // What was created before the watch began brings no change any more.
    } while (existingPaths() != wanted);
}

void FileWatch::watchOnly(const QStringList& wanted) {
    const auto watched = watcher.files() + watcher.directories();
    for (const auto& item : watched) {
        if (!wanted.contains(item)) {
            watcher.removePath(item);
        }
    }
    for (const auto& item : wanted) {
        if (!watched.contains(item)) {
            watcher.addPath(item);
        }
    }
}

} // namespace quillon::x11
