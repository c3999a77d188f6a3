#include "Platform/Accessibility.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Ports.h"
#include "Platform/macOS/Retained.h"

#import <ApplicationServices/ApplicationServices.h>

namespace quillon::macos {

namespace {

AccessibilityValue toValue(CFTypeRef value);

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

private:
    Retained<AXUIElementRef> element;
};

AccessibilityValue toGeometry(AXValueRef value) {
    CGPoint point;
    if (AXValueGetValue(value, kAXValueTypeCGPoint, &point)) {
        return DisplayPoint{point.x, point.y};
    }
    CGSize size;
    if (AXValueGetValue(value, kAXValueTypeCGSize, &size)) {
        return Size{size.width, size.height};
    }
    return {};
}

AccessibilityValue toValue(CFTypeRef value) {
    if (value == nullptr) {
        return {};
    }
    const CFTypeID type = CFGetTypeID(value);
    if (type == CFStringGetTypeID()) {
        return toString((__bridge NSString*)value);
    }
    if (type == AXValueGetTypeID()) {
        return toGeometry(static_cast<AXValueRef>(value));
    }
    if (type == AXUIElementGetTypeID()) {
        return std::make_shared<Element>(Retained<AXUIElementRef>::retain(static_cast<AXUIElementRef>(value)));
    }
    return {};
}

class MacAccessibility final : public Accessibility {
public:
    bool isProcessTrusted() const override { return AXIsProcessTrusted(); }

    void promptForTrust() override {
        NSDictionary* const options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @YES};
        AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
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
