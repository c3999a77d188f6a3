#pragma once

#include "Platform/X11/Connection.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/ServerObject.h"

class QImage;

namespace quillon::x11 {

/// What this program has drawn itself, kept at the server as a picture with alpha; may be empty. Main thread.
struct DrawnPicture {
    Pixmap pixmap;
    Picture picture;

    explicit operator bool() const { return static_cast<bool>(picture); }
};

/// Sends an image (Format_ARGB32_Premultiplied) that is not empty.
[[nodiscard]] DrawnPicture upload(Connection& connection, const PictureFormats& formats, const QImage& image);

} // namespace quillon::x11
