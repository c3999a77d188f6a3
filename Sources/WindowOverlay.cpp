#include "WindowOverlay.h"

#include "AXScroller.h"
#include "Defaults.h"
#include "DiagnosticLog.h"
#include "EventForwarder.h"
#include "Platform/Platform.h"
#include "Platform/Screens.h"
#include "Platform/UserDefaults.h"
#include "ProgrammingError.h"
#include "WindowLevelManager.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

constexpr Seconds frameSyncInterval{0.5};
constexpr Seconds fadeInDuration{0.15};
/// Where the panel is created when the real window cannot be described.
constexpr ScreenRect fallbackFrame{{100, 100}, {800, 600}};
/// Side of the bottom right corner in which a press starts a resize, in points: a little more than the
/// grip, so that a press on the grip's edge still resizes.
constexpr double gripHotZone = 28;
constexpr Size smallestOverlay{320, 220};
/// A size change of up to this many points leaves a running stream as it is.
constexpr double streamSizeTolerance = 1.0;

/// From this version on the system does not let synthetic events through to other applications' windows.
bool routesInputThroughAccessibility() {
    return platform().processInfo().operatingSystemVersion() >= OperatingSystemVersion{27, 0, 0};
}

bool isMouseDown(EventType type) {
    return type == EventType::leftMouseDown || type == EventType::rightMouseDown || type == EventType::otherMouseDown;
}

bool isMouseUpOrDragged(EventType type) {
    switch (type) {
    case EventType::leftMouseUp:
    case EventType::rightMouseUp:
    case EventType::otherMouseUp:
    case EventType::leftMouseDragged:
    case EventType::rightMouseDragged:
    case EventType::otherMouseDragged:
        return true;
    default:
        return false;
    }
}

} // namespace

WindowOverlay::WindowOverlay(WindowID windowID, ProcessID pid)
    : windowID(windowID), pid(pid), contentLayer(platform().views().makeLayer()),
      sampleQueue(platform().scheduler().makeSerialQueue("local.quillon.floating.frames")) {
    const auto contentRect = getWindowFrame(windowID).value_or(fallbackFrame);
    panel = platform().panels().makePanel(contentRect, *this);
    panel->setLevel(floatingWindowLevel);
    applyCollectionBehavior();
    canvas.emplace(WindowRect{{0, 0}, contentRect.size}, *contentLayer);
    canvas->view().setResizesWithContainer();
    panel->setContentView(canvas->view());
    platform().scheduler().mainAsync(weakly([](WindowOverlay& self) { self.resolveSCWindow(false); }));
}

WindowOverlay::~WindowOverlay() = default;

bool WindowOverlay::forwardEvents() {
    const auto stored = Defaults::storedBool(Defaults::forwardEvents);
    return stored ? *stored : !routesInputThroughAccessibility();
}

std::optional<DisplayRect> WindowOverlay::windowBounds(WindowID windowID) {
    const auto windows = platform().windowServer().copyWindowInfo(windowListIncludingWindow, windowID);
    if (!windows || windows->empty() || !windows->front().bounds) {
        return std::nullopt;
    }
    return windows->front().bounds->rect();
}

std::optional<ScreenRect> WindowOverlay::getWindowFrame(WindowID windowID) {
    const auto bounds = windowBounds(windowID);
    if (!bounds) {
        return std::nullopt;
    }
    const auto screens = platform().screens().screens();
    if (screens.empty()) {
        programmingError("there is no primary screen to place a window on");
    }
    const double primaryHeight = screens.front().frame.size.height;
    return ScreenRect{{bounds->minX(), primaryHeight - bounds->maxY()}, bounds->size};
}

// Placement and showing

void WindowOverlay::applyCollectionBehavior() {
    panel->setCollectionBehavior(
        {.canJoinAllSpaces = Defaults::boolForKey(Defaults::pinToAllSpaces), .fullScreenAuxiliary = true});
}

void WindowOverlay::startFrameSync() {
    frameSyncTimer.reset();
    frameSyncTimer = platform().scheduler().scheduleRepeatingTimer(
        frameSyncInterval, weakly([](WindowOverlay& self) { self.syncFrameWithTarget(); }));
}

void WindowOverlay::syncFrameWithTarget() {
    const auto target = getWindowFrame(windowID);
    if (!target) {
        return;
    }
    auto wanted = *target;
    if (hasCustomOverlaySize) {
        wanted.size = frame().size;
        wanted.origin.y = target->maxY() - wanted.size.height;
    }
    if (wanted != frame()) {
        panel->setFrame(wanted, false);
    }
    const auto size = frame().size;
    if (stream && (std::abs(size.width - lastStreamSize.width) > streamSizeTolerance ||
                   std::abs(size.height - lastStreamSize.height) > streamSizeTolerance)) {
        lastStreamSize = size;
        updateRunningStream();
    }
}

void WindowOverlay::fadeIn() {
    panel->setLevel(floatingWindowLevel);
    panel->setAlphaValue(0);
    panel->orderFront();
    panel->animateAlphaValue(1.0, fadeInDuration);
    startStream();
    startFrameSync();
}

/// Fetches a first picture before the panel is shown, so that it never fades in empty.
void WindowOverlay::doInitialShow() {
    auto& capture = platform().screenCapture();
    const auto filter = capture.makeFilter(scWindow);
    capture.captureImage(
        filter, makeStreamConfig(filter->pointPixelScale()),
        [show = weakly([](WindowOverlay& self, const auto& picture) { self.showInitialPicture(picture); })](
            const auto& picture) { platform().scheduler().mainAsync([show, picture] { show(picture); }); });
}

void WindowOverlay::showInitialPicture(const std::variant<std::shared_ptr<Surface>, CaptureError>& picture) {
    if (!pinVisible || panel->isVisible()) {
        return; // sent behind, or shown by another way, while the picture was being taken
    }
    if (const auto* error = std::get_if<CaptureError>(&picture)) {
        wplog([&] { return fmt::format("overlay: pre-show capture failed wid={}: {}", windowID, error->description); });
    } else {
        contentLayer->setContents(std::get<std::shared_ptr<Surface>>(picture));
    }
    fadeIn();
}

void WindowOverlay::bringToFront() {
    if (pinVisible) {
        wplog([&] { return fmt::format("overlay: bringToFront skipped (already front) wid={}", windowID); });
        return;
    }
    wplog([&] { return fmt::format("overlay: bringToFront wid={}", windowID); });
    pinVisible = true;
    syncFrameWithTarget();
    if (panel->isVisible()) {
        panel->setLevel(floatingWindowLevel);
        panel->orderFront();
        startStream();
        startFrameSync();
    } else if (!scWindow) {
        fadeIn();
    } else {
        platform().scheduler().mainAsync(weakly([](WindowOverlay& self) { self.doInitialShow(); }));
    }
}

void WindowOverlay::sendBehind() {
    if (!pinVisible) {
        return;
    }
    wplog([&] { return fmt::format("overlay: sendBehind wid={}", windowID); });
    pauseCapture();
    panel->setLevel(normalWindowLevel - 1);
    panel->orderBack();
}

void WindowOverlay::hideOverlay() {
    wplog([&] { return fmt::format("overlay: hideOverlay wid={}", windowID); });
    AXScroller::forget(windowID);
    pauseCapture();
    panel->orderOut();
}

void WindowOverlay::pauseCapture() {
    pinVisible = false;
    stopStream();
    frameSyncTimer.reset();
}

void WindowOverlay::activateRealWindow() {
    wplog([&] { return fmt::format("overlay: switching to real window wid={}", windowID); });
    sendBehind();
    WindowLevelManager::raiseWindow(pid, windowID, true);
}

// Input

void WindowOverlay::sendEvent(const PanelEvent& event) {
    if (pinVisible && resizeWithGrip(event)) {
        return;
    }
    if (pinVisible && routesInputThroughAccessibility()) {
        if (event.type == EventType::scrollWheel && forwardEvents()) {
            scrollThroughAccessibility(event);
            return;
        }
        if (isMouseUpOrDragged(event.type)) {
            return;
        }
        if (isMouseDown(event.type)) {
            activateRealWindow();
            return;
        }
    }
    if (pinVisible && forwardEvents() && forwardOrSwitch(event)) {
        return;
    }
    panel->sendEventToSuper(event);
}

void WindowOverlay::mouseDown(const PanelEvent& /*event*/) {
    activateRealWindow();
}

/// True when the event belonged to a resize and goes no further.
bool WindowOverlay::resizeWithGrip(const PanelEvent& event) {
    const auto& location = event.locationInWindow;
    if (event.type == EventType::leftMouseDown) {
        if (location.x < frame().size.width - gripHotZone || location.y > gripHotZone) {
            return false;
        }
        resizeStartFrame = frame();
        resizeStartPointer = pointerOnScreen(event);
        hasCustomOverlaySize = true;
        return true;
    }
    if (!resizeStartFrame || (event.type != EventType::leftMouseDragged && event.type != EventType::leftMouseUp)) {
        return false;
    }
    resizeStep(event);
    if (event.type == EventType::leftMouseUp) {
        resizeStartFrame.reset();
    }
    return true;
}

/// Drags the bottom right corner; the top left one stays where it was when the drag began.
void WindowOverlay::resizeStep(const PanelEvent& event) {
    const auto pointer = pointerOnScreen(event);
    const auto& start = *resizeStartFrame;
    const Size size{std::max(start.size.width + (pointer.x - resizeStartPointer.x), smallestOverlay.width),
                    std::max(start.size.height - (pointer.y - resizeStartPointer.y), smallestOverlay.height)};
    panel->setFrame({{start.minX(), start.maxY() - size.height}, size}, true);
}

void WindowOverlay::scrollThroughAccessibility(const PanelEvent& event) const {
    const auto [width, height] = frame().size;
    if (!(width > 0 && height > 0)) {
        return;
    }
    const auto bounds = windowBounds(windowID);
    if (!bounds || event.scrollingDeltaY == 0) {
        return;
    }
    const DisplayPoint point{bounds->minX() + bounds->size.width * (event.locationInWindow.x / width),
                             bounds->minY() + bounds->size.height * ((height - event.locationInWindow.y) / height)};
    AXScroller::scroll(pid, windowID, event.scrollingDeltaY, point);
}

/// True when the event was for the real window: handed on to it, or a request to switch to it.
bool WindowOverlay::forwardOrSwitch(const PanelEvent& event) {
    if (event.type == EventType::leftMouseDown && (event.modifierFlags & modifierFlagCommand) != 0) {
        activateRealWindow();
        return true;
    }
    if (isMouseDown(event.type) || isMouseUpOrDragged(event.type) || event.type == EventType::scrollWheel) {
        EventForwarder::forward(event, *this);
        return true;
    }
    return false;
}

ScreenPoint WindowOverlay::pointerOnScreen(const PanelEvent& event) const {
    const auto origin = frame().origin;
    return {origin.x + event.locationInWindow.x, origin.y + event.locationInWindow.y};
}

} // namespace quillon
