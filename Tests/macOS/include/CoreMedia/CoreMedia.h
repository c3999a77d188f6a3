// Times and sample buffers.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <CoreVideo/CoreVideo.h>

typedef struct {
    int64_t value;
    int32_t timescale;
    uint32_t flags;
    int64_t epoch;
} CMTime;
typedef struct __attribute__((objc_bridge(id))) opaqueCMSampleBuffer* CMSampleBufferRef;

extern "C" {
CMTime CMTimeMakeWithSeconds(Float64 seconds, int32_t preferredTimescale);
CFArrayRef _Nullable CMSampleBufferGetSampleAttachmentsArray(CMSampleBufferRef _Nonnull sbuf,
                                                             Boolean createIfNecessary);
CVImageBufferRef _Nullable CMSampleBufferGetImageBuffer(CMSampleBufferRef _Nonnull sbuf);
}
