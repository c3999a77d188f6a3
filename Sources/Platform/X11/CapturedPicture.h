#pragma once

#include "Platform/Surface.h"
#include "Platform/X11/ServerObject.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace quillon::x11 {

/// Where in a drawable a picture of a window lies, and how its pixels are to be read.
struct PictureGeometry {
    /// In pixels, without the window's border.
    int width = 0;
    int height = 0;
    /// Distance of the picture from the drawable's left and top edge: the border is part of a window's pixmap.
    int border = 0;
    std::uint8_t depth = 0;
    xcb_visualid_t visual = 0;
};

/// A window's picture at the server: either the live one that the server keeps of a redirected window, which stays
/// readable when the window is resized, unmapped or destroyed but is not drawn to any more, or a copy. Main thread.
class CapturedPicture {
public:
    CapturedPicture(Connection& connection, NamedPixmap pixmap, const PictureGeometry& geometry);

    [[nodiscard]] xcb_pixmap_t pixmap() const { return pixels.id(); }
    [[nodiscard]] const PictureGeometry& geometry() const { return shape; }
    /// The picture as it is now, which does not change any more.
    [[nodiscard]] std::shared_ptr<CapturedPicture> copy() const;

private:
    Connection& connection;
    NamedPixmap pixels;
    PictureGeometry shape;
};

/// What the surfaces of one stream share. A surface costs no memory at the server: it says which frame it is, and
/// the pixels are those of the feed's picture.
struct PictureFeed {
    std::shared_ptr<CapturedPicture> picture;
    /// What has changed between the latest frame and the one before it, in the window's coordinates; none for a
    /// single picture.
    Region damage;
    /// The number of the latest frame.
    std::uint64_t latestFrame = 0;
    /// Called when `picture` became another one without a new frame. Set by whoever shows the feed.
    std::function<void()> onPictureReplaced;

    /// From now on the feed shows what it shows at this moment, whatever the window does.
    void freeze();
};

/// One frame of a feed, or a single picture.
class PictureSurface final : public Surface {
public:
    PictureSurface(std::shared_ptr<PictureFeed> feed, std::uint64_t frame, bool isWhole)
        : pictures(std::move(feed)), number(frame), whole(isWhole) {}

    [[nodiscard]] const std::shared_ptr<PictureFeed>& feed() const { return pictures; }
    /// Whether whoever shows the other surface need only redraw the feed's damage to show this one.
    [[nodiscard]] bool continues(const PictureSurface& other) const {
        return !whole && other.pictures == pictures && other.number + 1 == number && number == pictures->latestFrame;
    }

private:
    std::shared_ptr<PictureFeed> pictures;
    std::uint64_t number;
    /// Everything may differ from the frame before.
    bool whole;
};

/// The image buffer of a frame, of the size that the stream is configured for. The surface is scaled where it is
/// shown, straight from the window's picture.
class PictureBuffer final : public PixelBuffer {
public:
    PictureBuffer(std::size_t width, std::size_t height, std::shared_ptr<Surface> surface)
        : pixelWidth(width), pixelHeight(height), picture(std::move(surface)) {}

    [[nodiscard]] std::size_t width() const override { return pixelWidth; }
    [[nodiscard]] std::size_t height() const override { return pixelHeight; }
    [[nodiscard]] std::shared_ptr<Surface> surface() const override { return picture; }

private:
    std::size_t pixelWidth;
    std::size_t pixelHeight;
    std::shared_ptr<Surface> picture;
};

} // namespace quillon::x11
