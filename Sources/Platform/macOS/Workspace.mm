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
        if (NSThread.isMainThread) {
            return toRunningApplication(workspace.frontmostApplication);
        }
        // Apple calls the list of running applications safe on any thread, but says nothing of this property, which
        // changes with the main run loop. The main thread never waits for another one.
        __block std::optional<RunningApplication> result;
        dispatch_sync(dispatch_get_main_queue(), ^{
            result = toRunningApplication(workspace.frontmostApplication);
        });
        return result;
    }
    std::optional<RunningApplication> runningApplication(ProcessID pid) const override {
        return toRunningApplication([NSRunningApplication runningApplicationWithProcessIdentifier:pid]);
    }
    void activateApplication(ProcessID pid) override {
        [[NSRunningApplication runningApplicationWithProcessIdentifier:pid] activateWithOptions:0];
    }
    void openURL(std::string_view url) override {
        if (NSURL* const target = [NSURL URLWithString:toNSString(url)]) {
            [workspace openURL:target];
        }
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
            workspace.notificationCenter, name, nil,
            [callback = std::move(callback)](NSNotification* notification) { callback(applicationOf(notification)); });
    }

    NSWorkspace* workspace = NSWorkspace.sharedWorkspace;
};

} // namespace

std::unique_ptr<Workspace> makeWorkspace() {
    return std::make_unique<MacWorkspace>();
}

} // namespace quillon::macos
