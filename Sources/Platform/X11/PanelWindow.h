#pragma once

#include "Platform/Panel.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/ServerObject.h"

#include <cstdint>
#include <optional>

namespace quillon::x11 {

/// How a panel's window lies among the others.
struct PanelStacking {
    int level = floatingWindowLevel;
    bool onAllDesktops = false;

    bool operator==(const PanelStacking&) const = default;
};

/// The X window of a panel and what it asks of the window manager: a utility window without decorations that never
/// takes the focus. Destroying it removes it from the screen. Main thread.
class PanelWindow {
public:
    /// An unmanaged window is none of the window manager's business: it lies over everything, on every desktop.
    PanelWindow(Connection& connection, const PixelRect& rect, std::uint8_t depth, xcb_visualid_t visual,
                bool isManaged);
    PanelWindow(const PanelWindow&) = delete;
    PanelWindow& operator=(const PanelWindow&) = delete;
    ~PanelWindow();

    [[nodiscard]] xcb_window_t id() const { return window; }
    [[nodiscard]] std::uint8_t depth() const { return windowDepth; }
    [[nodiscard]] bool isManaged() const { return managed; }

    void move(const PixelRect& rect);
    void map(const PanelStacking& stacking);
    void unmap();
    /// For a mapped window.
    void changeStacking(const PanelStacking& from, const PanelStacking& to);
    /// To the front or to the back of its level.
    void restack(xcb_stack_mode_t mode);
    /// Opacity from 0 to 1. Seen only where a compositor runs.
    void setOpacity(double opacity);

private:
    void describe();
    void setNumbers(std::string_view property, xcb_atom_t type, std::initializer_list<std::uint32_t> numbers);
    void setText(xcb_atom_t property, xcb_atom_t type, std::string_view text);
    void writeStacking(const PanelStacking& stacking);
    void changeState(bool add, std::string_view state);

    Connection& connection;
    xcb_window_t window;
    std::uint8_t windowDepth;
    bool managed;
    Colormap colormap;
};

} // namespace quillon::x11
