#include "Platform/X11/FileSystem.h"

#include "Platform/X11/Directories.h"

#include <fcntl.h>
#include <unistd.h>

namespace quillon::x11 {

std::optional<std::string> X11FileSystem::userLibraryDirectory() const {
    return userDirectory("XDG_STATE_HOME", "/.local/state");
}

void X11FileSystem::createDirectory(const std::string& path, unsigned permissions) {
    createDirectories(path, permissions);
}

int X11FileSystem::openForAppending(const std::string& path, unsigned mode) {
    return ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW | O_CLOEXEC, mode);
}

void X11FileSystem::write(int descriptor, std::string_view bytes) {
    [[maybe_unused]] const auto written = ::write(descriptor, bytes.data(), bytes.size());
}

void X11FileSystem::close(int descriptor) {
    ::close(descriptor);
}

} // namespace quillon::x11
