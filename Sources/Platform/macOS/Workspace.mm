#include "Platform/Workspace.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Observation.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

std::optional<RunningApplication> toRunningApplication(NSRunningApplication* _Nullable application) {
    if (application == nil) {
        return std::nullopt;
    }
    return RunningApplication{application.processIdentifier, toOptionalString(application.localizedName)};
}

std::optional<RunningApplication> applicationOf(NSNotification* notification) {
    const id application = notification.userInfo[NSWorkspaceApplicationKey];
    return [application isKindOfClass:[NSRunningApplication class]] ? toRunningApplication(application) : std::nullopt;
}

class MacWorkspace final : public Workspace {
public:
    std::optional<RunningApplication> frontmostApplication() const override {
        return toRunningApplication(workspace.frontmostApplication);
    }
    std::optional<RunningApplication> runningApplication(ProcessID pid) const override {
        return toRunningApplication([NSRunningApplication runningApplicationWithProcessIdentifier:pid]);
    }
    RegistrationToken observeDidActivateApplication(ApplicationCallback callback) override {
        return observeApplications(NSWorkspaceDidActivateApplicationNotification, std::move(callback));
    }
    RegistrationToken observeDidTerminateApplication(ApplicationCallback callback) override {
        return observeApplications(NSWorkspaceDidTerminateApplicationNotification, std::move(callback));
    }

private:
    RegistrationToken observeApplications(NSNotificationName name, ApplicationCallback callback) {
        return observe(
            workspace.notificationCenter, name,
            [callback = std::move(callback)](NSNotification* notification) { callback(applicationOf(notification)); });
    }

    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
};

} // namespace

std::unique_ptr<Workspace> makeWorkspace() {
    return std::make_unique<MacWorkspace>();
}

} // namespace quillon::macos
