#pragma once

#include "Platform/Screens.h"
#include "Platform/X11/Connection.h"

#include <memory>
#include <optional>
#include <vector>

namespace quillon {
class NotificationCenter;
class Scheduler;
} // namespace quillon

namespace quillon::x11 {

class ClientWindows;

/// The monitors of the RandR extension, the primary one first; the whole root window where there are none. Keeps
/// the connection's primary screen up to date. What the desktop's panels leave free is the window manager's word
/// (_NET_WORKAREA), which is one rectangle for all monitors; without one it is the whole monitor.
class X11Screens final : public Screens {
public:
    X11Screens(Connection& connection, Scheduler& scheduler, NotificationCenter& notifications,
               const ClientWindows& windows);

    [[nodiscard]] std::vector<Screen> screens() const override;
    [[nodiscard]] std::optional<Screen> mainScreen() const override;
    /// Of the pixel under the pointer, the corner that belongs to it and to no other.
    [[nodiscard]] ScreenPoint mouseLocation() const override;

private:
    void observeChanges();
    void scheduleUpdate();
    [[nodiscard]] std::vector<PixelRect> readMonitors() const;
    [[nodiscard]] std::optional<PixelRect> readWorkArea() const;
    void update();
    [[nodiscard]] Screen screen(const PixelRect& monitor) const;

    Connection& connection;
    Scheduler& scheduler;
    NotificationCenter& notifications;
    const ClientWindows& windows;
    bool hasMonitors = false;
    bool isUpdateDue = false;
    /// Never empty; the primary one first.
    std::vector<PixelRect> monitors;
    /// Of the current desktop; none when no window manager tells it.
    std::optional<PixelRect> workArea;
    RegistrationToken screenChange;
    RegistrationToken outputChange;
    RegistrationToken rootEvents;
    RegistrationToken rootSelection;
    /// Ends an update that waits in the event loop when the screens go.
    std::shared_ptr<void> lifetime = std::make_shared<char>();
};

} // namespace quillon::x11
