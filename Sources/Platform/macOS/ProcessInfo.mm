#include "Platform/ProcessInfo.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

namespace quillon::macos {

namespace {

class MacProcessInfo final : public ProcessInfo {
public:
    ProcessID processIdentifier() const override { return NSProcessInfo.processInfo.processIdentifier; }

    std::string processName() const override { return toString(NSProcessInfo.processInfo.processName); }

    OperatingSystemVersion operatingSystemVersion() const override {
        const NSOperatingSystemVersion version = NSProcessInfo.processInfo.operatingSystemVersion;
        return {static_cast<int>(version.majorVersion), static_cast<int>(version.minorVersion),
                static_cast<int>(version.patchVersion)};
    }

    std::optional<std::string> bundleIdentifier() const override {
        return toOptionalString(NSBundle.mainBundle.bundleIdentifier);
    }
};

} // namespace

std::unique_ptr<ProcessInfo> makeProcessInfo() {
    return std::make_unique<MacProcessInfo>();
}

} // namespace quillon::macos
