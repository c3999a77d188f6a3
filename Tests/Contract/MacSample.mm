// A program with ordinary windows for the contract suite on a Mac. It is told on its standard input what to do, one
// command a line, and answers with a number on a line of its own when it is done, the window's unless stated otherwise:
//
//     open X Y WIDTH HEIGHT TITLE       a new window, the title up to the end of the line
//     scroll X Y WIDTH HEIGHT TITLE     the same, filled by an area with a vertical scroll bar, which is at the top
//     move NUMBER X Y WIDTH HEIGHT
//     activate NUMBER                   done when the window is the key window: someone has to make this program active
//     minimise NUMBER
//     draw NUMBER                       a content that the window has not shown before
//     close NUMBER
//     keys NUMBER CODE                  answers how often the key was pressed in the window
//     pointer NUMBER                    answers how many events of the mouse and the wheel the window got, and then one
//                                       line for each: its type, place, modifiers, button, click count and deltas
//
// Places are in the window server's coordinates. The program ends with its standard input.

#import <AppKit/AppKit.h>
#import <QuartzCore/QuartzCore.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

/// A window of which nothing but its maker decides where it lies.
@interface SampleWindow : NSWindow
@end

@implementation SampleWindow

- (NSRect)constrainFrameRect:(NSRect)frameRect toScreen:(NSScreen*)screen {
    // AppKit would move a window out from under the menu bar.
    return frameRect;
}

@end

/// One colour all over, another one for every content.
@interface SampleView : NSView
@property(nonatomic) unsigned content;
@end

@implementation SampleView

- (void)drawRect:(NSRect)dirtyRect {
    // Neighbouring contents lie far apart on the colour circle and never repeat: the step is the golden ratio.
    const double turns = self.content * 0.6180339887;
    [[NSColor colorWithHue:turns - static_cast<unsigned>(turns) saturation:0.8 brightness:0.9 alpha:1] setFill];
    NSRectFill(self.bounds);
}

@end

/// What a scroll area shows a part of, the upper one first.
@interface SampleDocument : NSView
@end

@implementation SampleDocument

- (BOOL)isFlipped {
    return YES;
}

@end

namespace {

/// Tells the other side that a command is done.
void answer(NSInteger number) {
    std::cout << number << std::endl;
}

/// Type, x, y, modifiers, button number, click count, horizontal and vertical delta, the place from the window's top
/// left.
std::string describe(NSEvent* event, NSWindow* window) {
    const NSPoint place = event.locationInWindow;
    const bool isScroll = event.type == NSEventTypeScrollWheel;
    const bool isDrag = event.type == NSEventTypeLeftMouseDragged;
    std::ostringstream line;
    line << event.type << ' ' << place.x << ' ' << window.frame.size.height - place.y << ' '
         << (event.modifierFlags & (NSEventModifierFlagShift | NSEventModifierFlagControl | NSEventModifierFlagOption |
                                    NSEventModifierFlagCommand))
         << ' ';
    // AppKit throws when it is asked for what the event's type does not have.
    line << (isScroll || isDrag ? 0 : event.buttonNumber) << ' ' << (isScroll || isDrag ? 0 : event.clickCount) << ' '
         << (isScroll ? event.scrollingDeltaX : 0) << ' ' << (isScroll ? event.scrollingDeltaY : 0);
    return line.str();
}

NSRect readPlace(std::istream& arguments) {
    NSRect place{};
    arguments >> place.origin.x >> place.origin.y >> place.size.width >> place.size.height;
    // AppKit's origin is the bottom left of the primary screen, which comes first.
    place.origin.y = NSScreen.screens.firstObject.frame.size.height - place.origin.y - place.size.height;
    return place;
}

} // namespace

@interface SampleProgram : NSObject <NSWindowDelegate>
- (void)obey:(const std::string&)line;
@end

@implementation SampleProgram {
    NSMutableDictionary<NSNumber*, SampleWindow*>* windows;
    /// The window that is to become the key window, else nil.
    SampleWindow* awaitedKeyWindow;
    /// By the window's number and the key's code.
    std::map<std::pair<NSInteger, unsigned>, NSInteger> keyPresses;
    /// By the window's number.
    std::map<NSInteger, std::vector<std::string>> pointerEvents;
}

- (instancetype)init {
    self = [super init];
    windows = [NSMutableDictionary dictionary];
    // Before menus look for their key equivalents, and not to be heard: AppKit beeps at a key that nobody wants.
    [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                          handler:^NSEvent*(NSEvent* event) {
                                              ++self->keyPresses[{event.windowNumber, event.keyCode}];
                                              return nil;
                                          }];
    [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskLeftMouseDown | NSEventMaskLeftMouseUp |
                                                  NSEventMaskRightMouseDown | NSEventMaskRightMouseUp |
                                                  NSEventMaskOtherMouseDown | NSEventMaskOtherMouseUp |
                                                  NSEventMaskLeftMouseDragged | NSEventMaskScrollWheel
                                          handler:^NSEvent*(NSEvent* event) {
                                              self->pointerEvents[event.windowNumber].push_back(
                                                  describe(event, self->windows[@(event.windowNumber)]));
                                              return event;
                                          }];
    return self;
}

- (void)obey:(const std::string&)line {
    std::istringstream arguments(line);
    std::string command;
    arguments >> command;
    if (command == "open" || command == "scroll") {
        const NSRect place = readPlace(arguments);
        std::string title;
        std::getline(arguments >> std::ws, title);
        SampleWindow* const window = [self openAt:place title:title];
        if (command == "scroll") {
            [self addScrollAreaTo:window];
        }
        answer(window.windowNumber);
        return;
    }
    long number = 0;
    arguments >> number;
    SampleWindow* const window = windows[@(number)];
    if (window == nil) {
        std::cerr << "there is no such window: " << line << std::endl;
        std::exit(EXIT_FAILURE);
    }
    if (command == "move") {
        [window setFrame:readPlace(arguments) display:YES];
        answer(window.windowNumber);
    } else if (command == "activate") {
        [self activate:window];
    } else if (command == "minimise") {
        [window miniaturize:nil];
    } else if (command == "draw") {
        [self drawIn:window];
    } else if (command == "close") {
        [self close:window];
    } else if (command == "keys") {
        unsigned code = 0;
        arguments >> code;
        answer(keyPresses[{number, code}]);
    } else if (command == "pointer") {
        const auto& events = pointerEvents[number];
        answer(static_cast<NSInteger>(events.size()));
        for (const auto& event : events) {
            std::cout << event << std::endl;
        }
    } else {
        std::cerr << "there is no such command: " << line << std::endl;
        std::exit(EXIT_FAILURE);
    }
}

- (SampleWindow*)openAt:(NSRect)place title:(const std::string&)title {
    // The content reaches below the title bar, so that the content's place is the window's.
    SampleWindow* const window = [[SampleWindow alloc]
        initWithContentRect:place
                  styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable | NSWindowStyleMaskMiniaturizable |
                            NSWindowStyleMaskResizable | NSWindowStyleMaskFullSizeContentView
                    backing:NSBackingStoreBuffered
                      defer:NO];
    window.releasedWhenClosed = NO;
    window.animationBehavior = NSWindowAnimationBehaviorNone;
    window.tabbingMode = NSWindowTabbingModeDisallowed;
    window.delegate = self;
    window.title = [NSString stringWithUTF8String:title.c_str()];
    window.contentView = [[SampleView alloc] initWithFrame:NSMakeRect(0, 0, place.size.width, place.size.height)];
    [window setFrame:place display:YES];
    [window orderFront:nil];
    windows[@(window.windowNumber)] = window;
    return window;
}

- (void)addScrollAreaTo:(SampleWindow*)window {
    NSView* const content = window.contentView;
    NSScrollView* const area = [[NSScrollView alloc] initWithFrame:content.bounds];
    // Room for the title bar above the document would be scrolled, too.
    area.automaticallyAdjustsContentInsets = NO;
    area.hasVerticalScroller = YES;
    NSRect documentFrame = content.bounds;
    documentFrame.size.height *= 4;
    area.documentView = [[SampleDocument alloc] initWithFrame:documentFrame];
    [content addSubview:area];
}

- (void)activate:(SampleWindow*)window {
    [window makeKeyAndOrderFront:nil];
    if (window.keyWindow) {
        answer(window.windowNumber);
    } else {
        awaitedKeyWindow = window;
    }
}

- (void)drawIn:(SampleWindow*)window {
    SampleView* const view = window.contentView;
    ++view.content;
    view.needsDisplay = YES;
    [window displayIfNeeded];
    [CATransaction flush];
    answer(window.windowNumber);
}

- (void)close:(SampleWindow*)window {
    const NSInteger number = window.windowNumber;
    [window close];
    [windows removeObjectForKey:@(number)];
    // The window server keeps the window as long as anyone here does, as this command's callers still do.
    dispatch_async(dispatch_get_main_queue(), ^{
        answer(number);
    });
}

- (void)windowDidBecomeKey:(NSNotification*)notification {
    if (awaitedKeyWindow != nil && notification.object == awaitedKeyWindow) {
        answer(awaitedKeyWindow.windowNumber);
        awaitedKeyWindow = nil;
    }
}

- (void)windowDidMiniaturize:(NSNotification*)notification {
    SampleWindow* const window = notification.object;
    answer(window.windowNumber);
}

@end

namespace {

/// Hands the commands over to the main thread, in their order.
void readCommands(SampleProgram* program) {
    std::string line;
    while (std::getline(std::cin, line)) {
        const std::string command = line;
        dispatch_async(dispatch_get_main_queue(), ^{
            // A closed window must not live on in a pool that is emptied later.
            @autoreleasepool {
                [program obey:command];
            }
        });
    }
    dispatch_async(dispatch_get_main_queue(), ^{
        std::exit(EXIT_SUCCESS);
    });
}

} // namespace

int main() {
    @autoreleasepool {
        NSApplication* const application = NSApplication.sharedApplication;
        [application setActivationPolicy:NSApplicationActivationPolicyRegular];
        SampleProgram* const program = [[SampleProgram alloc] init];
        std::thread(readCommands, program).detach();
        [application run];
    }
}
