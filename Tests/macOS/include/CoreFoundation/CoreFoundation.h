// Reference counting, run-time types and the few object types that adapters look into.
#pragma once

#include <objc/NSObject.h>

typedef unsigned char Boolean;
typedef double Float64;
typedef uint32_t OSType;
typedef unsigned long CFTypeID;
typedef const void* CFTypeRef;
typedef const struct __attribute__((objc_bridge(NSString))) __CFString* CFStringRef;
typedef const struct __attribute__((objc_bridge(NSArray))) __CFArray* CFArrayRef;
typedef const struct __attribute__((objc_bridge(NSDictionary))) __CFDictionary* CFDictionaryRef;
typedef const struct __attribute__((objc_bridge(NSNumber))) __CFNumber* CFNumberRef;
typedef const struct __attribute__((objc_bridge(NSNumber))) __CFBoolean* CFBooleanRef;

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
CFTypeID CFBooleanGetTypeID(void);
Boolean CFNumberIsFloatType(CFNumberRef number);
}

NS_ASSUME_NONNULL_END
