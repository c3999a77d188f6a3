#include "Platform/macOS/Observation.h"

namespace quillon::macos {

namespace {

class Observation final : public Registration {
public:
    Observation(NSNotificationCenter* center, id<NSObject> observer) : center(center), observer(observer) {}
    ~Observation() override { [center removeObserver:observer]; }

private:
    NSNotificationCenter* center;
    id<NSObject> observer;
};

} // namespace

RegistrationToken observe(NSNotificationCenter* center, NSNotificationName name, id sender,
                          std::function<void(NSNotification*)> callback) {
    const id<NSObject> observer = [center addObserverForName:name
                                                      object:sender
                                                       queue:NSOperationQueue.mainQueue
                                                  usingBlock:^(NSNotification* notification) {
                                                      // The callback may end the observation, and with it this block.
                                                      const auto running = callback;
                                                      running(notification);
                                                  }];
    return std::make_unique<Observation>(center, observer);
}

} // namespace quillon::macos
