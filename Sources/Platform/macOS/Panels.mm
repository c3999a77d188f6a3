#include "Platform/Panel.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/NativeCollectionBehavior.h"
#include "Platform/macOS/NativeView.h"
#include "Platform/macOS/Ports.h"
#include "ProgrammingError.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

/// Presses, releases and drags: what has a click count, a pressure and a button.
constexpr NSEventMask buttonEvents = NSEventMaskLeftMouseDown | NSEventMaskLeftMouseUp | NSEventMaskLeftMouseDragged |
                                     NSEventMaskRightMouseDown | NSEventMaskRightMouseUp |
                                     NSEventMaskRightMouseDragged | NSEventMaskOtherMouseDown |
                                     NSEventMaskOtherMouseUp | NSEventMaskOtherMouseDragged;

/// The types that the port lists.
constexpr NSEventMask pointerEvents =
    buttonEvents | NSEventMaskMouseMoved | NSEventMaskMouseEntered | NSEventMaskMouseExited | NSEventMaskScrollWheel;

/// None for events that are no input of the panel's (keys, AppKit's own); those need not have a location.
std::optional<PanelEvent> toPanelEvent(NSEvent* event) {
    const NSEventMask type = NSEventMaskFromType(event.type);
    if ((type & pointerEvents) == 0) {
        return std::nullopt;
    }
    PanelEvent result;
    result.type = static_cast<EventType>(event.type);
    result.locationInWindow = toPoint<WindowSpace>(event.locationInWindow);
    result.modifierFlags = event.modifierFlags;
    // AppKit raises an exception when an event is asked for what its type does not have.
    if (type == NSEventMaskScrollWheel) {
        result.scrollingDeltaX = event.scrollingDeltaX;
        result.scrollingDeltaY = event.scrollingDeltaY;
        result.hasPreciseScrollingDeltas = event.hasPreciseScrollingDeltas;
    }
    if ((type & buttonEvents) != 0) {
        result.clickCount = event.clickCount;
        result.pressure = event.pressure;
        result.buttonNumber = event.buttonNumber;
    }
    return result;
}

} // namespace

} // namespace quillon::macos

@interface QuillonPanel : NSPanel
/// Null once the port's panel is gone.
@property(nonatomic, nullable) quillon::PanelDelegate* panelDelegate;
- (void)sendDispatchedEventToSuper;
@end

@implementation QuillonPanel {
    /// The event that the delegate is being asked about, else nil.
    NSEvent* dispatchedEvent;
}

- (void)sendEvent:(NSEvent*)event {
    const auto panelEvent = quillon::macos::toPanelEvent(event);
    if (self.panelDelegate == nullptr || !panelEvent) {
        [super sendEvent:event];
        return;
    }
    NSEvent* const outerEvent = dispatchedEvent;
    dispatchedEvent = event;
    self.panelDelegate->sendEvent(*panelEvent);
    dispatchedEvent = outerEvent;
}

- (void)sendDispatchedEventToSuper {
    if (dispatchedEvent == nil) {
        quillon::programmingError("a panel was asked to handle an event that it is not dispatching");
    }
    [super sendEvent:dispatchedEvent];
}

- (void)mouseDown:(NSEvent*)event {
    const auto panelEvent = quillon::macos::toPanelEvent(event);
    if (self.panelDelegate != nullptr && panelEvent) {
        self.panelDelegate->mouseDown(*panelEvent);
    }
}

@end

namespace quillon::macos {

namespace {

class MacPanel final : public Panel {
public:
    MacPanel(const ScreenRect& contentRect, PanelDelegate& delegate)
        : panel([[QuillonPanel alloc] initWithContentRect:toNSRect(contentRect)
                                                styleMask:NSWindowStyleMaskNonactivatingPanel
                                                  backing:NSBackingStoreBuffered
                                                    defer:NO]) {
        panel.opaque = NO;
        panel.backgroundColor = NSColor.clearColor;
        panel.hasShadow = YES;
        panel.floatingPanel = YES;
        panel.becomesKeyOnlyIfNeeded = YES;
        panel.hidesOnDeactivate = NO;
        panel.releasedWhenClosed = NO;
        panel.panelDelegate = &delegate;
    }
    ~MacPanel() override {
        panel.panelDelegate = nullptr;
        panel.contentView = nil;
        [panel close];
    }

    ScreenRect frame() const override { return toRect<ScreenSpace>(panel.frame); }
    void setFrame(const ScreenRect& frame, bool display) override { [panel setFrame:toNSRect(frame) display:display]; }
    bool isVisible() const override { return panel.visible; }
    void setLevel(int level) override { panel.level = level; }
    void setCollectionBehavior(CollectionBehavior behavior) override {
        panel.collectionBehavior = nativeCollectionBehavior(behavior);
    }
    void setAlphaValue(double alpha) override { panel.alphaValue = alpha; }
    void animateAlphaValue(double alpha, Seconds duration) override {
        [NSAnimationContext runAnimationGroup:^(NSAnimationContext* context) {
            context.duration = duration.count();
            [panel animator].alphaValue = alpha;
        }];
    }
    void orderFront() override { [panel orderFront:nil]; }
    void orderBack() override { [panel orderBack:nil]; }
    void orderOut() override { [panel orderOut:nil]; }
    void setContentView(View& view) override { panel.contentView = nativeView(view); }
    std::optional<double> screenBackingScaleFactor() const override {
        NSScreen* const screen = panel.screen;
        return screen != nil ? std::optional<double>(screen.backingScaleFactor) : std::nullopt;
    }
    void sendEventToSuper(const PanelEvent& /*event*/) override { [panel sendDispatchedEventToSuper]; }

private:
    QuillonPanel* panel;
};

class MacPanels final : public Panels {
public:
    std::unique_ptr<Panel> makePanel(const ScreenRect& contentRect, PanelDelegate& delegate) override {
        return std::make_unique<MacPanel>(contentRect, delegate);
    }
};

} // namespace

std::unique_ptr<Panels> makePanels() {
    return std::make_unique<MacPanels>();
}

} // namespace quillon::macos
