#pragma once

#include "Platform/Geometry.h"
#include "ProgrammingError.h"

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>

/// Between the values of Foundation and those of the ports.
namespace quillon::macos {

/// UTF-8; what UTF-8 cannot express (half a surrogate pair) is replaced.
inline std::string toString(NSString* _Nonnull text) {
    NSData* const bytes = [text dataUsingEncoding:NSUTF8StringEncoding allowLossyConversion:YES];
    return std::string(static_cast<const char*>(bytes.bytes), bytes.length);
}

inline std::optional<std::string> toOptionalString(NSString* _Nullable text) {
    return text != nil ? std::optional(toString(text)) : std::nullopt;
}

/// None when the value is missing or no text.
inline std::optional<std::string> toText(id _Nullable value) {
    return [value isKindOfClass:[NSString class]] ? toOptionalString(value) : std::nullopt;
}

/// Nil when the text is not valid UTF-8.
inline NSString* _Nullable toNSStringIfValid(std::string_view text) {
    return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
}

/// For the program's own texts, which are valid UTF-8.
inline NSString* _Nonnull toNSString(std::string_view text) {
    NSString* const result = toNSStringIfValid(text);
    if (result == nil) {
        programmingError("a text of the program is not valid UTF-8");
    }
    return result;
}

template <class Space>
NSPoint toNSPoint(const PointIn<Space>& point) {
    return NSMakePoint(point.x, point.y);
}

template <class Space>
PointIn<Space> toPoint(const NSPoint& point) {
    return {point.x, point.y};
}

inline Size toSize(const NSSize& size) {
    return {size.width, size.height};
}

inline NSSize toNSSize(const Size& size) {
    return NSMakeSize(size.width, size.height);
}

template <class Space>
NSRect toNSRect(const RectIn<Space>& rect) {
    return NSMakeRect(rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

template <class Space>
RectIn<Space> toRect(const NSRect& rect) {
    return {toPoint<Space>(rect.origin), toSize(rect.size)};
}

} // namespace quillon::macos
