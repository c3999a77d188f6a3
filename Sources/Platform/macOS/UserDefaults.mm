#include "Platform/UserDefaults.h"

#include "HeldWeakly.h"
#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Observation.h"
#include "Platform/macOS/Ports.h"

#import <Foundation/Foundation.h>

/// What key-value observing, which takes no block, sends its messages to.
@interface QuillonKeyValueObserver : NSObject
- (instancetype)initWithCallback:(std::function<void()>)function;
@end

@implementation QuillonKeyValueObserver {
    std::function<void()> callback;
}

- (instancetype)initWithCallback:(std::function<void()>)function {
    self = [super init];
    callback = std::move(function);
    return self;
}

- (void)observeValueForKeyPath:(NSString*)keyPath
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
    // The thread is that of the one who made the change. The callback may end the observation, and with it this object.
    const auto running = callback;
    if (NSThread.isMainThread) {
        running();
    } else {
        dispatch_async(dispatch_get_main_queue(), ^{
            running();
        });
    }
}

@end

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

class DefaultObservation final : public Registration, private HeldWeakly<DefaultObservation> {
    friend HeldWeakly<DefaultObservation>;

public:
    DefaultObservation(NSString* key, std::function<void()> callback) : key(key), callback(std::move(callback)) {
        const auto check = weakly([](DefaultObservation& self) { self.tellOfChange(); });
        if (canBeKeyPath()) {
            keyValueObserver = [[QuillonKeyValueObserver alloc] initWithCallback:check];
            [defaults addObserver:keyValueObserver forKeyPath:key options:0 context:nullptr];
        } else {
            notifications = macos::observe(NSNotificationCenter.defaultCenter, NSUserDefaultsDidChangeNotification,
                                           defaults, [check](NSNotification*) { check(); });
        }
    }
    ~DefaultObservation() override {
        if (keyValueObserver != nil) {
            [defaults removeObserver:keyValueObserver forKeyPath:key context:nullptr];
        }
    }

private:
    /// Key-value observing takes a dot for a step from one object to the next, and tells nothing of such a key. The
    /// notification tells of every key, but of no change that another process makes.
    [[nodiscard]] bool canBeKeyPath() const { return ![key containsString:@"."]; }

    /// Both ways also tell when nothing is different.
    void tellOfChange() {
        const id value = [defaults objectForKey:key];
        if (value == lastValue || [value isEqual:lastValue]) {
            return;
        }
        lastValue = value;
        const auto running = callback; // It may end the observation.
        running();
    }

    NSUserDefaults* defaults = NSUserDefaults.standardUserDefaults;
    NSString* key;
    std::function<void()> callback;
    id lastValue = [defaults objectForKey:key];
    QuillonKeyValueObserver* keyValueObserver = nil;
    RegistrationToken notifications;
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

    RegistrationToken observe(std::string_view key, std::function<void()> callback) override {
        return std::make_unique<DefaultObservation>(toNSString(key), std::move(callback));
    }
};

} // namespace

std::unique_ptr<UserDefaults> makeUserDefaults() {
    return std::make_unique<MacUserDefaults>();
}

} // namespace quillon::macos
