#include "Platform/DistributedNotificationCenter.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

/// What the centre, which takes no block, sends its notifications to.
@interface QuillonDistributedObserver : NSObject
- (instancetype)initWithCallback:(std::function<void()>)function;
- (void)receive:(NSNotification*)notification;
@end

@implementation QuillonDistributedObserver {
    std::function<void()> callback;
}

- (instancetype)initWithCallback:(std::function<void()>)function {
    self = [super init];
    callback = std::move(function);
    return self;
}

- (void)receive:(NSNotification*)notification {
    // The callback may end the observation, and with it this object.
    const auto running = callback;
    running();
}

@end

namespace quillon::macos {

namespace {

class DistributedObservation final : public Registration {
public:
    DistributedObservation(std::string_view name, std::function<void()> callback)
        : observer([[QuillonDistributedObserver alloc] initWithCallback:std::move(callback)]) {
        // It delivers on the main thread.
        [center addObserver:observer
                      selector:@selector(receive:)
                          name:toNSString(name)
                        object:nil
            suspensionBehavior:NSNotificationSuspensionBehaviorDeliverImmediately];
    }
    ~DistributedObservation() override { [center removeObserver:observer]; }

private:
    NSDistributedNotificationCenter* center = [NSDistributedNotificationCenter defaultCenter];
    QuillonDistributedObserver* observer;
};

class MacDistributedNotificationCenter final : public DistributedNotificationCenter {
public:
    RegistrationToken addObserver(std::string_view name, std::function<void()> callback) override {
        return std::make_unique<DistributedObservation>(name, std::move(callback));
    }
};

} // namespace

std::unique_ptr<DistributedNotificationCenter> makeDistributedNotificationCenter() {
    return std::make_unique<MacDistributedNotificationCenter>();
}

} // namespace quillon::macos
