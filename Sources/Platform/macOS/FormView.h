#pragma once

#include "Platform/WindowContent.h"

#import <AppKit/AppKit.h>

NS_ASSUME_NONNULL_BEGIN

/// Shows a form in the look of System Settings. It wants the height of all its sections, and scrolls them when it is
/// given less.
@interface QuillonFormView : NSView
- (instancetype)initWithPortForm:(const quillon::Form&)form;
/// Rows that the same controls can show keep theirs.
- (void)showPortForm:(const quillon::Form&)form;
@end

NS_ASSUME_NONNULL_END
