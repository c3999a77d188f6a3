#include "Platform/StatusBar.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/NativeImage.h"
#include "Platform/macOS/NativeMenu.h"
#include "Platform/macOS/Ports.h"

#import <AppKit/AppKit.h>

namespace quillon::macos {

namespace {

class MacStatusBarButton final : public StatusBarButton {
public:
    explicit MacStatusBarButton(NSStatusBarButton* button) : button(button) {}

    void setImage(std::shared_ptr<Image> image) override {
        button.image = image != nullptr ? nativeImage(*image) : nil;
    }
    void setTitle(std::string_view title) override { button.title = toNSString(title); }
    void setToolTip(std::string_view toolTip) override { button.toolTip = toNSString(toolTip); }

private:
    NSStatusBarButton* button;
};

/// Where AppKit remembers the place of a status item with an autosave name. Nothing documents it: should it change,
/// an item only comes back at its first place.
NSString* positionKey(NSString* autosaveName) {
    return [@"NSStatusItem Preferred Position " stringByAppendingString:autosaveName];
}

class MacStatusItem final : public StatusItem {
public:
    MacStatusItem() {
        if (NSStatusBarButton* const native = item.button) {
            statusBarButton.emplace(native);
        }
    }
    ~MacStatusItem() override {
        // AppKit forgets the place of an item that is removed, as if it were never to come back: at the removal, and
        // once more when the last reference goes, unless the item has lost its name by then.
        NSUserDefaults* const defaults = NSUserDefaults.standardUserDefaults;
        NSString* const key = positionKey(item.autosaveName);
        const id position = [defaults objectForKey:key];
        item.autosaveName = nil;
        [NSStatusBar.systemStatusBar removeStatusItem:item];
        if (position != nil) {
            [defaults setObject:position forKey:key];
        }
    }

    void setAutosaveName(std::string_view name) override {
        item.autosaveName = toNSString(name);
        item.visible = YES; // It may have been hidden when the name was last in use, and AppKit remembers that too.
    }
    StatusBarButton* button() override { return statusBarButton ? &*statusBarButton : nullptr; }
    void setMenu(std::shared_ptr<Menu> menu) override { item.menu = makeNativeMenu(std::move(menu)); }

private:
    NSStatusItem* item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    std::optional<MacStatusBarButton> statusBarButton;
};

class MacStatusBar final : public StatusBar {
public:
    double thickness() const override { return NSStatusBar.systemStatusBar.thickness; }
    std::unique_ptr<StatusItem> makeStatusItem() override { return std::make_unique<MacStatusItem>(); }
    bool showsItems() const override { return true; }
    bool popUpMenuAtPointer(std::shared_ptr<Menu> menu) override {
        // The result says whether an item was chosen, not whether the menu was open. Without a view, the location is
        // in screen coordinates.
        [makeNativeMenu(std::move(menu)) popUpMenuPositioningItem:nil atLocation:NSEvent.mouseLocation inView:nil];
        return true;
    }
};

} // namespace

std::unique_ptr<StatusBar> makeStatusBar() {
    return std::make_unique<MacStatusBar>();
}

} // namespace quillon::macos
