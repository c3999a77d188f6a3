#include "Platform/UserDefaults.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

namespace quillon::macos {

namespace {

PropertyValue toPropertyValue(NSNumber* number) {
    // A truth is a number too, told apart only by its Core Foundation type.
    if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID()) {
        return static_cast<bool>(number.boolValue);
    }
    if (CFNumberIsFloatType((__bridge CFNumberRef)number)) {
        return number.doubleValue;
    }
    return static_cast<std::int64_t>(number.longLongValue);
}

std::optional<PropertyValue> toPropertyValue(id object) {
    if ([object isKindOfClass:[NSNumber class]]) {
        return toPropertyValue(static_cast<NSNumber*>(object));
    }
    if ([object isKindOfClass:[NSString class]]) {
        return toString(static_cast<NSString*>(object));
    }
    if ([object isKindOfClass:[NSData class]]) {
        NSData* const data = object;
        const auto* bytes = static_cast<const std::byte*>(data.bytes);
        return PropertyData(bytes, bytes + data.length);
    }
    return std::nullopt;
}

/// Nil for what a property list cannot hold.
struct ToObject {
    id operator()(bool value) const { return [NSNumber numberWithBool:value]; }
    id operator()(std::int64_t value) const { return [NSNumber numberWithLongLong:value]; }
    id operator()(double value) const { return [NSNumber numberWithDouble:value]; }
    id operator()(const std::string& value) const { return toNSStringIfValid(value); }
    id operator()(const PropertyData& value) const { return [NSData dataWithBytes:value.data() length:value.size()]; }
};

class MacUserDefaults final : public UserDefaults {
public:
    std::optional<PropertyValue> object(std::string_view key) const override {
        return toPropertyValue([NSUserDefaults.standardUserDefaults objectForKey:toNSString(key)]);
    }

    void set(std::string_view key, const PropertyValue& value) override {
        NSString* const name = toNSString(key);
        const id object = std::visit(ToObject(), value);
        if (object == nil) {
            NSLog(@"The value for the default %@ is a text that is not valid UTF-8; the default is removed", name);
        }
        [NSUserDefaults.standardUserDefaults setObject:object forKey:name];
    }

    void remove(std::string_view key) override {
        [NSUserDefaults.standardUserDefaults removeObjectForKey:toNSString(key)];
    }
};

} // namespace

std::unique_ptr<UserDefaults> makeUserDefaults() {
    return std::make_unique<MacUserDefaults>();
}

} // namespace quillon::macos
