#pragma once

#include "HeldWeakly.h"
#include "Platform/WindowContent.h"

#include <functional>
#include <optional>

namespace quillon {

/// The section of the settings that says whether the status icon is drawn on a pill. Main thread.
class MenuBarPillSettings : private HeldWeakly<MenuBarPillSettings> {
    friend HeldWeakly<MenuBarPillSettings>;

public:
    [[nodiscard]] FormSection section();

    /// Called after each change was stored; may be empty.
    std::function<void()> onChanged;
    /// Called before each change of what `section` shows; may be empty.
    std::function<void()> willChange;

private:
    void setEnabled(bool newEnabled);

    /// Read when the section is first made.
    std::optional<bool> enabled;
};

} // namespace quillon
