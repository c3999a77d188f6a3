// Mistakes that the type check has to report, each with what is said of it.

#include "Platform/macOS/LayerContents.h"

#import <AppKit/AppKit.h>
#include <ApplicationServices/ApplicationServices.h>
#import <ScreenCaptureKit/ScreenCaptureKit.h>
#import <ServiceManagement/ServiceManagement.h>

void selectors(NSView* view, SCStream* stream, NSDistributedNotificationCenter* center) {
    [view layOutSubtreeIfNeeded];      // expected-error {{no visible @interface for 'NSView' declares the selector}}
    [stream startCapture];             // expected-error {{no visible @interface for 'SCStream' declares the selector}}
    [NSColor colorWithWhite:0 alfa:1]; // expected-error {{no known class method for selector 'colorWithWhite:alfa:'}}
    // expected-error@+1 {{no visible @interface for 'NSDistributedNotificationCenter' declares the selector}}
    [center addObserver:view selector:@selector(layout) name:nil suspensionBehavior:4];
}

// AppKit's windows perform it, but no header of theirs says so.
SEL actions() {
    return @selector(undo:); // expected-error {{undeclared selector 'undo:'}}
}

void properties(NSWindow* window, NSScreen* screen, NSSwitch* toggle, SMAppService* service) {
    window.floatingPanel = YES; // expected-error {{property 'floatingPanel' not found on object of type 'NSWindow *'}}
    screen.frame = NSMakeRect(0, 0, 1, 1); // expected-error {{assignment to readonly property}}
    toggle.on = YES;                       // expected-error {{property 'on' not found on object of type 'NSSwitch *'}}
    service.status = SMAppServiceStatusEnabled; // expected-error {{assignment to readonly property}}
}

void types(SCStreamConfiguration* configuration, NSString* text) {
    configuration.minimumFrameInterval = 0.5; // expected-error {{no viable conversion from 'double' to 'CMTime'}}
    NSNumber* const number = text;            // expected-error {{cannot initialize a variable of type 'NSNumber *}}
    (void)number;
}

void layout(NSView* view) {
    // expected-error@+1 {{cannot initialize a parameter of type 'NSLayoutAnchor<NSLayoutXAxisAnchor *> *}}
    [view.leadingAnchor constraintEqualToAnchor:view.topAnchor].active = YES;
    [view.topAnchor constraintEqualToAnchor:view.bottomAnchor]; // expected-error {{ignoring return value}}
}

void constants(NSWindow* window) {
    window.level = NSNormalLevel; // expected-error {{use of undeclared identifier 'NSNormalLevel'}}
}

void nothingWhereSomethingIsNeeded(NSView* view) {
    [view addSubview:nil]; // expected-error {{null passed to a callee that requires a non-null argument}}
    // expected-error@+1 {{null passed to a callee that requires a non-null argument}}
    (void)[NSWindow windowWithContentViewController:nil];
}

void interfacesOfLaterSystems(SCStreamConfiguration* configuration) {
    // expected-error@+1 {{'setShowMouseClicks:' is only available on macOS 15.0 or newer}}
    configuration.showMouseClicks = NO;
}

void callbacks(CGEventRef (*callback)(CGEventTapProxy, CGEventType, CGEventRef)) {
    // expected-error@+1 {{no matching function for call to 'CGEventTapCreate'}}
    CGEventTapCreate(kCGAnnotatedSessionEventTap, kCGTailAppendEventTap, kCGEventTapOptionDefault, 1, callback,
                     nullptr);
    // expected-error@+2 {{cannot initialize a parameter of type 'NSEvent * _Nullable (^}}
    [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                          handler:^(NSEvent*){
                                          }];
}

void ownership(AXUIElementRef element) {
    // expected-error@+1 {{requires a bridged cast}}
    const id object = static_cast<id>(element);
    (void)object;
}
