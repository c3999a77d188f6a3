#pragma once

#include "Platform/FileSystem.h"

namespace quillon::x11 {

class X11FileSystem final : public FileSystem {
public:
    /// The user's directory for state, which logs belong to.
    [[nodiscard]] std::optional<std::string> userLibraryDirectory() const override;
    void createDirectory(const std::string& path, unsigned permissions) override;
    [[nodiscard]] int openForAppending(const std::string& path, unsigned mode) override;
    void write(int descriptor, std::string_view bytes) override;
    void close(int descriptor) override;
};

} // namespace quillon::x11
