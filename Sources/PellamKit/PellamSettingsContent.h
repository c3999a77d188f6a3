#pragma once

#include "Platform/WindowContent.h"

#include <functional>
#include <vector>

namespace quillon {

/// What an application puts into the settings window. It lives as long as the window. Main thread.
class PellamSettingsContent {
public:
    PellamSettingsContent() = default;
    PellamSettingsContent(const PellamSettingsContent&) = delete;
    PellamSettingsContent& operator=(const PellamSettingsContent&) = delete;
    virtual ~PellamSettingsContent() = default;

    /// As they stand now.
    [[nodiscard]] virtual std::vector<FormSection> sections() = 0;
    /// The user closes the window; it may be shown again.
    virtual void windowWillClose() = 0;

    /// Called when the sections are about to be others or have just become so; in the next turn of the event loop the
    /// window shows what they then are. The window sets it.
    std::function<void()> willChange;
};

} // namespace quillon
