#pragma once

#include "World.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace quillon::contract {

/// A world whose files are those of this machine.
class RealFilesWorld : public World {
public:
    std::optional<std::string> fileContent(const std::string& path) override {
        std::ifstream file(path, std::ios::binary);
        if (!file) {
            return std::nullopt;
        }
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    std::optional<unsigned> permissions(const std::string& path) override {
        std::error_code error;
        const auto status = std::filesystem::symlink_status(path, error);
        if (!std::filesystem::exists(status)) {
            return std::nullopt;
        }
        return static_cast<unsigned>(status.permissions());
    }
    void makeSymbolicLink(const std::string& target, const std::string& path) override {
        std::filesystem::create_symlink(target, path);
    }
};

} // namespace quillon::contract
