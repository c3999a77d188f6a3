#pragma once

#include "Platform/Geometry.h"
#include "Platform/Scheduler.h"
#include "Platform/Views.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quillon {

/// The kind of an input event; the numbers are those of NSEventType.
enum class EventType : int {
    leftMouseDown = 1,
    leftMouseUp = 2,
    rightMouseDown = 3,
    rightMouseUp = 4,
    mouseMoved = 5,
    leftMouseDragged = 6,
    rightMouseDragged = 7,
    mouseEntered = 8,
    mouseExited = 9,
    scrollWheel = 22,
    otherMouseDown = 25,
    otherMouseUp = 26,
    otherMouseDragged = 27,
};

/// Modifier bits (NSEventModifierFlags).
using ModifierFlags = std::uint64_t;
inline constexpr ModifierFlags modifierFlagShift = 0x20000;
inline constexpr ModifierFlags modifierFlagControl = 0x40000;
inline constexpr ModifierFlags modifierFlagOption = 0x80000;
inline constexpr ModifierFlags modifierFlagCommand = 0x100000;

/// What the user did on a panel (NSEvent).
struct PanelEvent {
    EventType type = EventType::mouseMoved;
    /// The pointer relative to the panel's frame at the time of the call.
    WindowPoint locationInWindow;
    ModifierFlags modifierFlags = 0;
    /// Scrolling in points, or in lines for a wheel with steps; positive towards the top and the left.
    double scrollingDeltaX = 0;
    double scrollingDeltaY = 0;
    /// The deltas are points (a trackpad), not lines.
    bool hasPreciseScrollingDeltas = false;
    /// Of a press and its release: 2 for the second one of a double-click, and so on; 0 when it is no click.
    std::int64_t clickCount = 0;
    /// From 0 to 1.
    double pressure = 0;
    /// 0 left, 1 right, 2 the middle one, and so on.
    std::int64_t buttonNumber = 0;
};

/// Stacking levels (NSWindowLevel); a higher one lies in front.
inline constexpr int normalWindowLevel = 0;   ///< CGWindowLevelForKey(kCGNormalWindowLevelKey)
inline constexpr int floatingWindowLevel = 3; ///< NSFloatingWindowLevel

/// How a panel takes part in Spaces (NSWindowCollectionBehavior).
struct CollectionBehavior {
    bool canJoinAllSpaces = false;
    /// It may lie over another application's full-screen window.
    bool fullScreenAuxiliary = false;
    /// It comes to the Space that the user is on when it becomes active, instead of switching to its own.
    bool moveToActiveSpace = false;

    bool operator==(const CollectionBehavior&) const = default;
};

/// What a kind of panel adds to the platform's panel (a subclass of NSPanel). Main thread.
class PanelDelegate {
public:
    virtual ~PanelDelegate() = default;

    /// Every input event of the panel, before any view sees it.
    virtual void sendEvent(const PanelEvent& event) = 0;
    /// A left press that the inherited dispatch delivered to the panel itself.
    virtual void mouseDown(const PanelEvent& event) = 0;
};

/// A borderless window that never becomes active or takes the keyboard focus (an NSPanel with the style
/// mask NSWindowStyleMaskNonactivatingPanel): not opaque, background clear, with a shadow, floating, not
/// hidden when the application is not active, not released when closed. Destroying it removes it from the
/// screen. Main thread.
class Panel {
public:
    Panel() = default;
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;
    virtual ~Panel() = default;

    [[nodiscard]] virtual ScreenRect frame() const = 0;
    /// With `display` the content is redrawn before the call returns.
    virtual void setFrame(const ScreenRect& frame, bool display) = 0;
    /// Ordered in, whether covered or not.
    [[nodiscard]] virtual bool isVisible() const = 0;
    virtual void setLevel(int level) = 0;
    virtual void setCollectionBehavior(CollectionBehavior behavior) = 0;
    /// Opacity from 0 to 1, at once.
    virtual void setAlphaValue(double alpha) = 0;
    /// The same over a time.
    virtual void animateAlphaValue(double alpha, Seconds duration) = 0;
    /// To the front of its level, without making it key.
    virtual void orderFront() = 0;
    /// To the back of its level.
    virtual void orderBack() = 0;
    /// Off the screen; its content is kept.
    virtual void orderOut() = 0;
    /// The view must outlive the panel. It is given the panel's size at once and at every change.
    virtual void setContentView(View& view) = 0;
    /// Pixels per point of the screen under it; none while it is on no screen.
    [[nodiscard]] virtual std::optional<double> screenBackingScaleFactor() const = 0;
    /// What the platform does with an event by itself; may call the delegate's `mouseDown`. Only valid for
    /// the event that `sendEvent` is being called with.
    virtual void sendEventToSuper(const PanelEvent& event) = 0;
};

/// Makes panels. Main thread.
class Panels {
public:
    virtual ~Panels() = default;

    /// Created at once, but not shown. The delegate must outlive the panel; it is not called before
    /// `makePanel` has returned.
    [[nodiscard]] virtual std::unique_ptr<Panel> makePanel(const ScreenRect& contentRect, PanelDelegate& delegate) = 0;
};

} // namespace quillon
