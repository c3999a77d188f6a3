#pragma once

#include "Platform/Registration.h"
#include "Platform/WindowServer.h"

#include <memory>
#include <mutex>
#include <set>

namespace quillon::x11 {

class ClientWindows;
class WindowAccess;
struct ClientWindow;

/// Window numbers are those of the client windows, not of the frames that a window manager puts around them.
///
/// A window that this program shows a copy of counts as on the screen even while it is minimised or on another desktop,
/// behind all others: the copy stays where it is, and the user can switch to the window by it.
class X11WindowServer final : public WindowServer {
public:
    explicit X11WindowServer(const WindowAccess& access) : access(access) {}

    /// There is a copy of the window as long as the token lives, which may outlive this object.
    [[nodiscard]] RegistrationToken addCopy(WindowID window);
    [[nodiscard]] std::optional<std::vector<WindowDescription>> copyWindowInfo(WindowListOption options,
                                                                               WindowID relativeTo) const override;

private:
    struct Copies {
        std::mutex mutex;
        /// A window may have several copies.
        std::multiset<WindowID> windows;
    };

    [[nodiscard]] bool hasCopy(WindowID window) const;
    [[nodiscard]] std::vector<ClientWindow> select(const ClientWindows& windows, WindowListOption options,
                                                   WindowID relativeTo) const;

    const WindowAccess& access;
    std::shared_ptr<Copies> copies = std::make_shared<Copies>();
};

} // namespace quillon::x11
