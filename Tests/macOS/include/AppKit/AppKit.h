// The application, menus, the status bar, windows, panels, views and their layout, controls, drawing, images, events,
// screens and running applications.
#pragma once

#include <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

@class CALayer;
@class NSApplication;
@class NSBundle;
@class NSEvent;
@class NSImage;
@class NSLayoutConstraint;
@class NSLayoutDimension;
@class NSLayoutXAxisAnchor;
@class NSLayoutYAxisAnchor;
@class NSMenu;
@class NSScreen;
@class NSView;
@class NSViewController;
@class NSWindow;
@protocol NSWindowDelegate;

typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeRightMouseDown = 3,
    NSEventTypeRightMouseUp = 4,
    NSEventTypeMouseMoved = 5,
    NSEventTypeLeftMouseDragged = 6,
    NSEventTypeRightMouseDragged = 7,
    NSEventTypeMouseEntered = 8,
    NSEventTypeMouseExited = 9,
    NSEventTypeKeyDown = 10,
    NSEventTypeKeyUp = 11,
    NSEventTypeFlagsChanged = 12,
    NSEventTypeAppKitDefined = 13,
    NSEventTypeScrollWheel = 22,
    NSEventTypeOtherMouseDown = 25,
    NSEventTypeOtherMouseUp = 26,
    NSEventTypeOtherMouseDragged = 27,
};
typedef NS_OPTIONS(unsigned long long, NSEventMask) {
    NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown,
    NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
    NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown,
    NSEventMaskRightMouseUp = 1ULL << NSEventTypeRightMouseUp,
    NSEventMaskMouseMoved = 1ULL << NSEventTypeMouseMoved,
    NSEventMaskLeftMouseDragged = 1ULL << NSEventTypeLeftMouseDragged,
    NSEventMaskRightMouseDragged = 1ULL << NSEventTypeRightMouseDragged,
    NSEventMaskMouseEntered = 1ULL << NSEventTypeMouseEntered,
    NSEventMaskMouseExited = 1ULL << NSEventTypeMouseExited,
    NSEventMaskKeyDown = 1ULL << NSEventTypeKeyDown,
    NSEventMaskScrollWheel = 1ULL << NSEventTypeScrollWheel,
    NSEventMaskOtherMouseDown = 1ULL << NSEventTypeOtherMouseDown,
    NSEventMaskOtherMouseUp = 1ULL << NSEventTypeOtherMouseUp,
    NSEventMaskOtherMouseDragged = 1ULL << NSEventTypeOtherMouseDragged,
    NSEventMaskAny = NSUIntegerMax,
};
inline NSEventMask NSEventMaskFromType(NSEventType type) {
    return 1ULL << type;
}
typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
    NSEventModifierFlagShift = 1 << 17,
    NSEventModifierFlagControl = 1 << 18,
    NSEventModifierFlagOption = 1 << 19,
    NSEventModifierFlagCommand = 1 << 20,
};

@interface NSEvent : NSObject <NSCopying>
@property(class, readonly) NSPoint mouseLocation;
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent* event))block;
+ (void)removeMonitor:(id)eventMonitor;
@property(readonly) NSEventType type;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) NSPoint locationInWindow;
@property(readonly) NSInteger clickCount;
@property(readonly) NSInteger buttonNumber;
@property(readonly) float pressure;
@property(readonly) BOOL hasPreciseScrollingDeltas;
@property(readonly) CGFloat scrollingDeltaX;
@property(readonly) CGFloat scrollingDeltaY;
@property(readonly) NSInteger windowNumber;
@property(readonly) unsigned short keyCode;
@end

@interface NSResponder : NSObject
- (void)mouseDown:(NSEvent*)event;
- (void)selectAll:(nullable id)sender;
@end

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
    NSApplicationActivationPolicyProhibited,
};

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)flag;
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, strong) NSMenu* mainMenu;
@property(nullable, readonly, weak) NSWindow* keyWindow;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (void)finishLaunching;
- (void)run;
- (nullable NSEvent*)nextEventMatchingMask:(NSEventMask)mask
                                 untilDate:(nullable NSDate*)expiration
                                    inMode:(NSRunLoopMode)mode
                                   dequeue:(BOOL)deqFlag;
- (void)sendEvent:(NSEvent*)event;
- (void)updateWindows;
- (void)terminate:(nullable id)sender;
@end

@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor* clearColor;
@property(class, strong, readonly) NSColor* labelColor;
@property(class, strong, readonly) NSColor* secondaryLabelColor;
@property(class, strong, readonly) NSColor* separatorColor;
@property(class, strong, readonly) NSColor* systemGreenColor;
@property(class, strong, readonly) NSColor* systemOrangeColor;
@property(class, strong, readonly) NSColor* systemRedColor;
@property(class, strong, readonly) NSColor* quinarySystemFillColor API_AVAILABLE(macos(14.0));
+ (NSColor*)colorWithWhite:(CGFloat)white alpha:(CGFloat)alpha;
+ (NSColor*)colorWithHue:(CGFloat)hue
              saturation:(CGFloat)saturation
              brightness:(CGFloat)brightness
                   alpha:(CGFloat)alpha;
- (void)setFill;
- (void)setStroke;
@end

extern "C" void NSRectFill(NSRect rect);

typedef NS_ENUM(NSUInteger, NSLineCapStyle) {
    NSLineCapStyleButt = 0,
    NSLineCapStyleRound = 1,
    NSLineCapStyleSquare = 2,
};

@interface NSBezierPath : NSObject <NSCopying>
+ (NSBezierPath*)bezierPath;
+ (NSBezierPath*)bezierPathWithRoundedRect:(NSRect)rect xRadius:(CGFloat)xRadius yRadius:(CGFloat)yRadius;
@property CGFloat lineWidth;
@property NSLineCapStyle lineCapStyle;
- (void)moveToPoint:(NSPoint)point;
- (void)lineToPoint:(NSPoint)point;
- (void)fill;
- (void)stroke;
@end

typedef NSString* NSAppearanceName;
extern "C" {
extern NSAppearanceName const NSAppearanceNameAqua;
extern NSAppearanceName const NSAppearanceNameDarkAqua;
}

@interface NSAppearance : NSObject
@property(class, readonly, strong) NSAppearance* currentDrawingAppearance API_AVAILABLE(macos(11.0));
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)appearances;
@end

typedef CGFloat NSFontWeight;
extern "C" {
extern const NSFontWeight NSFontWeightRegular;
extern const NSFontWeight NSFontWeightSemibold;
}

typedef NSString* NSFontTextStyle;
typedef NSString* NSFontTextStyleOptionKey;
extern "C" NSFontTextStyle const NSFontTextStyleTitle2 API_AVAILABLE(macos(11.0));

@interface NSFont : NSObject <NSCopying>
@property(class, readonly) CGFloat systemFontSize;
@property(class, readonly) CGFloat smallSystemFontSize;
+ (NSFont*)systemFontOfSize:(CGFloat)fontSize;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)fontSize;
+ (NSFont*)preferredFontForTextStyle:(NSFontTextStyle)style
                             options:(NSDictionary<NSFontTextStyleOptionKey, id>*)options API_AVAILABLE(macos(11.0));
@end

typedef NS_ENUM(NSUInteger, NSCompositingOperation) {
    NSCompositingOperationClear,
    NSCompositingOperationCopy,
    NSCompositingOperationSourceOver,
};
typedef NS_ENUM(NSUInteger, NSImageCacheMode) {
    NSImageCacheDefault,
    NSImageCacheAlways,
    NSImageCacheBySize,
    NSImageCacheNever,
};

API_AVAILABLE(macos(11.0))
@interface NSImageSymbolConfiguration : NSObject <NSCopying>
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
+ (instancetype)configurationWithPaletteColors:(NSArray<NSColor*>*)paletteColors API_AVAILABLE(macos(12.0));
- (instancetype)configurationByApplyingConfiguration:(NSImageSymbolConfiguration*)configuration
    API_AVAILABLE(macos(12.0));
@end

typedef NSString* NSImageName;
extern "C" NSImageName const NSImageNameApplicationIcon;

@interface NSImage : NSObject
+ (nullable NSImage*)imageNamed:(NSImageName)name;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description API_AVAILABLE(macos(11.0));
+ (instancetype)imageWithSize:(NSSize)size
                      flipped:(BOOL)drawingHandlerShouldBeCalledWithFlippedContext
               drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
@property NSSize size;
@property NSImageCacheMode cacheMode;
// Apple's headers declare it as a property for other languages than C++, where its name is a keyword.
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration API_AVAILABLE(macos(11.0));
- (void)drawInRect:(NSRect)rect fromRect:(NSRect)fromRect operation:(NSCompositingOperation)op fraction:(CGFloat)delta;
@end

@protocol NSAnimatablePropertyContainer
- (instancetype)animator;
@end

@interface NSAnimationContext : NSObject
+ (void)runAnimationGroup:(__attribute__((noescape))void (^)(NSAnimationContext* context))changes;
@property NSTimeInterval duration;
@end

typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) {
    NSViewWidthSizable = 2,
    NSViewHeightSizable = 16,
};

@protocol NSAccessibility <NSObject>
@required
@property(getter=isAccessibilityElement) BOOL accessibilityElement;
@property(nullable, copy) NSString* accessibilityLabel;
- (BOOL)accessibilityPerformPress;
@end

@interface NSLayoutAnchor<AnchorType> : NSObject <NSCopying>
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor __attribute__((warn_unused_result));
- (NSLayoutConstraint*)constraintGreaterThanOrEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor
    __attribute__((warn_unused_result));
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor
                                      constant:(CGFloat)c __attribute__((warn_unused_result));
- (NSLayoutConstraint*)constraintGreaterThanOrEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor
                                                   constant:(CGFloat)c __attribute__((warn_unused_result));
@end
@interface NSLayoutXAxisAnchor : NSLayoutAnchor <NSLayoutXAxisAnchor*>
@end
@interface NSLayoutYAxisAnchor : NSLayoutAnchor <NSLayoutYAxisAnchor*>
@end
@interface NSLayoutDimension : NSLayoutAnchor <NSLayoutDimension*>
- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)c __attribute__((warn_unused_result));
- (NSLayoutConstraint*)constraintGreaterThanOrEqualToConstant:(CGFloat)c __attribute__((warn_unused_result));
@end

typedef float NSLayoutPriority;
static const NSLayoutPriority NSLayoutPriorityDefaultHigh = 750;
static const NSLayoutPriority NSLayoutPriorityDragThatCannotResizeWindow = 490;
static const NSLayoutPriority NSLayoutPriorityDefaultLow = 250;
static const NSLayoutPriority NSLayoutPriorityFittingSizeCompression = 50;
typedef NS_ENUM(NSInteger, NSLayoutConstraintOrientation) {
    NSLayoutConstraintOrientationHorizontal = 0,
    NSLayoutConstraintOrientationVertical = 1,
};
typedef NS_ENUM(NSInteger, NSLayoutAttribute) {
    NSLayoutAttributeLeading = 5,
    NSLayoutAttributeCenterX = 9,
};
typedef NS_ENUM(NSInteger, NSUserInterfaceLayoutOrientation) {
    NSUserInterfaceLayoutOrientationHorizontal = 0,
    NSUserInterfaceLayoutOrientationVertical = 1,
};

@interface NSLayoutConstraint : NSObject
@property NSLayoutPriority priority;
@property(getter=isActive) BOOL active;
+ (void)activateConstraints:(NSArray<NSLayoutConstraint*>*)constraints;
@end

@interface NSView : NSResponder <NSAnimatablePropertyContainer, NSAccessibility>
- (instancetype)initWithFrame:(NSRect)frameRect NS_DESIGNATED_INITIALIZER;
@property(nullable, readonly, unsafe_unretained) NSView* superview;
@property(copy) NSArray<__kindof NSView*>* subviews;
@property BOOL translatesAutoresizingMaskIntoConstraints;
@property(readonly, strong) NSLayoutXAxisAnchor* leadingAnchor;
@property(readonly, strong) NSLayoutXAxisAnchor* trailingAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* topAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* bottomAnchor;
@property(readonly, strong) NSLayoutDimension* widthAnchor;
@property(readonly, strong) NSLayoutDimension* heightAnchor;
@property(readonly) NSSize fittingSize;
- (void)setContentHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation;
- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation;
- (NSRect)convertRect:(NSRect)rect toView:(nullable NSView*)view;
@property NSRect frame;
@property NSRect bounds;
@property NSAutoresizingMaskOptions autoresizingMask;
@property BOOL wantsLayer;
@property(nullable, strong) CALayer* layer;
@property BOOL needsDisplay;
@property BOOL needsLayout;
@property(getter=isFlipped, readonly) BOOL flipped;
@property(nullable, copy) NSString* toolTip;
- (void)setFrameSize:(NSSize)newSize;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (void)drawRect:(NSRect)dirtyRect;
- (void)layout;
- (void)layoutSubtreeIfNeeded;
- (BOOL)acceptsFirstMouse:(nullable NSEvent*)event;
@end

@interface NSText : NSView
- (void)cut:(nullable id)sender;
- (void)copy:(nullable id)sender;
- (void)paste:(nullable id)sender;
@end

@interface NSViewController : NSResponder
- (instancetype)initWithNibName:(nullable NSString*)nibNameOrNil
                         bundle:(nullable NSBundle*)nibBundleOrNil NS_DESIGNATED_INITIALIZER;
@property(strong) NSView* view;
@end

typedef NS_ENUM(NSInteger, NSStackViewGravity) {
    NSStackViewGravityLeading = 1,
    NSStackViewGravityCenter = 2,
    NSStackViewGravityTrailing = 3,
};

@interface NSStackView : NSView
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property NSEdgeInsets edgeInsets;
@property CGFloat spacing;
@property(readonly, copy) NSArray<__kindof NSView*>* arrangedSubviews;
- (void)addArrangedSubview:(NSView*)view;
- (void)insertArrangedSubview:(NSView*)view atIndex:(NSInteger)index;
@property(readonly, copy) NSArray<__kindof NSView*>* views;
- (void)addView:(NSView*)view inGravity:(NSStackViewGravity)gravity;
- (void)setHuggingPriority:(NSLayoutPriority)huggingPriority forOrientation:(NSLayoutConstraintOrientation)orientation;
@end

typedef NS_ENUM(NSUInteger, NSBoxType) {
    NSBoxPrimary = 0,
    NSBoxSeparator = 2,
    NSBoxCustom = 4,
};

@interface NSBox : NSView
@property NSBoxType boxType;
@end

@interface NSClipView : NSView
- (void)scrollToPoint:(NSPoint)newOrigin;
@end

@interface NSScrollView : NSView
@property(nullable, strong) __kindof NSView* documentView;
@property(strong) NSClipView* contentView;
@property BOOL drawsBackground;
@property BOOL hasVerticalScroller;
@property BOOL autohidesScrollers;
@property BOOL automaticallyAdjustsContentInsets;
- (void)reflectScrolledClipView:(NSClipView*)cView;
@end

typedef NS_ENUM(NSUInteger, NSControlSize) {
    NSControlSizeRegular = 0,
    NSControlSizeSmall = 1,
    NSControlSizeMini = 2,
};
typedef NS_ENUM(NSInteger, NSTextAlignment) {
    NSTextAlignmentLeft = 0,
#if defined(__x86_64__)
    NSTextAlignmentRight = 1,
    NSTextAlignmentCenter = 2,
#else // the values of iOS
    NSTextAlignmentCenter = 1,
    NSTextAlignmentRight = 2,
#endif
};

@interface NSControl : NSView
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property NSControlSize controlSize;
@property(copy) NSString* stringValue;
@property(nullable, copy) NSFont* font;
@property NSTextAlignment alignment;
- (BOOL)sendAction:(nullable SEL)action to:(nullable id)target;
@end

@interface NSTextField : NSControl
@property(nullable, copy) NSColor* textColor;
@property(getter=isSelectable) BOOL selectable;
+ (instancetype)wrappingLabelWithString:(NSString*)stringValue;
@end

typedef NS_ENUM(NSUInteger, NSImageScaling) {
    NSImageScaleProportionallyDown = 0,
    NSImageScaleAxesIndependently,
    NSImageScaleNone,
    NSImageScaleProportionallyUpOrDown,
};

@interface NSImageView : NSControl
@property(nullable, strong) NSImage* image;
@property NSImageScaling imageScaling;
@property(nullable, copy) NSColor* contentTintColor;
+ (instancetype)imageViewWithImage:(NSImage*)image;
@end

@interface NSButton : NSControl
@property(copy) NSString* title;
@property(nullable, strong) NSImage* image;
@property(copy) NSString* keyEquivalent;
+ (instancetype)buttonWithTitle:(NSString*)title target:(nullable id)target action:(nullable SEL)action;
@end

@interface NSPopUpButton : NSButton
- (instancetype)initWithFrame:(NSRect)buttonFrame pullsDown:(BOOL)flag;
@property(readonly) NSInteger indexOfSelectedItem;
- (void)addItemWithTitle:(NSString*)title;
- (void)removeAllItems;
- (void)selectItemAtIndex:(NSInteger)index;
- (void)selectItemWithTitle:(NSString*)title;
@property(nullable, readonly, copy) NSString* titleOfSelectedItem;
@end

typedef NSInteger NSControlStateValue;
static const NSControlStateValue NSControlStateValueOff = 0;
static const NSControlStateValue NSControlStateValueOn = 1;

@interface NSSwitch : NSControl
@property NSControlStateValue state;
@end

@interface NSMenuItem : NSObject <NSCopying>
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string
                       action:(nullable SEL)selector
                keyEquivalent:(NSString*)charCode NS_DESIGNATED_INITIALIZER;
@property(nullable, strong) NSMenu* submenu;
@property NSEventModifierFlags keyEquivalentModifierMask;
@property NSControlStateValue state;
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property(nullable, strong) id representedObject;
@end

@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
@end

@interface NSMenu : NSObject <NSCopying>
- (instancetype)initWithTitle:(NSString*)title NS_DESIGNATED_INITIALIZER;
@property(nullable, weak) id<NSMenuDelegate> delegate;
- (void)addItem:(NSMenuItem*)newItem;
- (void)removeAllItems;
- (BOOL)popUpMenuPositioningItem:(nullable NSMenuItem*)item atLocation:(NSPoint)location inView:(nullable NSView*)view;
@end

typedef NSString* NSStatusItemAutosaveName;
static const CGFloat NSVariableStatusItemLength = -1.0;

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property(nullable, strong) NSMenu* menu;
@property(nullable, readonly, strong) NSStatusBarButton* button;
@property(getter=isVisible) BOOL visible;
@property(null_resettable, copy) NSStatusItemAutosaveName autosaveName;
@end

@interface NSStatusBar : NSObject
@property(class, strong, readonly) NSStatusBar* systemStatusBar;
@property(readonly) CGFloat thickness;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

typedef NSInteger NSWindowLevel;
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskBorderless = 0,
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
    NSWindowStyleMaskFullSizeContentView = 1 << 15,
};
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
    NSWindowCollectionBehaviorDefault = 0,
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

typedef NS_ENUM(NSInteger, NSWindowAnimationBehavior) {
    NSWindowAnimationBehaviorDefault = 0,
    NSWindowAnimationBehaviorNone = 2,
};
typedef NS_ENUM(NSInteger, NSWindowTabbingMode) {
    NSWindowTabbingModeAutomatic,
    NSWindowTabbingModePreferred,
    NSWindowTabbingModeDisallowed,
};

@interface NSWindow : NSResponder <NSAnimatablePropertyContainer>
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag NS_DESIGNATED_INITIALIZER;
+ (instancetype)windowWithContentViewController:(NSViewController*)contentViewController;
+ (NSRect)frameRectForContentRect:(NSRect)cRect styleMask:(NSWindowStyleMask)style;
@property NSWindowStyleMask styleMask;
@property(readonly) NSRect frame;
@property(copy) NSString* title;
@property(nullable, strong) __kindof NSView* contentView;
@property(nullable, weak) id<NSWindowDelegate> delegate;
@property(readonly) NSInteger windowNumber;
@property(null_resettable, copy) NSColor* backgroundColor;
@property(nullable, readonly, strong) NSScreen* screen;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(getter=isVisible, readonly) BOOL visible;
@property(getter=isKeyWindow, readonly) BOOL keyWindow;
@property(getter=isOpaque) BOOL opaque;
@property BOOL hidesOnDeactivate;
@property BOOL hasShadow;
@property CGFloat alphaValue;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property NSWindowAnimationBehavior animationBehavior;
@property NSWindowTabbingMode tabbingMode;
- (NSRect)constrainFrameRect:(NSRect)frameRect toScreen:(nullable NSScreen*)screen;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (void)setFrameOrigin:(NSPoint)point;
- (void)setContentSize:(NSSize)size;
- (void)center;
- (NSRect)contentRectForFrameRect:(NSRect)frameRect;
@property(readonly, weak) NSResponder* firstResponder;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
- (void)displayIfNeeded;
- (void)miniaturize:(nullable id)sender;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderFront:(nullable id)sender;
- (void)orderBack:(nullable id)sender;
- (void)orderOut:(nullable id)sender;
- (void)performClose:(nullable id)sender;
- (void)close;
- (void)sendEvent:(NSEvent*)event;
@end

extern "C" {
extern NSNotificationName NSWindowDidChangeScreenNotification;
extern NSNotificationName NSWindowWillCloseNotification;
}

@protocol NSWindowDelegate <NSObject>
@optional
- (void)windowDidBecomeKey:(NSNotification*)notification;
- (void)windowDidMiniaturize:(NSNotification*)notification;
@end

@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@property BOOL becomesKeyOnlyIfNeeded;
@end

@interface NSScreen : NSObject
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(class, readonly, nullable, strong) NSScreen* mainScreen;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@property(readonly) CGFloat backingScaleFactor;
@end

typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) {
    NSApplicationActivateAllWindows = 1 << 0,
};

@interface NSRunningApplication : NSObject
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@property(readonly) pid_t processIdentifier;
@property(nullable, readonly, copy) NSString* localizedName;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
@end

extern "C" {
extern NSNotificationName const NSWorkspaceDidActivateApplicationNotification;
extern NSNotificationName NSWorkspaceDidTerminateApplicationNotification;
extern NSString* const NSWorkspaceApplicationKey;
}

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
@property(nullable, readonly, strong) NSRunningApplication* frontmostApplication;
- (BOOL)openURL:(NSURL*)url;
@end

NS_ASSUME_NONNULL_END
