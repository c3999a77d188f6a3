#include "Picture.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

namespace quillon::e2e {

namespace {

constexpr std::uint32_t colourBits = 0x00ffffff;
constexpr std::array<unsigned, 3> channelShifts{16, 8, 0};

int channel(std::uint32_t pixel, unsigned shift) {
    return static_cast<int>((pixel >> shift) & 0xff);
}

bool inCorner(const Picture& picture, int x, int y, int side) {
    return x >= picture.width - side && y >= picture.height - side;
}

/// How much of the source each pixel along one axis covers: the first source index and the weights from there.
struct Coverage {
    int first = 0;
    std::vector<double> weights;
};

std::vector<Coverage> coverage(int from, int to) {
    std::vector<Coverage> result(static_cast<std::size_t>(to));
    const double step = static_cast<double>(from) / to;
    for (int index = 0; index < to; ++index) {
        const double start = index * step;
        const double end = start + step;
        auto& entry = result[static_cast<std::size_t>(index)];
        entry.first = static_cast<int>(start);
        for (int source = entry.first; source < from && source < end; ++source) {
            entry.weights.push_back((std::min(end, source + 1.0) - std::max(start, static_cast<double>(source))) /
                                    step);
        }
    }
    return result;
}

std::uint32_t meanColour(const Picture& picture, const Coverage& columns, const Coverage& rows) {
    std::array<double, 3> sums{};
    for (std::size_t row = 0; row < rows.weights.size(); ++row) {
        for (std::size_t column = 0; column < columns.weights.size(); ++column) {
            const auto pixel = picture.at(columns.first + static_cast<int>(column), rows.first + static_cast<int>(row));
            for (std::size_t index = 0; index < channelShifts.size(); ++index) {
                sums[index] += rows.weights[row] * columns.weights[column] * channel(pixel, channelShifts[index]);
            }
        }
    }
    std::uint32_t result = 0xff000000;
    for (std::size_t index = 0; index < channelShifts.size(); ++index) {
        result |= static_cast<std::uint32_t>(std::clamp(std::lround(sums[index]), 0L, 255L)) << channelShifts[index];
    }
    return result;
}

} // namespace

std::string difference(const Picture& expected, const Picture& seen, int cornerLeftOut) {
    std::ostringstream text;
    if (expected.width != seen.width || expected.height != seen.height) {
        text << "expected " << expected.width << "x" << expected.height << ", seen " << seen.width << "x"
             << seen.height;
        return text.str();
    }
    std::size_t count = 0;
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x) {
            const auto wanted = expected.at(x, y) & colourBits;
            const auto shown = seen.at(x, y) & colourBits;
            if (wanted == shown || inCorner(expected, x, y, cornerLeftOut)) {
                continue;
            }
            if (count++ == 0) {
                text << "first at " << x << "," << y << std::hex << ": expected " << wanted << ", seen " << shown
                     << std::dec << "; ";
            }
        }
    }
    if (count > 0) {
        text << count << " pixels differ of " << expected.pixels.size();
    }
    return text.str();
}

Picture scaledByArea(const Picture& picture, int width, int height) {
    Picture result{width, height, {}};
    result.pixels.reserve(static_cast<std::size_t>(width * height));
    const auto columns = coverage(picture.width, width);
    for (const auto& rows : coverage(picture.height, height)) {
        for (const auto& column : columns) {
            result.pixels.push_back(meanColour(picture, column, rows));
        }
    }
    return result;
}

double signalToNoise(const Picture& expected, const Picture& seen, int cornerLeftOut) {
    double squares = 0;
    std::size_t samples = 0;
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x) {
            if (inCorner(expected, x, y, cornerLeftOut)) {
                continue;
            }
            for (const auto shift : channelShifts) {
                const double error = channel(expected.at(x, y), shift) - channel(seen.at(x, y), shift);
                squares += error * error;
                ++samples;
            }
        }
    }
    if (squares == 0) {
        return std::numeric_limits<double>::infinity();
    }
    return 10 * std::log10(255.0 * 255.0 * static_cast<double>(samples) / squares);
}

void save(const Picture& picture, const std::filesystem::path& path) {
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << picture.width << " " << picture.height << "\n255\n";
    for (const auto pixel : picture.pixels) {
        for (const auto shift : channelShifts) {
            file.put(static_cast<char>(channel(pixel, shift)));
        }
    }
}

} // namespace quillon::e2e
