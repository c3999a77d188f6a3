#pragma once

#include "Platform/LoginItem.h"

#include <optional>
#include <string>

namespace quillon::x11 {

/// The user's autostart entry of the program, where the desktop's own settings show it and can switch it off
/// (autostart in the configuration directory). What the user has changed in an entry stays as long as there is one.
class X11LoginItem final : public LoginItem {
public:
    X11LoginItem();

    [[nodiscard]] bool isEnabled() const override;
    bool registerItem() override;
    bool unregisterItem() override;

private:
    /// None for a user without a home directory.
    std::optional<std::string> directory;
    std::string path;
};

/// A program's path as the only argument of an entry's Exec key, quoted as the desktop's rules for entries want it,
/// whatever the path holds.
[[nodiscard]] std::string quotedForExec(const std::string& path);

} // namespace quillon::x11
