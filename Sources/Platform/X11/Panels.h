#pragma once

#include "Platform/Panel.h"
#include "Platform/Screens.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/FullScreenWatch.h"
#include "Platform/X11/PanelInput.h"
#include "Platform/X11/PanelWindow.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/Views.h"
#include "Platform/X11/WindowCanvas.h"

#include <memory>
#include <optional>
#include <vector>

namespace quillon::x11 {

/// A panel. Its X window is made when it is first shown, of the depth that its contents have, so that they can be
/// copied pixel by pixel, transparency included. The panel's frame is the one that was asked for last: the window
/// manager is told, not asked.
///
/// Nothing can be seen of a panel without a picture, so the window of one that is ordered in waits for it.
///
/// Window managers keep managed windows beneath an active full-screen window. While there is one, a panel that may
/// lie over it has an unmanaged window instead. Main thread.
class X11Panel final : public Panel {
public:
    X11Panel(Connection& connection, Scheduler& scheduler, Screens& screens, Keyboard& keyboard,
             std::shared_ptr<const PictureFormats> formats, std::shared_ptr<FullScreenWatch> fullScreen,
             const ScreenRect& frame, PanelDelegate& delegate);
    ~X11Panel() override;

    ScreenRect frame() const override { return requestedFrame; }
    void setFrame(const ScreenRect& frame, bool display) override;
    bool isVisible() const override { return isOrderedIn; }
    void setLevel(int level) override;
    void setCollectionBehavior(CollectionBehavior behavior) override;
    void setAlphaValue(double alpha) override;
    void animateAlphaValue(double alpha, Seconds duration) override;
    void orderFront() override { order(XCB_STACK_MODE_ABOVE); }
    void orderBack() override { order(XCB_STACK_MODE_BELOW); }
    void orderOut() override;
    void setContentView(View& view) override;
    std::optional<double> screenBackingScaleFactor() const override;
    void sendEventToSuper(const PanelEvent& event) override;

private:
    void order(xcb_stack_mode_t mode);
    void showWindow();
    void makeWindow();
    void removeWindow();
    void changeStacking(const PanelStacking& newStacking);
    [[nodiscard]] bool liesOverFullScreen() const;
    void followFullScreen();
    void applyAlpha(double newAlpha);
    void handle(const xcb_generic_event_t& event);
    [[nodiscard]] PixelRect pixelFrame() const;

    Connection& connection;
    Scheduler& scheduler;
    Screens& screens;
    std::shared_ptr<const PictureFormats> formats;
    std::shared_ptr<FullScreenWatch> fullScreen;
    PanelDelegate& delegate;
    ScreenRect requestedFrame;
    PanelStacking stacking;
    bool isFullScreenAuxiliary = false;
    double alpha = 1;
    bool isOrderedIn = false;
    bool isMapped = false;
    X11View* contentView = nullptr;
    PanelInput input;
    std::optional<PanelWindow> window;
    std::optional<WindowCanvas> canvas;
    /// Exposed areas whose last one has not been announced yet.
    std::vector<PixelRect> exposed;
    RegistrationToken events;
    RegistrationToken selection;
    RegistrationToken fade;
    RegistrationToken fullScreenChanges;
};

class X11Panels final : public Panels {
public:
    X11Panels(Connection& connection, Scheduler& scheduler, Screens& screens, Keyboard& keyboard)
        : connection(connection), scheduler(scheduler), screens(screens), keyboard(keyboard) {}

    std::unique_ptr<Panel> makePanel(const ScreenRect& contentRect, PanelDelegate& delegate) override;

private:
    Connection& connection;
    Scheduler& scheduler;
    Screens& screens;
    Keyboard& keyboard;
    // Made with the first panel.
    std::shared_ptr<const PictureFormats> formats;
    std::shared_ptr<FullScreenWatch> fullScreen;
};

} // namespace quillon::x11
