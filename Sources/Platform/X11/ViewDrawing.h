#pragma once

#include "Platform/Views.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/ServerObject.h"

namespace quillon::x11 {

/// What a view draws, kept at the server as a picture with alpha; empty when it draws nothing. Main thread.
struct ViewDrawing {
    Pixmap pixmap;
    Picture picture;

    explicit operator bool() const { return static_cast<bool>(picture); }
};

/// Has the delegate draw a view of that size in pixels. `scale` is in pixels per point.
[[nodiscard]] ViewDrawing drawView(Connection& connection, const PictureFormats& formats, ViewDelegate& delegate,
                                   int width, int height, double scale);

} // namespace quillon::x11
