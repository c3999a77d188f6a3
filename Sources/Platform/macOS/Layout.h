#pragma once

#import <AppKit/AppKit.h>

namespace quillon::macos {

/// Adds the view, as large as the container is.
void fill(NSView* _Nonnull container, NSView* _Nonnull view);

/// Makes a stack one whose views lie one beneath the other.
void makeVertical(NSStackView* _Nonnull stack, CGFloat spacing, NSEdgeInsets insets);

/// Adds the view behind the others, at its own size.
void add(NSStackView* _Nonnull stack, NSView* _Nonnull view);

/// Adds the view to a vertical stack, as wide as the stack is within its insets.
void insertFilling(NSStackView* _Nonnull stack, NSView* _Nonnull view, NSUInteger index);

/// Nil when the stack has fewer views.
[[nodiscard]] __kindof NSView* _Nullable viewAt(NSStackView* _Nonnull stack, NSUInteger index);

/// Takes out the views from that index on.
void removeFrom(NSStackView* _Nonnull stack, NSUInteger index);

/// Takes a view out of its superview. The view lives until the event that is being handled is done with: a control may
/// be taken out by its own action.
void takeOut(NSView* _Nonnull view);

} // namespace quillon::macos
