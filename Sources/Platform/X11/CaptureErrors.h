#pragma once

#include "Platform/ScreenCapture.h"

namespace quillon::x11 {

// The codes are those of SCStreamError.

inline CaptureError alreadyCapturing() {
    return {-3807, "the stream was started before"};
}
inline CaptureError notCapturing() {
    return {-3808, "the stream is not running"};
}
inline CaptureError noWindowList() {
    return {-3813, "the X server gave no list of windows"};
}
inline CaptureError windowGone() {
    return {-3815, "the window has closed"};
}
inline CaptureError windowWithoutPicture() {
    return {-3815, "the window is not mapped and has no picture"};
}

} // namespace quillon::x11
