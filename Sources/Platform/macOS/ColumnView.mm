#include "Platform/macOS/ColumnView.h"

#include "Platform/macOS/Controls.h"
#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/Layout.h"

namespace quillon::macos {

namespace {

/// In points.
constexpr CGFloat textBlockSpacing = 4;

NSTextField* makeCentredTextField(const Label& label) {
    NSTextField* const text = makeTextField();
    text.alignment = NSTextAlignmentCenter;
    show(label, text);
    return text;
}

/// Adds items to a column.
class ColumnBuilder {
public:
    explicit ColumnBuilder(NSStackView* stack) : stack(stack) {}

    void operator()(const ApplicationIcon& icon) const {
        NSImage* const image = [NSImage imageNamed:NSImageNameApplicationIcon];
        if (image == nil) {
            return;
        }
        NSImageView* const view = [NSImageView imageViewWithImage:image];
        view.imageScaling = NSImageScaleProportionallyUpOrDown;
        view.accessibilityElement = NO;
        [NSLayoutConstraint activateConstraints:@[
            [view.widthAnchor constraintEqualToConstant:icon.size.width],
            [view.heightAnchor constraintEqualToConstant:icon.size.height],
        ]];
        add(stack, view);
    }
    void operator()(const Label& label) const { addFilling(makeCentredTextField(label)); }
    void operator()(const TextBlock& block) const {
        NSStackView* const texts = [[NSStackView alloc] initWithFrame:NSZeroRect];
        makeVertical(texts, textBlockSpacing, NSEdgeInsetsMake(0, 0, 0, 0));
        const ColumnBuilder builder(texts);
        for (const auto& label : block.labels) {
            builder(label);
        }
        addFilling(texts);
    }
    void operator()(const Divider&) const {
        NSBox* const line = [[NSBox alloc] initWithFrame:NSZeroRect];
        line.boxType = NSBoxSeparator;
        [line.heightAnchor constraintEqualToConstant:1].active = YES;
        addFilling(line);
    }
    void operator()(const Button& button) const {
        QuillonButton* const view = [QuillonButton blankButton];
        [view showPortButton:button];
        add(stack, view);
    }

private:
    void addFilling(NSView* view) const { insertFilling(stack, view, stack.arrangedSubviews.count); }

    NSStackView* stack;
};

} // namespace

NSView* makeColumnView(const Column& column) {
    NSStackView* const stack = [[NSStackView alloc] initWithFrame:NSZeroRect];
    makeVertical(stack, column.spacing,
                 NSEdgeInsetsMake(column.padding, column.padding, column.padding, column.padding));
    stack.alignment = NSLayoutAttributeCenterX;
    [stack.widthAnchor constraintEqualToConstant:column.width].active = YES;
    const ColumnBuilder builder(stack);
    for (const auto& item : column.items) {
        std::visit(builder, item);
    }
    return stack;
}

} // namespace quillon::macos
