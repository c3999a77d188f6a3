// Geometry, the window list, images and the checks for access to input events.
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

NS_ASSUME_NONNULL_BEGIN

extern "C" {
extern const CFStringRef kCGWindowNumber;
extern const CFStringRef kCGWindowOwnerPID;
extern const CFStringRef kCGWindowLayer;
extern const CFStringRef kCGWindowName;
extern const CFStringRef kCGWindowBounds;
CFArrayRef _Nullable CGWindowListCopyWindowInfo(CGWindowListOption option, CGWindowID relativeToWindow)
    __attribute__((cf_returns_retained));

bool CGPreflightListenEventAccess(void);
bool CGPreflightPostEventAccess(void);
}

NS_ASSUME_NONNULL_END
