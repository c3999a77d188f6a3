// The root class and its protocol, and the types that the language itself knows.
#pragma once

#include <sys/types.h>

#include <limits.h>
#include <stddef.h>
#include <stdint.h>

#if __OBJC_BOOL_IS_BOOL
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil __null

typedef long NSInteger;
typedef unsigned long NSUInteger;
#define NSUIntegerMax ULONG_MAX
typedef struct objc_class* Class;

#define NS_ENUM(type, name)                                                                                            \
    enum name : type name;                                                                                             \
    enum name : type
#define NS_OPTIONS(type, name)                                                                                         \
    type name;                                                                                                         \
    enum __attribute__((flag_enum)) : type
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
#define NS_UNAVAILABLE __attribute__((unavailable))
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")

NS_ASSUME_NONNULL_BEGIN

@class NSString;

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
- (BOOL)isKindOfClass:(Class)aClass;
@property(readonly, copy) NSString* description;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
    Class isa;
}
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
@end

NS_ASSUME_NONNULL_END
