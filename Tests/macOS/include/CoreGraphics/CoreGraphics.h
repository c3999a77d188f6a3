// Geometry, the window list, images, displays, input events, taps that see them and the checks for access to them and
// to the screen.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <Availability.h>

typedef double CGFloat;
struct CGPoint {
    CGFloat x;
    CGFloat y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
    CGFloat width;
    CGFloat height;
};
typedef struct CGSize CGSize;
struct CGRect {
    CGPoint origin;
    CGSize size;
};
typedef struct CGRect CGRect;

typedef struct __attribute__((objc_bridge(id))) CGImage* CGImageRef;

typedef uint32_t CGWindowID;
typedef CF_OPTIONS(uint32_t, CGWindowListOption) {
    kCGWindowListOptionOnScreenOnly = 1 << 0,
    kCGWindowListOptionIncludingWindow = 1 << 3,
    kCGWindowListExcludeDesktopElements = 1 << 4,
};

typedef CF_ENUM(int32_t, CGError) {
    kCGErrorSuccess = 0,
};
typedef uint32_t CGDirectDisplayID;
typedef struct CGDisplayMode* CGDisplayModeRef;

typedef struct __attribute__((objc_bridge(id))) __CGEvent* CGEventRef;
typedef struct __attribute__((objc_bridge(id))) __CGEventSource* CGEventSourceRef;
typedef uint16_t CGKeyCode;
typedef CF_ENUM(uint32_t, CGMouseButton) {
    kCGMouseButtonLeft = 0,
    kCGMouseButtonRight = 1,
    kCGMouseButtonCenter = 2,
};
typedef CF_ENUM(int32_t, CGEventSourceStateID) {
    kCGEventSourceStateCombinedSessionState = 0,
};
typedef CF_ENUM(uint32_t, CGScrollEventUnit) {
    kCGScrollEventUnitPixel = 0,
    kCGScrollEventUnitLine = 1,
};
typedef CF_ENUM(uint32_t, CGEventType) {
    kCGEventLeftMouseDown = 1,
    kCGEventLeftMouseUp = 2,
    kCGEventMouseMoved = 5,
    kCGEventKeyDown = 10,
    kCGEventKeyUp = 11,
    kCGEventTapDisabledByTimeout = 0xFFFFFFFE,
    kCGEventTapDisabledByUserInput = 0xFFFFFFFF,
};
typedef CF_ENUM(uint32_t, CGEventField) {
    kCGKeyboardEventKeycode = 9,
};
typedef CF_OPTIONS(uint64_t, CGEventFlags) {
    kCGEventFlagMaskShift = 0x20000,
    kCGEventFlagMaskControl = 0x40000,
    kCGEventFlagMaskAlternate = 0x80000,
    kCGEventFlagMaskCommand = 0x100000,
};
typedef CF_ENUM(uint32_t, CGEventTapLocation) {
    kCGHIDEventTap = 0,
    kCGSessionEventTap,
    kCGAnnotatedSessionEventTap,
};
typedef CF_ENUM(uint32_t, CGEventTapPlacement) {
    kCGHeadInsertEventTap = 0,
    kCGTailAppendEventTap,
};
typedef CF_ENUM(uint32_t, CGEventTapOptions) {
    kCGEventTapOptionDefault = 0,
    kCGEventTapOptionListenOnly = 1,
};
typedef uint64_t CGEventMask;
typedef struct __CGEventTapProxy* CGEventTapProxy;
typedef CGEventRef _Nullable (*CGEventTapCallBack)(CGEventTapProxy _Nonnull proxy, CGEventType type,
                                                   CGEventRef _Nonnull event, void* _Nullable userInfo);

NS_ASSUME_NONNULL_BEGIN

extern "C" {
extern const CFStringRef kCGWindowNumber;
extern const CFStringRef kCGWindowOwnerPID;
extern const CFStringRef kCGWindowLayer;
extern const CFStringRef kCGWindowName;
extern const CFStringRef kCGWindowBounds;
CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow)
    __attribute__((cf_returns_retained));

CGDirectDisplayID CGMainDisplayID(void);
CGRect CGDisplayBounds(CGDirectDisplayID display);
CFArrayRef _Nullable CGDisplayCopyAllDisplayModes(CGDirectDisplayID display, CFDictionaryRef _Nullable options)
    __attribute__((cf_returns_retained));
size_t CGDisplayModeGetWidth(CGDisplayModeRef _Nullable mode);
size_t CGDisplayModeGetHeight(CGDisplayModeRef _Nullable mode);
bool CGDisplayModeIsUsableForDesktopGUI(CGDisplayModeRef _Nullable mode);
CGError CGDisplaySetDisplayMode(CGDirectDisplayID display, CGDisplayModeRef _Nullable mode,
                                CFDictionaryRef _Nullable options);
void CGRestorePermanentDisplayConfiguration(void);
CGError CGWarpMouseCursorPosition(CGPoint newCursorPosition);

CGEventSourceRef _Nullable CGEventSourceCreate(CGEventSourceStateID stateID) __attribute__((cf_returns_retained));
CGEventRef _Nullable CGEventCreateMouseEvent(CGEventSourceRef _Nullable source, CGEventType mouseType,
                                             CGPoint mouseCursorPosition, CGMouseButton mouseButton)
    __attribute__((cf_returns_retained));
CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode virtualKey, bool keyDown)
    __attribute__((cf_returns_retained));
CGEventRef _Nullable CGEventCreateScrollWheelEvent2(CGEventSourceRef _Nullable source, CGScrollEventUnit units,
                                                    uint32_t wheelCount, int32_t wheel1, int32_t wheel2, int32_t wheel3)
    __attribute__((cf_returns_retained));
void CGEventSetLocation(CGEventRef _Nullable event, CGPoint location);
void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags);
CGEventFlags CGEventGetFlags(CGEventRef _Nullable event);
int64_t CGEventGetIntegerValueField(CGEventRef _Nullable event, CGEventField field);
void CGEventSetIntegerValueField(CGEventRef _Nullable event, CGEventField field, int64_t value);
void CGEventSetDoubleValueField(CGEventRef _Nullable event, CGEventField field, double value);
void CGEventPostToPid(pid_t pid, CGEventRef _Nullable event);
void CGEventPost(CGEventTapLocation tap, CGEventRef _Nullable event);

CFMachPortRef _Nullable CGEventTapCreate(CGEventTapLocation tap, CGEventTapPlacement place, CGEventTapOptions options,
                                         CGEventMask eventsOfInterest, CGEventTapCallBack callback,
                                         void* _Nullable userInfo) __attribute__((cf_returns_retained));
void CGEventTapEnable(CFMachPortRef tap, bool enable);

bool CGPreflightListenEventAccess(void);
bool CGPreflightPostEventAccess(void);
bool CGRequestPostEventAccess(void);
bool CGPreflightScreenCaptureAccess(void);
bool CGRequestScreenCaptureAccess(void);
}

NS_ASSUME_NONNULL_END
