#include "Platform/macOS/Layout.h"

namespace quillon::macos {

void fill(NSView* container, NSView* view) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [container addSubview:view];
    [NSLayoutConstraint activateConstraints:@[
        [view.topAnchor constraintEqualToAnchor:container.topAnchor],
        [view.bottomAnchor constraintEqualToAnchor:container.bottomAnchor],
        [view.leadingAnchor constraintEqualToAnchor:container.leadingAnchor],
        [view.trailingAnchor constraintEqualToAnchor:container.trailingAnchor],
    ]];
}

void makeVertical(NSStackView* stack, CGFloat spacing, NSEdgeInsets insets) {
    stack.orientation = NSUserInterfaceLayoutOrientationVertical;
    stack.alignment = NSLayoutAttributeLeading;
    stack.spacing = spacing;
    stack.edgeInsets = insets;
}

void add(NSStackView* stack, NSView* view) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [stack addArrangedSubview:view];
}

void insertFilling(NSStackView* stack, NSView* view, NSUInteger index) {
    view.translatesAutoresizingMaskIntoConstraints = NO;
    [stack insertArrangedSubview:view atIndex:static_cast<NSInteger>(index)];
    const NSEdgeInsets insets = stack.edgeInsets;
    [view.widthAnchor constraintEqualToAnchor:stack.widthAnchor constant:-insets.left - insets.right].active = YES;
}

__kindof NSView* viewAt(NSStackView* stack, NSUInteger index) {
    NSArray<NSView*>* const views = stack.arrangedSubviews;
    return index < views.count ? views[index] : nil;
}

void removeFrom(NSStackView* stack, NSUInteger index) {
    while (NSView* const view = viewAt(stack, index)) {
        takeOut(view);
    }
}

void takeOut(NSView* view) {
    [[maybe_unused]] NSView* __autoreleasing const kept = view;
    [view removeFromSuperview];
}

} // namespace quillon::macos
