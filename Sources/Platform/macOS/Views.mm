#include "Platform/Views.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/CurrentContext.h"
#include "Platform/macOS/LayerContents.h"
#include "Platform/macOS/NativeView.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

@interface QuillonView : NSView
/// Null once the port's view is gone.
@property(nonatomic, nullable) quillon::ViewDelegate* viewDelegate;
@end

@implementation QuillonView

- (void)setFrameSize:(NSSize)newSize {
    [super setFrameSize:newSize];
    self.needsLayout = YES;
}

- (void)layout {
    [super layout];
    if (self.viewDelegate != nullptr) {
        self.viewDelegate->layout();
    }
}

- (void)drawRect:(NSRect)dirtyRect {
    if (self.viewDelegate != nullptr) {
        quillon::macos::CurrentContext<quillon::DrawingContext> context;
        self.viewDelegate->draw(context);
    }
}

- (BOOL)acceptsFirstMouse:(NSEvent*)event {
    // Its panel never takes the keyboard focus, so every press is a first one to AppKit, which would keep it.
    return YES;
}

@end

namespace quillon::macos {

namespace {

/// Changes a layer without Core Animation's cross-fades and slides.
void withoutAnimation(void (^change)(void)) {
    [CATransaction begin];
    [CATransaction setDisableActions:YES];
    change();
    [CATransaction commit];
}

class MacLayer final : public Layer {
public:
    MacLayer() { layer.contentsGravity = kCAGravityResize; }
    ~MacLayer() override { [layer removeFromSuperlayer]; }

    void setFrame(const WindowRect& frame) override {
        withoutAnimation(^{
            layer.frame = toNSRect(frame);
        });
    }

    void setContents(std::shared_ptr<Surface> surface) override {
        const id contents = static_cast<const LayerContents&>(*surface).contents();
        withoutAnimation(^{
            if (layer.contents == contents) {
                layer.contents = nil; // Else the layer would take it that nothing has changed.
            }
            layer.contents = contents;
        });
        shown = std::move(surface);
    }

    [[nodiscard]] CALayer* native() const { return layer; }

private:
    CALayer* layer = [CALayer layer];
    std::shared_ptr<Surface> shown;
};

class MacView final : public View {
public:
    MacView(const WindowRect& frame, ViewDelegate& delegate)
        : view([[QuillonView alloc] initWithFrame:toNSRect(frame)]) {
        view.wantsLayer = YES;
        view.viewDelegate = &delegate;
    }
    ~MacView() override {
        view.viewDelegate = nullptr;
        [view removeFromSuperview];
    }

    void setFrame(const WindowRect& frame) override { view.frame = toNSRect(frame); }
    WindowRect bounds() const override { return toRect<WindowSpace>(view.bounds); }
    void setResizesWithContainer() override { view.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable; }
    void addSublayer(Layer& layer) override {
        // Lowest, since the layers of the subviews are sublayers of the same layer.
        [view.layer insertSublayer:static_cast<MacLayer&>(layer).native() atIndex:0];
    }
    void addSubview(View& subview) override { [view addSubview:nativeView(subview)]; }
    void layoutSubtreeIfNeeded() override {
        view.needsLayout = YES;
        [view layoutSubtreeIfNeeded];
    }

    [[nodiscard]] NSView* native() const { return view; }

private:
    QuillonView* view;
};

class MacViews final : public Views {
public:
    std::unique_ptr<Layer> makeLayer() override { return std::make_unique<MacLayer>(); }
    std::unique_ptr<View> makeView(const WindowRect& frame, ViewDelegate& delegate) override {
        return std::make_unique<MacView>(frame, delegate);
    }
};

} // namespace

NSView* nativeView(const View& view) {
    return static_cast<const MacView&>(view).native();
}

std::unique_ptr<Views> makeViews() {
    return std::make_unique<MacViews>();
}

} // namespace quillon::macos
