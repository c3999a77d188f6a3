#pragma once

#include "Platform/Views.h"
#include "Platform/X11/DrawnPicture.h"

namespace quillon::x11 {

/// What the delegate draws in a view of that size in pixels; empty when it draws nothing. `scale` is in pixels per
/// point.
[[nodiscard]] DrawnPicture drawView(Connection& connection, const PictureFormats& formats, ViewDelegate& delegate,
                                    int width, int height, double scale);

} // namespace quillon::x11
