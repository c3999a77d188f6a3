#pragma once

#include "Platform/WindowContent.h"

#import <AppKit/AppKit.h>

/// The controls that forms and columns consist of. They are made blank and may be shown something else at any time.
/// Their actions may do the latter.
namespace quillon::macos {

/// Wraps where it has to.
[[nodiscard]] NSTextField* _Nonnull makeTextField();
void show(const Label& label, NSTextField* _Nonnull textField);

} // namespace quillon::macos

NS_ASSUME_NONNULL_BEGIN

@interface QuillonButton : NSButton
+ (instancetype)blankButton;
- (void)showPortButton:(const quillon::Button&)button;
@end

@interface QuillonSwitch : NSSwitch
- (void)showPortSwitch:(const quillon::Switch&)portSwitch;
@end

@interface QuillonPopUpButton : NSPopUpButton
- (void)showPortPicker:(const quillon::Picker&)picker;
@end

@interface QuillonBadge : NSStackView
- (void)showPortBadge:(const quillon::Badge&)badge;
@end

NS_ASSUME_NONNULL_END
