#include "Platform/WindowServer.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#include <utility>

namespace quillon::macos {

namespace {

/// None when the value is missing, no number or out of the type's range.
template <class Integer>
std::optional<Integer> toInteger(id value) {
    if (![value isKindOfClass:[NSNumber class]]) {
        return std::nullopt;
    }
    const long long number = static_cast<NSNumber*>(value).longLongValue;
    return std::in_range<Integer>(number) ? std::optional(static_cast<Integer>(number)) : std::nullopt;
}

/// None when the value is no dictionary of numbers.
std::optional<WindowBoundsEntry> toBounds(id value) {
    if (![value isKindOfClass:[NSDictionary class]]) {
        return std::nullopt;
    }
    NSDictionary* const dictionary = value;
    for (id number in dictionary.objectEnumerator) {
        if (![number isKindOfClass:[NSNumber class]]) {
            return std::nullopt;
        }
    }
    const auto number = [dictionary](NSString* key) -> std::optional<double> {
        NSNumber* const found = dictionary[key];
        return found != nil ? std::optional<double>(found.doubleValue) : std::nullopt;
    };
    return WindowBoundsEntry{number(@"X"), number(@"Y"), number(@"Width"), number(@"Height")};
}

WindowDescription toDescription(NSDictionary* entry) {
    WindowDescription result;
    result.number = toInteger<WindowID>(entry[(__bridge NSString*)kCGWindowNumber]);
    result.ownerPID = toInteger<ProcessID>(entry[(__bridge NSString*)kCGWindowOwnerPID]);
    result.layer = toInteger<std::int64_t>(entry[(__bridge NSString*)kCGWindowLayer]);
    result.name = toText(entry[(__bridge NSString*)kCGWindowName]);
    result.bounds = toBounds(entry[(__bridge NSString*)kCGWindowBounds]);
    return result;
}

class MacWindowServer final : public WindowServer {
public:
    std::optional<std::vector<WindowDescription>> copyWindowInfo(WindowListOption options,
                                                                 WindowID relativeTo) const override {
        NSArray<NSDictionary*>* const windows = CFBridgingRelease(CGWindowListCopyWindowInfo(options, relativeTo));
        if (windows == nil) {
            return std::nullopt;
        }
        std::vector<WindowDescription> result;
        for (NSDictionary* entry in windows) {
            result.push_back(toDescription(entry));
        }
        return result;
    }
};

} // namespace

std::unique_ptr<WindowServer> makeWindowServer() {
    return std::make_unique<MacWindowServer>();
}

} // namespace quillon::macos
