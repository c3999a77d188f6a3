#pragma once

#include "Platform/ProcessInfo.h"
#include "Platform/Registration.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// An application with windows (NSRunningApplication).
struct RunningApplication {
    ProcessID processIdentifier = 0;
    /// The name that users know it by; none when it has none.
    std::optional<std::string> localizedName;
};

/// The running applications and what happens to them (NSWorkspace). Main thread, except where a member says
/// otherwise.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// The notification's application; none when the notification carries none.
    using ApplicationCallback = std::function<void(const std::optional<RunningApplication>&)>;

    /// The application that the user's keys go to; none when there is none. Any thread.
    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() const = 0;
    /// None when no running application has that process identifier.
    [[nodiscard]] virtual std::optional<RunningApplication> runningApplication(ProcessID pid) const = 0;
    /// Brings the application to the front, with the windows that are in front of its others
    /// (activateWithOptions: without options). Does nothing when no such application runs.
    virtual void activateApplication(ProcessID pid) = 0;
    /// Opens it with whatever program it belongs to (openURL:). Does nothing when the text is no URL.
    virtual void openURL(std::string_view url) = 0;
    /// An application became the frontmost one (NSWorkspaceDidActivateApplicationNotification).
    [[nodiscard]] virtual RegistrationToken observeDidActivateApplication(ApplicationCallback callback) = 0;
    /// An application ended (NSWorkspaceDidTerminateApplicationNotification).
    [[nodiscard]] virtual RegistrationToken observeDidTerminateApplication(ApplicationCallback callback) = 0;
};

} // namespace quillon
