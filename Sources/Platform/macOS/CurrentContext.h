#pragma once

#include "Platform/Drawing.h"
#include "Platform/macOS/Conversions.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

inline NSColor* _Nonnull toNSColor(GrayColor color) {
    return [NSColor colorWithWhite:color.white alpha:color.alpha];
}

/// Draws in the current NSGraphicsContext; `Context` is `DrawingContext` or adds to it. Main thread.
template <class Context>
class CurrentContext : public Context {
public:
    void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor color) override {
        [toNSColor(color) setFill];
        [[NSBezierPath bezierPathWithRoundedRect:toNSRect(rect) xRadius:cornerRadius yRadius:cornerRadius] fill];
    }

    void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor color) override {
        NSBezierPath* const path = [NSBezierPath bezierPath];
        for (const auto& segment : segments) {
            [path moveToPoint:toNSPoint(segment.from)];
            [path lineToPoint:toNSPoint(segment.to)];
        }
        path.lineWidth = lineWidth;
        path.lineCapStyle = NSLineCapStyleRound;
        [toNSColor(color) setStroke];
        [path stroke];
    }
};

} // namespace quillon::macos
