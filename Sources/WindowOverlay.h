#pragma once

#include "HeldWeakly.h"
#include "OverlayCanvasView.h"
#include "Platform/Panel.h"
#include "Platform/ScreenCapture.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quillon {

/// The floating panel that stands in for one pinned window: it lies over the real window's place, shows it
/// live and routes the user's input. Main thread, except for the delivery of frames, which says so.
class WindowOverlay : private HeldWeakly<WindowOverlay>, private PanelDelegate {
    friend HeldWeakly<WindowOverlay>;

public:
    /// Creates the panel without showing it and starts looking for the window's capture record.
    WindowOverlay(WindowID windowID, ProcessID pid);
    ~WindowOverlay() override;

    [[nodiscard]] WindowID targetWindowID() const { return windowID; }
    [[nodiscard]] ProcessID targetPID() const { return pid; }
    /// True while the overlay is meant to be in front: from `bringToFront` to `sendBehind` or `hideOverlay`.
    [[nodiscard]] bool isPinVisible() const { return pinVisible; }
    [[nodiscard]] ScreenRect frame() const { return panel->frame(); }
    /// Count of complete frames that have arrived.
    [[nodiscard]] std::int64_t framesReceived() const { return frameCount; }

    /// Another application is in front: show the panel and capture.
    void bringToFront();
    /// The real window's application is in front: drop beneath normal windows, stop capturing, keep the
    /// last picture.
    void sendBehind();
    /// The pin has ended: take the panel off the screen.
    void hideOverlay();
    /// Moves the panel onto the real window.
    void syncFrameWithTarget();
    /// Switches the user to the real window.
    void activateRealWindow();
    /// Hands a changed capture rate to the running stream, if there is one.
    void applyCaptureRate();
    /// Shows the panel on every Space or on one, as the user has chosen.
    void applyCollectionBehavior();

    /// Whether input is handed on to real windows. The user default when it is stored as a truth, else on
    /// below macOS 27 and off from there on. (The settings switch shows on when nothing is stored; the two
    /// defaults are meant to differ.)
    [[nodiscard]] static bool forwardEvents();
    /// The stored rate in frames per second, or the default; may be slower than what is captured at.
    [[nodiscard]] static double captureRate();
    /// None when the window has gone or cannot be described.
    [[nodiscard]] static std::optional<ScreenRect> getWindowFrame(WindowID windowID);
    [[nodiscard]] static std::optional<DisplayRect> windowBounds(WindowID windowID);

private:
    // Input
    void sendEvent(const PanelEvent& event) override;
    void mouseDown(const PanelEvent& event) override;
    [[nodiscard]] bool resizeWithGrip(const PanelEvent& event);
    void resizeStep(const PanelEvent& event);
    void scrollThroughAccessibility(const PanelEvent& event) const;
    [[nodiscard]] bool forwardOrSwitch(const PanelEvent& event);
    [[nodiscard]] ScreenPoint pointerOnScreen(const PanelEvent& event) const;

    // Placement and showing
    void startFrameSync();
    void fadeIn();
    void doInitialShow();
    void showInitialPicture(const std::variant<std::shared_ptr<Surface>, CaptureError>& picture);
    void pauseCapture();

    // Live capture
    void resolveSCWindow(bool thenStartStream);
    void shareableContentArrived(const std::variant<ShareableContent, CaptureError>& result, bool thenStartStream);
    void scheduleResolveRetry(bool thenStartStream);
    [[nodiscard]] double displayScale() const;
    [[nodiscard]] StreamConfiguration makeStreamConfig(double pixelScale) const;
    void startStream();
    void stopStream();
    void updateRunningStream();
    [[nodiscard]] CaptureStream::Output makeStreamOutput();
    void show(const std::shared_ptr<PixelBuffer>& frame, const std::shared_ptr<Surface>& surface);
    void streamStopped(const std::shared_ptr<CaptureStream>& stopped);

    const WindowID windowID;
    const ProcessID pid;
    std::unique_ptr<Layer> contentLayer;
    std::shared_ptr<CaptureWindow> scWindow;
    std::shared_ptr<CaptureStream> stream;
    std::shared_ptr<SerialQueue> sampleQueue;
    /// The frame on screen; held so that its surface stays valid while it is shown.
    std::shared_ptr<PixelBuffer> displayedFrame;
    RegistrationToken frameSyncTimer;
    /// The panel size that the stream was last configured for.
    Size lastStreamSize;
    /// Set by the first grip resize; from then on the overlay keeps its own size.
    bool hasCustomOverlaySize = false;
    std::optional<ScreenRect> resizeStartFrame;
    ScreenPoint resizeStartPointer;
    /// Pixels per point that the stream is configured with.
    double streamPixelScale = 2.0;
    bool didLogFirstFrame = false;
    std::int64_t frameCount = 0;
    bool pinVisible = false;
    std::optional<OverlayCanvasView> canvas;
    std::unique_ptr<Panel> panel;
};

} // namespace quillon
