// Pixel buffers.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <IOSurface/IOSurface.h>

typedef struct __attribute__((objc_bridge(id))) __CVBuffer* CVBufferRef;
typedef CVBufferRef CVImageBufferRef;
typedef CVImageBufferRef CVPixelBufferRef;

extern "C" {
size_t CVPixelBufferGetWidth(CVPixelBufferRef _Nonnull pixelBuffer);
size_t CVPixelBufferGetHeight(CVPixelBufferRef _Nonnull pixelBuffer);
IOSurfaceRef _Nullable CVPixelBufferGetIOSurface(CVPixelBufferRef _Nullable pixelBuffer);
}
