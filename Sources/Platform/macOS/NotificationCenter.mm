#include "Platform/NotificationCenter.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Observation.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

namespace quillon::macos {

namespace {

class MacNotificationCenter final : public NotificationCenter {
public:
    RegistrationToken addObserver(std::string_view name, std::function<void()> callback) override {
        return observe(center, toNSString(name), nil,
                       [callback = std::move(callback)](NSNotification*) { callback(); });
    }

    void post(std::string_view name) override { [center postNotificationName:toNSString(name) object:nil]; }

private:
    NSNotificationCenter* center = NSNotificationCenter.defaultCenter;
};

} // namespace

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<MacNotificationCenter>();
}

} // namespace quillon::macos
