#pragma once

#include "HeldWeakly.h"
#include "Platform/Registration.h"
#include "Platform/WindowContent.h"

#include <functional>
#include <optional>

namespace quillon {

/// The section of the settings that hides and shows the status item, and says how to get a hidden one back. Main
/// thread.
class MenuBarVisibilitySettings : private HeldWeakly<MenuBarVisibilitySettings> {
    friend HeldWeakly<MenuBarVisibilitySettings>;

public:
    [[nodiscard]] FormSection section();

    /// Called before each change of what `section` shows; may be empty.
    std::function<void()> willChange;

private:
    void setShowIcon(bool newShowIcon);
    void reread();

    /// Read when the section is first made.
    std::optional<bool> showIcon;
    RegistrationToken changes;
};

} // namespace quillon
