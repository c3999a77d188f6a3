#pragma once

#include "Platform/Images.h"
#include "Platform/Scheduler.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/PictureFormats.h"
#include "Platform/X11/ServerObject.h"

#include <functional>
#include <memory>
#include <string>

namespace quillon::x11 {

class TrayManager;

/// An icon in a tray that takes icons by XEmbed, from its construction until the tray or the icon goes. Main thread.
class TrayIcon {
public:
    /// The manager's tray is there. All must outlive the icon.
    TrayIcon(Connection& connection, Scheduler& scheduler, const PictureFormats& formats, const TrayManager& manager,
             const std::string& name);
    ~TrayIcon();
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    /// The tray that the icon was made for.
    [[nodiscard]] xcb_window_t tray() const { return trayWindow; }

    /// Null for no image. `appearance` counts where the tray does not tell its colours.
    void setImage(std::shared_ptr<Image> image, Appearance appearance);
    void setToolTip(const std::string& text);
    /// A click with the left or the right button.
    std::function<void()> onClick;

private:
    void createWindow(const std::string& name);
    void askForSide(int side);
    void dock();
    void handle(const xcb_generic_event_t& event);
    void handleButton(xcb_button_t button, bool isDown);
    void draw();
    void showToolTipSoon();
    void hideToolTip();

    Connection& connection;
    Scheduler& scheduler;
    const PictureFormats& formats;
    const TrayManager& manager;
    /// The manager's window at the time.
    xcb_window_t trayWindow;
    xcb_window_t window;
    xcb_visualid_t visual = 0;
    bool hasAlpha = false;
    Colormap colormap;
    int width = 1;
    int height = 1;
    bool isPressed = false;
    std::shared_ptr<Image> image;
    Appearance appearance = Appearance::aqua;
    std::string toolTip;
    RegistrationToken events;
    RegistrationToken toolTipTimer;
};

} // namespace quillon::x11
