#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// The few file operations of the diagnostic log. Any thread. Paths are absolute, in UTF-8.
class FileSystem {
public:
    virtual ~FileSystem() = default;

    /// The user's Library directory, or where the platform keeps what belongs there; none when the
    /// system has no such place.
    [[nodiscard]] virtual std::optional<std::string> userLibraryDirectory() const = 0;
    /// Creates the directory and those above it that are missing; `permissions` are POSIX mode bits for
    /// what is created. Errors, an existing directory among them, are ignored.
    virtual void createDirectory(const std::string& path, unsigned permissions) = 0;
    /// Opens the file with O_WRONLY | O_APPEND | O_CREAT | O_NOFOLLOW and `mode` for a new file. Negative
    /// when that fails.
    [[nodiscard]] virtual int openForAppending(const std::string& path, unsigned mode) = 0;
    /// One write call; how much of the bytes was written does not matter to the caller.
    virtual void write(int descriptor, std::string_view bytes) = 0;
    virtual void close(int descriptor) = 0;
};

} // namespace quillon
