#include "Platform/TitledWindow.h"

#include "Platform/macOS/ColumnView.h"
#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/FormView.h"
#include "Platform/macOS/Layout.h"
#include "Platform/macOS/NativeCollectionBehavior.h"
#include "Platform/macOS/NativeScreen.h"
#include "Platform/macOS/NativeWindow.h"
#include "Platform/macOS/Observation.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

@interface QuillonTitledWindow : NSWindow
/// Null once the port's window is gone.
@property(nonatomic, nullable) quillon::TitledWindow* portWindow;
@end

@implementation QuillonTitledWindow
@end

namespace quillon::macos {

namespace {

constexpr NSWindowStyleMask styleMask = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable;

struct MakeContentView {
    NSView* operator()(const Form& form) const { return [[QuillonFormView alloc] initWithPortForm:form]; }
    NSView* operator()(const Column& column) const { return makeColumnView(column); }
};

/// Depth-first, the view itself included; nil when there is none.
NSScrollView* _Nullable firstScrollView(NSView* view) {
    if ([view isKindOfClass:[NSScrollView class]]) {
        return static_cast<NSScrollView*>(view);
    }
    for (NSView* subview in view.subviews) {
        if (NSScrollView* const found = firstScrollView(subview)) {
            return found;
        }
    }
    return nil;
}

class MacTitledWindow final : public TitledWindow {
public:
    MacTitledWindow(const std::string& title, const WindowContent& content) {
        showContentView(std::visit(MakeContentView(), content));
        [container setFrameSize:container.fittingSize];
        NSViewController* const controller = [[NSViewController alloc] initWithNibName:nil bundle:nil];
        controller.view = container;
        window = [QuillonTitledWindow windowWithContentViewController:controller];
        window.styleMask = styleMask;
        window.title = toNSString(title);
        window.releasedWhenClosed = NO;
        window.portWindow = this;
    }
    ~MacTitledWindow() override {
        window.portWindow = nullptr;
        [window orderOut:nil];
    }

    void setContent(WindowContent content) override {
        const auto* const form = std::get_if<Form>(&content);
        if (form != nullptr && [contentView isKindOfClass:[QuillonFormView class]]) {
            [static_cast<QuillonFormView*>(contentView) showPortForm:*form];
        } else {
            takeOut(contentView);
            showContentView(std::visit(MakeContentView(), content));
        }
    }
    Size fittingSize() const override {
        // The texts take the height that they need at the width that they have.
        [container layoutSubtreeIfNeeded];
        return toSize(container.fittingSize);
    }

    Size contentSize() const override { return toSize([window contentRectForFrameRect:window.frame].size); }
    void setContentSize(const Size& size) override { [window setContentSize:toNSSize(size)]; }
    ScreenRect frame() const override { return toRect<ScreenSpace>(window.frame); }
    void setFrame(const ScreenRect& frame, bool display) override { [window setFrame:toNSRect(frame) display:display]; }
    void setFrameOrigin(const ScreenPoint& origin) override { [window setFrameOrigin:toNSPoint(origin)]; }
    void center() override { [window center]; }
    std::optional<Screen> screen() const override { return toScreen(window.screen); }
    RegistrationToken observeDidChangeScreen(std::function<void()> callback) override {
        return observeWindow(NSWindowDidChangeScreenNotification, std::move(callback));
    }

    bool isVisible() const override { return window.visible; }
    void setCollectionBehavior(CollectionBehavior behavior) override {
        window.collectionBehavior = nativeCollectionBehavior(behavior);
    }
    void makeKeyAndOrderFront() override {
        [window makeKeyAndOrderFront:nil];
        if (!hasBeenShown) {
            hasBeenShown = true;
            clearFirstResponder(); // AppKit has given the first control the keyboard focus.
        }
    }
    void close() override { [window close]; }
    RegistrationToken observeWillClose(std::function<void()> callback) override {
        return observeWindow(NSWindowWillCloseNotification, std::move(callback));
    }

    void clearFirstResponder() override { [window makeFirstResponder:nil]; }
    std::optional<ScrollExtent> scrollExtent() const override {
        NSScrollView* const scrollView = firstScrollView(container);
        NSView* const document = scrollView.documentView;
        if (document == nil) {
            return std::nullopt;
        }
        return ScrollExtent{document.frame.size.height, scrollView.contentView.bounds.size.height,
                            static_cast<bool>(document.flipped)};
    }
    void scrollTo(double y) override {
        NSScrollView* const scrollView = firstScrollView(container);
        [scrollView.contentView scrollToPoint:NSMakePoint(0, y)];
        [scrollView reflectScrolledClipView:scrollView.contentView];
    }

    [[nodiscard]] NSWindow* native() const { return window; }

private:
    void showContentView(NSView* view) {
        contentView = view;
        fill(container, view);
    }
    RegistrationToken observeWindow(NSNotificationName name, std::function<void()> callback) {
        return observe(NSNotificationCenter.defaultCenter, name, window,
                       [callback = std::move(callback)](NSNotification*) { callback(); });
    }

    /// The window's content view. It stays when another content needs another view.
    NSView* container = [[NSView alloc] initWithFrame:NSZeroRect];
    NSView* contentView = nil;
    QuillonTitledWindow* window = nil;
    bool hasBeenShown = false;
};

class MacTitledWindows final : public TitledWindows {
public:
    std::unique_ptr<TitledWindow> makeWindow(const std::string& title, WindowContent content) override {
        return std::make_unique<MacTitledWindow>(title, content);
    }
    Size frameSize(const Size& contentSize) const override {
        const NSRect content = NSMakeRect(0, 0, contentSize.width, contentSize.height);
        return toSize([NSWindow frameRectForContentRect:content styleMask:styleMask].size);
    }
    TitledWindow* keyWindow() const override {
        NSWindow* const window = NSApplication.sharedApplication.keyWindow;
        const bool isTitledWindow = [window isKindOfClass:[QuillonTitledWindow class]];
        return isTitledWindow ? static_cast<QuillonTitledWindow*>(window).portWindow : nullptr;
    }
};

} // namespace

NSWindow* nativeWindow(const TitledWindow& window) {
    return static_cast<const MacTitledWindow&>(window).native();
}

std::unique_ptr<TitledWindows> makeTitledWindows() {
    return std::make_unique<MacTitledWindows>();
}

} // namespace quillon::macos
