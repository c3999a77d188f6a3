#pragma once

#include "Platform/Images.h"
#include "Platform/X11/Connection.h"

#include <functional>
#include <optional>

namespace quillon::x11 {

/// The tray of the X screen that takes icons by XEmbed: the owner of the selection _NET_SYSTEM_TRAY_Sn. It may come,
/// go and come back at any time. Main thread.
class TrayManager {
public:
    explicit TrayManager(Connection& connection);

    /// None while there is no tray.
    [[nodiscard]] xcb_window_t window() const { return manager; }
    /// The visual that icons are to have; none for the root window's.
    [[nodiscard]] std::optional<xcb_visualid_t> iconVisual() const;
    /// What the tray's colours go with; none when it does not tell them.
    [[nodiscard]] std::optional<Appearance> appearance() const;
    /// Called after each change of the window.
    std::function<void()> onChange;

private:
    void look();
    void watch(xcb_window_t owner);
    void announce();

    Connection& connection;
    xcb_atom_t selection;
    xcb_window_t manager = XCB_NONE;
    RegistrationToken announcementSelection;
    RegistrationToken announcements;
    RegistrationToken managerSelection;
    RegistrationToken managerEvents;
};

} // namespace quillon::x11
