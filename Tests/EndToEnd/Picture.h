#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon::e2e {

/// In pixels of the root window: origin top left, y downwards.
struct Rect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Rect&) const = default;
};

/// Pixels as 0xAARRGGBB, row by row from the top.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;

    [[nodiscard]] std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
    bool operator==(const Picture&) const = default;
};

/// Empty when the pictures have one size and, outside a square in the bottom right corner with that side, the same
/// colours; otherwise what differs. Alpha does not count.
std::string difference(const Picture& expected, const Picture& seen, int cornerLeftOut);

/// The picture at another size, every pixel the mean of the area that it covers.
Picture scaledByArea(const Picture& picture, int width, int height);

/// Peak signal-to-noise ratio of the colours in decibels, outside the corner; infinite for equal pictures. The
/// pictures have one size.
double signalToNoise(const Picture& expected, const Picture& seen, int cornerLeftOut);

/// As a portable pixmap.
void save(const Picture& picture, const std::filesystem::path& path);

} // namespace quillon::e2e
