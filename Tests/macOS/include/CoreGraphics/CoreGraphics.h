// Geometry, the window list, images, displays, input events and the checks for access to them and to the screen.
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
typedef CF_ENUM(uint32_t, CGMouseButton) {
    kCGMouseButtonLeft = 0,
    kCGMouseButtonRight = 1,
    kCGMouseButtonCenter = 2,
};
typedef CF_ENUM(uint32_t, CGEventType) {
    kCGEventLeftMouseDown = 1,
    kCGEventLeftMouseUp = 2,
    kCGEventMouseMoved = 5,
};
typedef CF_ENUM(uint32_t, CGEventTapLocation) {
    kCGHIDEventTap = 0,
    kCGSessionEventTap,
    kCGAnnotatedSessionEventTap,
};

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

CGEventRef _Nullable CGEventCreateMouseEvent(CGEventSourceRef _Nullable source, CGEventType mouseType,
                                             CGPoint mouseCursorPosition, CGMouseButton mouseButton)
    __attribute__((cf_returns_retained));
void CGEventPost(CGEventTapLocation tap, CGEventRef _Nullable event);

bool CGPreflightListenEventAccess(void);
bool CGPreflightPostEventAccess(void);
bool CGPreflightScreenCaptureAccess(void);
}

NS_ASSUME_NONNULL_END
