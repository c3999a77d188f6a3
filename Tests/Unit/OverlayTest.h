#pragma once

#include "UnitTest.h"
#include "WindowOverlay.h"

#include <optional>

namespace quillon {

/// Base of the tests of overlays: an application with a window, and room for the overlay of it.
class OverlayTest : public UnitTest {
protected:
    static constexpr DisplayRect realBounds{{100, 50}, {800, 600}};
    /// The same on the 900 points high primary screen.
    static constexpr ScreenRect realFrame{{100, 250}, {800, 600}};

    WindowOverlay& create() {
        overlay.emplace(windowID, app);
        return *overlay;
    }
    /// Creates the overlay and lets it find its capture record.
    WindowOverlay& createReady() {
        create();
        desktop.runUntilIdle();
        return *overlay;
    }
    /// An overlay in front, fully faded in, with a running stream.
    WindowOverlay& show() {
        createReady().bringToFront();
        desktop.advance(Seconds(0.2));
        return *overlay;
    }

    simulated::SimulatedPanel& panel() { return *desktop.panels().all().at(0); }
    simulated::SimulatedLayer& layer() { return *panel().contentView()->sublayers().at(0); }
    simulated::SimulatedScreenCapture& capture() { return desktop.screenCapture(); }
    std::size_t runningStreams() { return capture().runningStreams().size(); }
    simulated::OpenWindow& window() { return desktop.model().window(windowID); }

    const ProcessID app = desktop.launch("Note");
    const WindowID windowID = desktop.openWindow(app, "Spesa", realBounds);
    const std::string number = std::to_string(windowID);
    std::optional<WindowOverlay> overlay;
};

} // namespace quillon
