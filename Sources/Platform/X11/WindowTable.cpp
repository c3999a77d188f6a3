#include "Platform/X11/WindowTable.h"

#include "Platform/X11/X11Platform.h"
#include "WindowDetector.h"

#include <fmt/format.h>
#include <utf8proc.h>

#include <array>
#include <unordered_map>

namespace quillon::x11 {

namespace {

/// All columns but the last one, the title, which ends the line.
using AlignedCells = std::array<std::string, 4>;

struct Line {
    AlignedCells cells;
    std::string title;
};

/// The number of a terminal's cells that the text takes.
std::size_t displayWidth(const std::string& text) {
    std::size_t width = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        utf8proc_int32_t codepoint = -1;
        const auto length = utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + offset,
                                             static_cast<utf8proc_ssize_t>(text.size() - offset), &codepoint);
        if (length <= 0) {
            break;
        }
        width += static_cast<std::size_t>(utf8proc_charwidth(codepoint));
        offset += static_cast<std::size_t>(length);
    }
    return width;
}

std::string geometryText(const PixelRect& rect) {
    return fmt::format("{}x{}{:+}{:+}", rect.width, rect.height, rect.x, rect.y);
}

std::unordered_map<WindowID, std::string> geometryTexts(X11Platform& platform) {
    std::unordered_map<WindowID, std::string> texts;
    const auto windows = platform.windowServer().copyWindowInfo(windowListExcludeDesktopElements, nullWindowID);
    for (const auto& entry : windows.value_or(std::vector<WindowDescription>())) {
        if (entry.number && entry.bounds) {
            texts[*entry.number] = geometryText(platform.xConnection().toPixels(entry.bounds->rect()));
        }
    }
    return texts;
}

} // namespace

std::string pinnableWindowsText(X11Platform& platform, std::optional<ProcessID> runningProgram) {
    auto geometries = geometryTexts(platform);
    std::vector<Line> lines;
    std::array<std::size_t, std::tuple_size_v<AlignedCells>> widths{};
    for (const auto& window : WindowDetector::allForeignWindows()) {
        if (window.ownerPID == runningProgram) {
            continue;
        }
        Line line{{fmt::format("{}", window.windowID), fmt::format("{}", window.ownerPID), geometries[window.windowID],
                   window.ownerName},
                  window.windowTitle};
        for (std::size_t column = 0; column < widths.size(); ++column) {
            widths[column] = std::max(widths[column], displayWidth(line.cells[column]));
        }
        lines.push_back(std::move(line));
    }
    std::string text;
    for (const auto& line : lines) {
        for (std::size_t column = 0; column < widths.size(); ++column) {
            const auto& cell = line.cells[column];
            text += cell + std::string(widths[column] - displayWidth(cell) + 2, ' ');
        }
        text += line.title + "\n";
    }
    return text;
}

} // namespace quillon::x11
