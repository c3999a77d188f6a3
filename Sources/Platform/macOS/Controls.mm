#include "Platform/macOS/Controls.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Layout.h"

namespace quillon::macos {

namespace {

/// In points.
constexpr CGFloat badgeSpacing = 4;

NSFont* toNSFont(TextStyle style) {
    switch (style) {
    case TextStyle::body:
        return [NSFont systemFontOfSize:NSFont.systemFontSize];
    case TextStyle::title:
        return [NSFont preferredFontForTextStyle:NSFontTextStyleTitle2 options:@{}];
    case TextStyle::caption:
    case TextStyle::captionWarning:
        return [NSFont systemFontOfSize:NSFont.smallSystemFontSize];
    }
}

NSColor* textColor(TextStyle style) {
    switch (style) {
    case TextStyle::body:
    case TextStyle::title:
        return NSColor.labelColor;
    case TextStyle::caption:
        return NSColor.secondaryLabelColor;
    case TextStyle::captionWarning:
        return NSColor.systemOrangeColor;
    }
}

} // namespace

NSTextField* makeTextField() {
    NSTextField* const textField = [NSTextField wrappingLabelWithString:@""];
    textField.selectable = NO; // Else it would take part in the keyboard focus.
    return textField;
}

void show(const Label& label, NSTextField* textField) {
    textField.stringValue = toNSString(label.text);
    textField.font = toNSFont(label.style);
    textField.textColor = textColor(label.style);
}

} // namespace quillon::macos

// A control is its own target, which it holds weakly.

@implementation QuillonButton {
    std::function<void()> portAction;
}

+ (instancetype)blankButton {
    QuillonButton* const button = [self buttonWithTitle:@"" target:nil action:@selector(press:)];
    button.target = button;
    return button;
}

- (void)showPortButton:(const quillon::Button&)button {
    self.title = quillon::macos::toNSString(button.title);
    self.keyEquivalent = button.isCancel ? @"\033" : @"";
    portAction = button.action;
}

- (void)press:(nullable id)sender {
    const auto running = portAction;
    running();
}

@end

@implementation QuillonSwitch {
    std::function<void(bool)> setOn;
}

- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super initWithFrame:frameRect];
    self.controlSize = NSControlSizeMini; // As in the forms of System Settings.
    self.target = self;
    self.action = @selector(flip:);
    return self;
}

- (void)showPortSwitch:(const quillon::Switch&)portSwitch {
    self.state = portSwitch.isOn ? NSControlStateValueOn : NSControlStateValueOff;
    setOn = portSwitch.setOn;
}

- (void)flip:(nullable id)sender {
    const auto running = setOn;
    running(self.state == NSControlStateValueOn);
}

@end

@implementation QuillonPopUpButton {
    std::vector<std::string> options;
    std::function<void(std::size_t)> select;
}

- (instancetype)initWithFrame:(NSRect)buttonFrame pullsDown:(BOOL)flag {
    self = [super initWithFrame:buttonFrame pullsDown:flag];
    self.target = self;
    self.action = @selector(choose:);
    return self;
}

- (void)showPortPicker:(const quillon::Picker&)picker {
    if (picker.options != options) {
        options = picker.options;
        [self removeAllItems];
        for (const auto& option : options) {
            [self addItemWithTitle:quillon::macos::toNSString(option)];
        }
    }
    [self selectItemAtIndex:picker.selected ? static_cast<NSInteger>(*picker.selected) : -1];
    select = picker.select;
}

- (void)choose:(nullable id)sender {
    const auto running = select;
    running(static_cast<std::size_t>(self.indexOfSelectedItem));
}

@end

@implementation QuillonBadge {
    NSImageView* symbol;
    NSTextField* title;
}

- (instancetype)initWithFrame:(NSRect)frameRect {
    self = [super initWithFrame:frameRect];
    symbol = [[NSImageView alloc] initWithFrame:NSZeroRect];
    symbol.contentTintColor = NSColor.systemGreenColor;
    symbol.accessibilityElement = NO; // The title says all.
    title = quillon::macos::makeTextField();
    [title setContentCompressionResistancePriority:NSLayoutPriorityDefaultHigh
                                    forOrientation:NSLayoutConstraintOrientationHorizontal];
    self.spacing = quillon::macos::badgeSpacing;
    [self setHuggingPriority:NSLayoutPriorityDefaultHigh forOrientation:NSLayoutConstraintOrientationHorizontal];
    quillon::macos::add(self, symbol);
    quillon::macos::add(self, title);
    return self;
}

- (void)showPortBadge:(const quillon::Badge&)badge {
    symbol.image = [NSImage imageWithSystemSymbolName:quillon::macos::toNSString(badge.symbolName)
                             accessibilityDescription:nil];
    quillon::macos::show(quillon::Label{badge.title}, title);
}

@end
