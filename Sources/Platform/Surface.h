#pragma once

#include <cstddef>
#include <memory>

namespace quillon {

/// A picture that stays where the platform keeps it (an IOSurface, a server-side pixmap); its pixels never
/// pass through the program. Holding it keeps the picture valid.
class Surface {
public:
    Surface() = default;
    Surface(const Surface&) = delete;
    Surface& operator=(const Surface&) = delete;
    virtual ~Surface() = default;
};

/// The image buffer of a captured frame (CVPixelBuffer).
class PixelBuffer {
public:
    PixelBuffer() = default;
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;
    virtual ~PixelBuffer() = default;

    /// In pixels.
    [[nodiscard]] virtual std::size_t width() const = 0;
    [[nodiscard]] virtual std::size_t height() const = 0;
    /// The surface that backs the buffer; null when there is none. It is valid as long as the buffer is held.
    [[nodiscard]] virtual std::shared_ptr<Surface> surface() const = 0;
};

} // namespace quillon
