#pragma once

#include "Platform/X11/CapturedPicture.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/ServerObject.h"

#include <array>
#include <memory>
#include <vector>

namespace quillon::x11 {

/// Draws a captured picture at another size, or into a window of another depth, with Render. Main thread.
///
/// Bilinear filtering reads two pixels an axis, so that it skips pixels below half size. There, the picture is
/// first halved, repeatedly, until no more than a last halving is left: exactly 2:1 the filter is a true average.
/// The halved pictures exist in horizontal strips, whose memory is a small part of the source's.
class PictureScaler {
public:
    PictureScaler(Connection& connection, const PictureFormats& formats) : connection(connection), formats(formats) {}

    /// Scales from now on from that picture to that size, in pixels. False when the server cannot read it.
    [[nodiscard]] bool prepare(std::shared_ptr<CapturedPicture> picture, int width, int height);
    /// The area of the scaled picture that a change of an area of the source may reach.
    [[nodiscard]] PixelRect reachOf(const PixelRect& sourceArea) const;
    /// Draws an area of the scaled picture, whose origin lies at the given point of the target.
    void draw(const PixelRect& area, xcb_render_picture_t target, int originX, int originY);
    /// Frees what `prepare` and `draw` made.
    void reset();

private:
    struct Axis {
        int source = 0; ///< pixels
        int target = 0; ///< pixels
        int halvings = 0;

        void set(int sourcePixels, int targetPixels);
        /// Pixels of the picture after so many halvings.
        [[nodiscard]] int sizeAt(int level) const;
        /// Of the picture after all halvings, per pixel of the target.
        [[nodiscard]] double step() const;
        struct Range {
            int from = 0;
            int to = 0;
        };
        /// Of the picture after all halvings: what a range of the target is made of.
        [[nodiscard]] Range lastLevel(Range target) const;
        /// The range of a level that a range of the last level is made of.
        [[nodiscard]] Range atLevel(Range lastLevel, int level) const;
        [[nodiscard]] Range reach(Range source) const;
    };
    struct Strip {
        Pixmap pixmap;
        Picture picture;
        int width = 0;
        int height = 0;
    };

    [[nodiscard]] int levels() const { return std::max(horizontal.halvings, vertical.halvings); }
    [[nodiscard]] int rowsPerStrip() const;
    void drawStrip(const PixelRect& area, xcb_render_picture_t target, int originX, int originY);
    void makeRoom(Strip& strip, int width, int height);
    void setTransform(xcb_render_picture_t from, double stepX, double stepY, double offsetX, double offsetY) const;
    void useBilinear(xcb_render_picture_t from) const;

    Connection& connection;
    const PictureFormats& formats;
    std::shared_ptr<CapturedPicture> source;
    Picture sourcePicture;
    xcb_render_pictformat_t format = 0;
    Axis horizontal;
    Axis vertical;
    /// Used in turn by the levels.
    std::array<Strip, 2> strips;
};

} // namespace quillon::x11
