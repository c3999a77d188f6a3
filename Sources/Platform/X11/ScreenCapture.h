#pragma once

#include "Platform/ScreenCapture.h"
#include "Platform/X11/ServerPause.h"
#include "Platform/X11/SourceWindow.h"

#include <memory>

namespace quillon::x11 {

class X11WindowServer;

/// Pictures of single windows through Composite and Damage, which never leave the server. Everything runs on the
/// main thread, the samples' queue included.
///
/// A window is redirected while one of its records, filters or streams is held: a pin holds its record, so that
/// the picture is complete at any later moment, when the window is covered and when its program hangs. A list of
/// records redirects nothing by itself. A record that is still held two turns of the event loop after the list was
/// handed out has been chosen, and holds its window from then on.
class X11ScreenCapture final : public ScreenCapture {
public:
    X11ScreenCapture(Connection& connection, Scheduler& scheduler, const ClientWindows& windows,
                     X11WindowServer& windowServer);

    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ContentCompletion completion) override;
    std::shared_ptr<ContentFilter> makeFilter(const std::shared_ptr<CaptureWindow>& desktopIndependentWindow) override;
    std::shared_ptr<CaptureStream> makeStream(const std::shared_ptr<ContentFilter>& filter,
                                              const StreamConfiguration& configuration,
                                              StoppedCallback stopped) override;
    void captureImage(const std::shared_ptr<ContentFilter>& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override;
    /// Whether the server has the extensions that pictures of windows come from.
    [[nodiscard]] bool preflightAccess() const override;
    /// The same; there is nobody to ask.
    bool requestAccess() override { return preflightAccess(); }

private:
    Connection& connection;
    Scheduler& scheduler;
    X11WindowServer& windowServer;
    ServerPause serverPause;
    /// Shared with the records, which outlive their list.
    std::shared_ptr<SourceWindows> sources;
};

} // namespace quillon::x11
