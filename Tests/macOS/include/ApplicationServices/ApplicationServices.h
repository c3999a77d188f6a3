// Accessibility elements, their values and the trust in this process.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>

typedef CF_ENUM(int32_t, AXError) {
    kAXErrorSuccess = 0,
    kAXErrorFailure = -25200,
    kAXErrorIllegalArgument = -25201,
    kAXErrorInvalidUIElement = -25202,
    kAXErrorCannotComplete = -25204,
    kAXErrorAttributeUnsupported = -25205,
    kAXErrorAPIDisabled = -25211,
    kAXErrorNoValue = -25212,
};
typedef CF_ENUM(uint32_t, AXValueType) {
    kAXValueTypeCGPoint = 1,
    kAXValueTypeCGSize = 2,
};
#define kAXFrontmostAttribute CFSTR("AXFrontmost")
typedef const struct __attribute__((objc_bridge(id))) __AXUIElement* AXUIElementRef;
typedef const struct __attribute__((objc_bridge(id))) __AXValue* AXValueRef;

NS_ASSUME_NONNULL_BEGIN

extern "C" {
extern CFStringRef kAXTrustedCheckOptionPrompt;
Boolean AXIsProcessTrusted(void);
Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef _Nullable options);

CFTypeID AXUIElementGetTypeID(void);
AXUIElementRef AXUIElementCreateApplication(pid_t pid) __attribute__((cf_returns_retained));
AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                      CFTypeRef _Nullable* _Nonnull __attribute__((cf_returns_retained)) value);
AXError AXUIElementIsAttributeSettable(AXUIElementRef element, CFStringRef attribute, Boolean* settable);
AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value);
AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action);
AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds);

CFTypeID AXValueGetTypeID(void);
AXValueRef _Nullable AXValueCreate(AXValueType theType, const void* valuePtr) __attribute__((cf_returns_retained));
Boolean AXValueGetValue(AXValueRef value, AXValueType theType, void* valuePtr);
}

NS_ASSUME_NONNULL_END
