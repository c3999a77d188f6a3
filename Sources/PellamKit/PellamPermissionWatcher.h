#pragma once

#include "HeldWeakly.h"
#include "Platform/Clock.h"
#include "Platform/Registration.h"
#include "Platform/Scheduler.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// Keeps one permission of this process under watch, and asks the user for permissions. Main thread.
class PellamPermissionWatcher : private HeldWeakly<PellamPermissionWatcher> {
    friend HeldWeakly<PellamPermissionWatcher>;

public:
    /// The privacy pages of System Settings.
    enum class Pane { accessibility, screenRecording, inputMonitoring, camera, microphone };

    static constexpr Seconds pollSeconds{1};
    /// How long nothing is read after an announcement, for the system to commit what it announced.
    static constexpr Seconds commitSeconds{1.5};
    /// Posted by the system when the list of the programs that it trusts changes.
    static constexpr std::string_view accessibilityAnnouncement = "com.apple.accessibility.api";

    /// `announcement` names the distributed notification of a change; none for a permission that has none. `check`
    /// reads the permission, without asking the user for it.
    PellamPermissionWatcher(std::optional<std::string> announcement, std::function<bool()> check);

    [[nodiscard]] static std::unique_ptr<PellamPermissionWatcher> accessibility();
    [[nodiscard]] static std::unique_ptr<PellamPermissionWatcher> screenRecording();
    [[nodiscard]] static std::unique_ptr<PellamPermissionWatcher> postEvent();

    [[nodiscard]] bool isGranted() const { return granted; }
    /// Reads the permission, unless an announcement was made just before.
    void reread();

    /// The system shows its prompt when it has to. True when the permission is granted now.
    static bool promptForAccessibility();
    static bool promptForPostEvent();
    /// Opens that page of System Settings.
    static void openSettings(Pane pane);
    /// The page's URL.
    [[nodiscard]] static std::string_view rawValue(Pane pane);

    /// Called before each change of `isGranted`; may be empty.
    std::function<void()> willChange;

private:
    void announced();

    std::function<bool()> check;
    WallTime quietUntil = WallTime::min();
    bool granted;
    RegistrationToken announcementObserver;
    RegistrationToken reactivationObserver;
    RegistrationToken poll;
};

} // namespace quillon
