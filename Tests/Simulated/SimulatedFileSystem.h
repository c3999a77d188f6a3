#pragma once

#include "Platform/FileSystem.h"
#include "Simulated/Journal.h"

#include <map>
#include <vector>

namespace quillon::simulated {

/// Directories, files and symbolic links in memory. The library directory exists from the start.
class SimulatedFileSystem final : public FileSystem {
public:
    explicit SimulatedFileSystem(Journal& journal);

    [[nodiscard]] std::optional<std::string> userLibraryDirectory() const override { return library; }
    void createDirectory(const std::string& path, unsigned permissions) override;
    [[nodiscard]] int openForAppending(const std::string& path, unsigned mode) override;
    void write(int descriptor, std::string_view bytes) override;
    void close(int descriptor) override;

    void setUserLibraryDirectory(std::optional<std::string> path);
    /// With a full disk, writing stores nothing.
    void setFull(bool full) { isFull = full; }
    /// Every opening fails.
    void setOpeningFails(bool fails) { openingFails = fails; }
    void makeSymbolicLink(const std::string& target, const std::string& path);
    void setPermissions(const std::string& path, unsigned permissions);
    /// Removes what the path names and everything below it.
    void remove(const std::string& path);

    /// None when there is no such file.
    [[nodiscard]] std::optional<std::string> content(const std::string& path) const;
    /// Of a file, directory or link; none when there is nothing of that path.
    [[nodiscard]] std::optional<unsigned> permissions(const std::string& path) const;
    /// Every path, in alphabetical order.
    [[nodiscard]] std::vector<std::string> paths() const;
    [[nodiscard]] std::size_t openDescriptors() const { return descriptors.size(); }

private:
    enum class Kind { directory, file, symbolicLink };
    struct Node {
        Kind kind = Kind::file;
        unsigned permissions = 0;
        std::string content;
    };

    [[nodiscard]] const Node* find(const std::string& path) const;
    [[nodiscard]] bool isWritableDirectory(const std::string& path) const;

    Journal& journal;
    std::optional<std::string> library;
    bool isFull = false;
    bool openingFails = false;
    std::map<std::string, Node> nodes;
    /// The path that each descriptor was opened with.
    std::map<int, std::string> descriptors;
    int nextDescriptor = 3;
};

} // namespace quillon::simulated
