#include "Simulated/SimulatedFileSystem.h"

#include "Simulated/Misuse.h"

namespace quillon::simulated {

namespace {

constexpr unsigned ownerMayWrite = 0200;

void requireAbsolute(const std::string& path, std::string_view operation) {
    if (!path.starts_with('/') || (path.size() > 1 && path.ends_with('/'))) {
        misuse(fmt::format("FileSystem::{} with the path \"{}\", which is not absolute", operation, path));
    }
}

std::string parent(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

SimulatedFileSystem::SimulatedFileSystem(Journal& journal) : journal(journal) {
    nodes["/"] = {Kind::directory, 0755, ""};
    setUserLibraryDirectory("/Users/anna/Library");
}

void SimulatedFileSystem::setUserLibraryDirectory(std::optional<std::string> path) {
    library = std::move(path);
    for (auto directory = library.value_or("/"); !nodes.contains(directory); directory = parent(directory)) {
        nodes[directory] = {Kind::directory, 0700, ""};
    }
}

void SimulatedFileSystem::createDirectory(const std::string& path, unsigned permissions) {
    requireAbsolute(path, "createDirectory");
    journal.record("fileSystem.createDirectory {} {:o}", path, permissions);
    if (find(path) != nullptr) {
        return;
    }
    if (const auto above = parent(path); find(above) == nullptr) {
        createDirectory(above, permissions);
    }
    if (isWritableDirectory(parent(path))) {
        nodes[path] = {Kind::directory, permissions, ""};
    }
}

int SimulatedFileSystem::openForAppending(const std::string& path, unsigned mode) {
    requireAbsolute(path, "openForAppending");
    journal.record("fileSystem.openForAppending {} {:o}", path, mode);
    const auto* node = find(path);
    if (openingFails || (node == nullptr && !isWritableDirectory(parent(path)))) {
        return -1;
    }
    if (node == nullptr) {
        nodes[path] = {Kind::file, mode, ""};
    } else if (node->kind != Kind::file || (node->permissions & ownerMayWrite) == 0) {
        return -1;
    }
    descriptors[nextDescriptor] = path;
    return nextDescriptor++;
}

void SimulatedFileSystem::write(int descriptor, std::string_view bytes) {
    const auto entry = descriptors.find(descriptor);
    if (entry == descriptors.end()) {
        misuse(fmt::format("FileSystem::write to the descriptor {}, which is not open", descriptor));
    }
    if (const auto node = nodes.find(entry->second); node != nodes.end() && !isFull) {
        node->second.content += bytes;
    }
}

void SimulatedFileSystem::close(int descriptor) {
    if (descriptors.erase(descriptor) == 0) {
        misuse(fmt::format("FileSystem::close of the descriptor {}, which is not open", descriptor));
    }
}

void SimulatedFileSystem::makeSymbolicLink(const std::string& target, const std::string& path) {
    nodes[path] = {Kind::symbolicLink, 0777, target};
}

void SimulatedFileSystem::setPermissions(const std::string& path, unsigned permissions) {
    if (find(path) == nullptr) {
        misuse(fmt::format("the permissions of \"{}\", which does not exist", path));
    }
    nodes[path].permissions = permissions;
}

void SimulatedFileSystem::remove(const std::string& path) {
    std::erase_if(nodes, [&](const auto& entry) { return entry.first == path || entry.first.starts_with(path + "/"); });
}

std::optional<std::string> SimulatedFileSystem::content(const std::string& path) const {
    const auto* node = find(path);
    return node != nullptr && node->kind == Kind::file ? std::optional(node->content) : std::nullopt;
}

std::optional<unsigned> SimulatedFileSystem::permissions(const std::string& path) const {
    const auto* node = find(path);
    return node == nullptr ? std::nullopt : std::optional(node->permissions);
}

std::vector<std::string> SimulatedFileSystem::paths() const {
    std::vector<std::string> result;
    for (const auto& [path, node] : nodes) {
        result.push_back(path);
    }
    return result;
}

const SimulatedFileSystem::Node* SimulatedFileSystem::find(const std::string& path) const {
    const auto entry = nodes.find(path);
    return entry == nodes.end() ? nullptr : &entry->second;
}

bool SimulatedFileSystem::isWritableDirectory(const std::string& path) const {
    const auto* node = find(path);
    return node != nullptr && node->kind == Kind::directory && (node->permissions & ownerMayWrite) != 0;
}

} // namespace quillon::simulated
