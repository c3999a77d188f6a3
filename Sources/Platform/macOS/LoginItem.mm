#include "Platform/LoginItem.h"

#include "Platform/macOS/Ports.h"

#import <ServiceManagement/ServiceManagement.h>

namespace quillon::macos {

namespace {

bool logFailure(BOOL succeeded, NSString* attempt, NSError* _Nullable error) {
    if (!succeeded) {
        NSLog(@"The program cannot be %@ as a login item: %@", attempt, error);
    }
    return succeeded;
}

class MacLoginItem final : public LoginItem {
public:
    bool isEnabled() const override { return service.status == SMAppServiceStatusEnabled; }
    bool registerItem() override {
        NSError* error = nil;
        const BOOL succeeded = [service registerAndReturnError:&error];
        return logFailure(succeeded, @"registered", error);
    }
    bool unregisterItem() override {
        NSError* error = nil;
        const BOOL succeeded = [service unregisterAndReturnError:&error];
        return logFailure(succeeded, @"unregistered", error);
    }

private:
    SMAppService* service = SMAppService.mainAppService;
};

} // namespace

std::unique_ptr<LoginItem> makeLoginItem() {
    return std::make_unique<MacLoginItem>();
}

} // namespace quillon::macos
