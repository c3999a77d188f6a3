// Reference counting, run-time types, the few object types that adapters look into, Mach ports and run loops.
#pragma once

#include <objc/NSObject.h>

typedef unsigned char Boolean;
typedef double Float64;
typedef uint32_t OSType;
typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef const void* CFTypeRef;
typedef const struct __attribute__((objc_bridge(NSString))) __CFString* CFStringRef;
typedef const struct __attribute__((objc_bridge(NSArray))) __CFArray* CFArrayRef;
typedef const struct __attribute__((objc_bridge(NSDictionary))) __CFDictionary* CFDictionaryRef;
typedef const struct __attribute__((objc_bridge(NSNumber))) __CFNumber* CFNumberRef;
typedef const struct __attribute__((objc_bridge(NSNumber))) __CFBoolean* CFBooleanRef;
typedef const struct __attribute__((objc_bridge(id))) __CFAllocator* CFAllocatorRef;
typedef struct __attribute__((objc_bridge_mutable(NSMachPort))) __CFMachPort* CFMachPortRef;
typedef struct __attribute__((objc_bridge_mutable(id))) __CFRunLoop* CFRunLoopRef;
typedef struct __attribute__((objc_bridge_mutable(id))) __CFRunLoopSource* CFRunLoopSourceRef;
typedef CFStringRef CFRunLoopMode;

#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))

#define CF_ENUM(type, name) NS_ENUM(type, name)
#define CF_OPTIONS(type, name) NS_OPTIONS(type, name)

NS_ASSUME_NONNULL_BEGIN

extern "C" {
extern const CFBooleanRef kCFBooleanTrue;
CFTypeRef CFRetain(CFTypeRef object);
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);
CFTypeID CFStringGetTypeID(void);
CFTypeID CFArrayGetTypeID(void);
CFTypeID CFBooleanGetTypeID(void);
CFTypeID CFNumberGetTypeID(void);
Boolean CFNumberIsFloatType(CFNumberRef number);

extern const CFAllocatorRef _Nullable kCFAllocatorDefault;
void CFMachPortInvalidate(CFMachPortRef port);
CFRunLoopSourceRef _Nullable CFMachPortCreateRunLoopSource(CFAllocatorRef _Nullable allocator, CFMachPortRef port,
                                                           CFIndex order) __attribute__((cf_returns_retained));

extern const CFRunLoopMode kCFRunLoopCommonModes;
CFRunLoopRef CFRunLoopGetMain(void);
void CFRunLoopAddSource(CFRunLoopRef rl, CFRunLoopSourceRef _Nullable source, CFRunLoopMode mode);
}

NS_ASSUME_NONNULL_END
