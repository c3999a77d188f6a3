#include "Platform/KeyMonitor.h"

#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

class LocalMonitor final : public Registration {
public:
    explicit LocalMonitor(id monitor) : monitor(monitor) {}
    ~LocalMonitor() override { [NSEvent removeMonitor:monitor]; }

private:
    id monitor;
};

class MacKeyMonitors final : public KeyMonitors {
public:
    RegistrationToken addLocalMonitor(std::function<TappedEvent(const KeyEvent&)> handler) override {
        const id monitor =
            [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                  handler:^NSEvent*(NSEvent* event) {
                                                      // The handler may end the monitor, and with it this block.
                                                      const auto running = handler;
                                                      const auto result = running({event.keyCode, event.modifierFlags});
                                                      return result == TappedEvent::swallowed ? nil : event;
                                                  }];
        return monitor != nil ? std::make_unique<LocalMonitor>(monitor) : nullptr;
    }
};

} // namespace

std::unique_ptr<KeyMonitors> makeKeyMonitors() {
    return std::make_unique<MacKeyMonitors>();
}

} // namespace quillon::macos
