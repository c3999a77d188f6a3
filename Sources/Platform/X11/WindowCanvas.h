#pragma once

#include "Platform/X11/CapturedPicture.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/PictureScaler.h"
#include "Platform/X11/ServerObject.h"

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace quillon::x11 {

/// Draws on a window of this program: a captured picture, and small translucent drawings over it. Where a drawing
/// lies over the picture, the two are put together off the screen, so that nothing flickers. Main thread.
class WindowCanvas {
public:
    /// A drawing over the picture. It must stay as long as it is set.
    struct Overlay {
        PixelRect rect;
        xcb_render_picture_t drawing = 0;
    };

    WindowCanvas(Connection& connection, const PictureFormats& formats, xcb_window_t window, std::uint8_t depth,
                 xcb_visualid_t visual);

    [[nodiscard]] std::uint8_t depth() const { return windowDepth; }
    [[nodiscard]] const PictureFormats& pictureFormats() const { return formats; }
    /// Rectangles of the window. Overlays over each other are not put together. Draws nothing by itself.
    void setOverlays(std::span<const Overlay> overlays);

    /// Whether the picture shown at that size is copied pixel by pixel.
    [[nodiscard]] bool copies(const CapturedPicture& picture, const PixelRect& place) const;
    /// Draws areas of the window, as far as the picture reaches, whose place in the window is given.
    void draw(const std::shared_ptr<CapturedPicture>& picture, const PixelRect& place, std::span<const PixelRect> areas,
              PictureScaler& scaler);
    /// Draws a region of the picture, in the picture's coordinates. Only for a picture that is copied.
    void drawRegion(const CapturedPicture& picture, const PixelRect& place, xcb_xfixes_region_t region);

private:
    /// Where the picture and one overlay are put together.
    struct Blend {
        PixelRect rect;
        xcb_render_picture_t drawing = 0;
        Pixmap pixmap;
        Picture picture;
    };

    void copy(const CapturedPicture& picture, const PixelRect& place, xcb_drawable_t target, xcb_gcontext_t context,
              const PixelRect& area, int originX, int originY);
    void drawBlends(const std::shared_ptr<CapturedPicture>& picture, const PixelRect& place,
                    std::span<const PixelRect> areas, PictureScaler& scaler);
    void finish(const Blend& blend);

    Connection& connection;
    const PictureFormats& formats;
    xcb_window_t window;
    std::uint8_t windowDepth;
    xcb_render_pictformat_t format;
    Picture windowPicture;
    /// Its clip is set anew for each picture that is copied.
    GraphicsContext clipped;
    GraphicsContext plain;
    std::vector<Blend> blends;
    /// What the overlays cover.
    Region covered;
    /// Everything else.
    Region uncovered;
    Region clip;
};

} // namespace quillon::x11
