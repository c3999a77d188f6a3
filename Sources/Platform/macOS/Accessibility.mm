#include "Platform/Accessibility.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"
#include "Platform/macOS/Retained.h"

#import <ApplicationServices/ApplicationServices.h>

namespace quillon::macos {

namespace {

AccessibilityValue toValue(CFTypeRef value);
id _Nullable toObject(const AccessibilityValue& value);

class Element final : public AccessibilityElement {
public:
    explicit Element(Retained<AXUIElementRef> element) : element(std::move(element)) {}

    AccessibilityRead copyAttributeValue(std::string_view attribute) const override {
        CFTypeRef copied = nullptr;
        const AXError error =
            AXUIElementCopyAttributeValue(element.get(), (__bridge CFStringRef)toNSString(attribute), &copied);
        const auto value = Retained<CFTypeRef>::adopt(copied);
        return {static_cast<AccessibilityError>(error), toValue(value.get())};
    }

    AccessibilitySettable isAttributeSettable(std::string_view attribute) const override {
        Boolean isSettable = false;
        const AXError error =
            AXUIElementIsAttributeSettable(element.get(), (__bridge CFStringRef)toNSString(attribute), &isSettable);
        return {static_cast<AccessibilityError>(error), error == kAXErrorSuccess && isSettable};
    }

    AccessibilityError setAttributeValue(std::string_view attribute, const AccessibilityValue& value) override {
        const id object = toObject(value);
        if (object == nil) {
            return AccessibilityError::illegalArgument;
        }
        return static_cast<AccessibilityError>(AXUIElementSetAttributeValue(
            element.get(), (__bridge CFStringRef)toNSString(attribute), (__bridge CFTypeRef)object));
    }

    AccessibilityError performAction(std::string_view action) override {
        return static_cast<AccessibilityError>(
            AXUIElementPerformAction(element.get(), (__bridge CFStringRef)toNSString(action)));
    }

    void setMessagingTimeout(Seconds timeout) override {
        AXUIElementSetMessagingTimeout(element.get(), static_cast<float>(timeout.count()));
    }

    [[nodiscard]] AXUIElementRef native() const { return element.get(); }

private:
    Retained<AXUIElementRef> element;
};

AccessibilityValue toGeometry(AXValueRef value) {
    CGPoint point;
    if (AXValueGetValue(value, kAXValueTypeCGPoint, &point)) {
        return toPoint<DisplaySpace>(point);
    }
    CGSize size;
    if (AXValueGetValue(value, kAXValueTypeCGSize, &size)) {
        return toSize(size);
    }
    return {};
}

std::shared_ptr<AccessibilityElement> toElement(CFTypeRef value) {
    return std::make_shared<Element>(Retained<AXUIElementRef>::retain(static_cast<AXUIElementRef>(value)));
}

AccessibilityValue toElements(NSArray* array) {
    std::vector<std::shared_ptr<AccessibilityElement>> result;
    for (id member in array) {
        const auto value = (__bridge CFTypeRef)member;
        if (CFGetTypeID(value) != AXUIElementGetTypeID()) {
            return {};
        }
        result.push_back(toElement(value));
    }
    return result;
}

AccessibilityValue toValue(CFTypeRef value) {
    if (value == nullptr) {
        return {};
    }
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID()) {
        return toString((__bridge NSString*)value);
    }
    // For Foundation a truth is a number too: only the Core Foundation types tell the two apart.
    if (type == CFBooleanGetTypeID()) {
        return static_cast<bool>(((__bridge NSNumber*)value).boolValue);
    }
    if (type == CFNumberGetTypeID()) {
        return ((__bridge NSNumber*)value).doubleValue;
    }
    if (type == AXValueGetTypeID()) {
        return toGeometry(static_cast<AXValueRef>(value));
    }
    if (type == AXUIElementGetTypeID()) {
        return toElement(value);
    }
    if (type == CFArrayGetTypeID()) {
        return toElements((__bridge NSArray*)value);
    }
    return {};
}

/// Nil for what an attribute cannot be set to.
struct ToObject {
    id _Nullable operator()(std::monostate) const { return nil; }
    id operator()(bool value) const { return [NSNumber numberWithBool:value]; }
    id operator()(double value) const { return [NSNumber numberWithDouble:value]; }
    id _Nullable operator()(const std::string& value) const { return toNSStringIfValid(value); }
    id _Nullable operator()(const DisplayPoint& value) const {
        const CGPoint point = toNSPoint(value);
        return CFBridgingRelease(AXValueCreate(kAXValueTypeCGPoint, &point));
    }
    id _Nullable operator()(const Size& value) const {
        const CGSize size = toNSSize(value);
        return CFBridgingRelease(AXValueCreate(kAXValueTypeCGSize, &size));
    }
    id operator()(const std::shared_ptr<AccessibilityElement>& value) const {
        const AXUIElementRef element = static_cast<const Element&>(*value).native();
        return (__bridge id)element;
    }
    id operator()(const std::vector<std::shared_ptr<AccessibilityElement>>& value) const {
        NSMutableArray* const result = [NSMutableArray array];
        for (const auto& element : value) {
            [result addObject:(*this)(element)];
        }
        return result;
    }
};

id _Nullable toObject(const AccessibilityValue& value) {
    return std::visit(ToObject(), value);
}

class MacAccessibility final : public Accessibility {
public:
    bool isProcessTrusted() const override { return AXIsProcessTrusted(); }

    bool promptForTrust() override {
        NSDictionary* const options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @YES};
        return AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
    }

    std::shared_ptr<AccessibilityElement> applicationElement(ProcessID pid) const override {
        return std::make_shared<Element>(Retained<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid)));
    }
};

} // namespace

std::unique_ptr<Accessibility> makeAccessibility() {
    return std::make_unique<MacAccessibility>();
}

} // namespace quillon::macos
