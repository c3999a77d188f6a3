#include "Platform/Application.h"

#include "Platform/macOS/NativeMenu.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

@interface QuillonApplicationDelegate : NSObject <NSApplicationDelegate>
- (void)setPortDelegate:(std::weak_ptr<quillon::ApplicationDelegate>)delegate;
@end

@implementation QuillonApplicationDelegate {
    std::weak_ptr<quillon::ApplicationDelegate> portDelegate;
}

- (void)setPortDelegate:(std::weak_ptr<quillon::ApplicationDelegate>)delegate {
    portDelegate = std::move(delegate);
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    if (const auto delegate = portDelegate.lock()) {
        delegate->applicationDidFinishLaunching();
    }
}

- (void)applicationWillTerminate:(NSNotification*)notification {
    if (const auto delegate = portDelegate.lock()) {
        delegate->applicationWillTerminate();
    }
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    const auto delegate = portDelegate.lock();
    return delegate == nullptr || delegate->applicationShouldHandleReopen(hasVisibleWindows);
}

@end

namespace quillon::macos {

namespace {

NSApplicationActivationPolicy toActivationPolicy(ActivationPolicy policy) {
    switch (policy) {
    case ActivationPolicy::regular:
        return NSApplicationActivationPolicyRegular;
    case ActivationPolicy::accessory:
        return NSApplicationActivationPolicyAccessory;
    }
}

class MacApplication final : public Application {
public:
    MacApplication() { application.delegate = applicationDelegate; }
    ~MacApplication() override { application.delegate = nil; }

    void setDelegate(std::weak_ptr<ApplicationDelegate> delegate) override {
        [applicationDelegate setPortDelegate:std::move(delegate)];
    }
    void setActivationPolicy(ActivationPolicy policy) override {
        [application setActivationPolicy:toActivationPolicy(policy)];
    }
    void setMainMenu(std::shared_ptr<Menu> menu) override { application.mainMenu = makeNativeMenu(std::move(menu)); }
    void run() override { [application run]; }
    void activateIgnoringOtherApps() override { [application activateIgnoringOtherApps:YES]; }
    void terminate() override { [application terminate:nil]; }

private:
    NSApplication* application = NSApplication.sharedApplication;
    /// The application holds its delegate weakly.
    QuillonApplicationDelegate* applicationDelegate = [[QuillonApplicationDelegate alloc] init];
};

} // namespace

std::unique_ptr<Application> makeApplication() {
    return std::make_unique<MacApplication>();
}

} // namespace quillon::macos
