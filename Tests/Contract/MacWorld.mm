#include "MacWindowUser.h"
#include "RealFilesWorld.h"

#include "Platform/Application.h"
#include "Platform/FileSystem.h"
#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/MacPlatform.h"
#include "Platform/macOS/Retained.h"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fmt/format.h>
#include <poll.h>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <unistd.h>
#include <vector>

// The suite takes over the desktop of the user who runs it, in a session with a screen: windows open and close, the
// pointer moves and clicks, keys are pressed, the screen's size changes for a moment. macOS asks the user for two
// permissions, which belong to the program that the tests are started from (the terminal) and count from its next
// start:
//
//   - Accessibility, to switch between windows, to click, to press keys and to read other programs' windows;
//   - Screen Recording ("Screen & System Audio Recording" from macOS 15 on), for the titles and pictures of windows.
//
// Both are switched on in System Settings under Privacy & Security. Without them the tests that need them fail and
// name the one that is missing. So do those of the keyboard focus without "Keyboard navigation", which is switched on
// there under Keyboard.

namespace quillon::contract {
namespace {

using macos::Retained;

/// How long a step of a test may take before it counts as failed. Far above what it takes on an idle machine.
constexpr Seconds stepBound{10};

/// A world that does not do what it is told cannot test anything.
void require(bool done, const std::string& problem) {
    if (!done) {
        throw std::runtime_error(problem);
    }
}

void requirePermission(bool granted, const char* name) {
    require(granted,
            fmt::format("this test needs the permission \"{0}\": in System Settings, under Privacy & Security, "
                        "{0}, allow the program that the tests are started from, and start it anew",
                        name));
}

void requireControlOfOtherPrograms() {
    requirePermission(AXIsProcessTrusted() && CGPreflightPostEventAccess(), "Accessibility");
}

/// Another program, MacSample, which is told what to do; its source says how.
class SampleProgram {
public:
    SampleProgram() {
        task.executableURL = [NSURL fileURLWithPath:@MAC_SAMPLE_PROGRAM];
        task.standardInput = input;
        task.standardOutput = output;
        NSError* error = nil;
        if (![task launchAndReturnError:&error]) {
            throw std::runtime_error("the sample program cannot be started: " +
                                     macos::toString(error.localizedDescription));
        }
    }
    /// It ends with its standard input.
    ~SampleProgram() {
        [input.fileHandleForWriting closeAndReturnError:nil];
        waitForEnd();
    }
    SampleProgram(const SampleProgram&) = delete;
    SampleProgram& operator=(const SampleProgram&) = delete;

    [[nodiscard]] ProcessID pid() const { return task.processIdentifier; }

    void send(const std::string& command) {
        const std::string line = command + '\n';
        require(::write(input.fileHandleForWriting.fileDescriptor, line.data(), line.size()) ==
                    static_cast<ssize_t>(line.size()),
                "the sample program has ended before it was told: " + command);
    }
    /// The number that the program answers with, once the command is carried out.
    std::uint32_t answer() { return static_cast<std::uint32_t>(std::stoul(answerLine())); }
    std::string answerLine() {
        std::string line;
        char byte = 0;
        while (outputIsReadable() && ::read(outputFile(), &byte, 1) == 1) {
            if (byte == '\n') {
                return line;
            }
            line += byte;
        }
        throw std::runtime_error("the sample program did not do what it was told");
    }
    std::uint32_t obey(const std::string& command) {
        send(command);
        return answer();
    }

    void kill() {
        ::kill(pid(), SIGKILL);
        require(waitForEnd(), "the sample program cannot be killed");
    }

private:
    [[nodiscard]] int outputFile() const { return output.fileHandleForReading.fileDescriptor; }

    /// True at the end of the output, too.
    [[nodiscard]] bool outputIsReadable() const {
        pollfd source{outputFile(), POLLIN, 0};
        return poll(&source, 1,
                    static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(stepBound).count())) > 0;
    }

    /// The output ends with the program, since no other process holds it.
    bool waitForEnd() {
        char byte = 0;
        while (outputIsReadable()) {
            if (::read(outputFile(), &byte, 1) != 1) {
                return true;
            }
        }
        return false;
    }

    NSTask* task = [[NSTask alloc] init];
    NSPipe* input = [NSPipe pipe];
    NSPipe* output = [NSPipe pipe];
};

/// Serves all tests of the process.
Platform& sharedPlatform() {
    static const std::unique_ptr<Platform> platform = [] {
        auto made = makeMacPlatform();
        made->sharedApplication()->setActivationPolicy(ActivationPolicy::accessory);
        [NSApplication.sharedApplication finishLaunching];
        return made;
    }();
    return *platform;
}

/// What AppKit's own loop does with one event; without one it comes back after a few milliseconds.
void serveNextEvent() {
    @autoreleasepool {
        NSApplication* const application = NSApplication.sharedApplication;
        NSEvent* const event = [application nextEventMatchingMask:NSEventMaskAny
                                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.005]
                                                           inMode:NSDefaultRunLoopMode
                                                          dequeue:YES];
        if (event != nil) {
            [application sendEvent:event];
        }
        [application updateWindows];
    }
}

bool isOnScreen(WindowID number) {
    NSArray<NSDictionary*>* const windows =
        CFBridgingRelease(CGWindowListCopyWindowInfo(kCGWindowListOptionOnScreenOnly, 0));
    for (NSDictionary* window in windows) {
        NSNumber* const listed = window[(__bridge NSString*)kCGWindowNumber];
        if (listed.longLongValue == number) {
            return true;
        }
    }
    return false;
}

/// As a user does. A program that asks to become active by itself may be refused.
void makeFrontmost(ProcessID pid) {
    const auto application = Retained<AXUIElementRef>::adopt(AXUIElementCreateApplication(pid));
    require(AXUIElementSetAttributeValue(application.get(), kAXFrontmostAttribute, kCFBooleanTrue) == kAXErrorSuccess,
            "the sample program cannot be brought to the front");
}

/// The primary screen comes first; its top left is the origin of the displays' coordinates.
CGPoint toDisplay(const ScreenPoint& point) {
    return {point.x, NSScreen.screens.firstObject.frame.size.height - point.y};
}

std::string text(const DisplayRect& rect) {
    return fmt::format("{} {} {} {}", rect.minX(), rect.minY(), rect.size.width, rect.size.height);
}

/// The platform on the user's desktop, in this process; the other programs are real ones. Main thread.
class MacWorld final : public RealFilesWorld {
public:
    MacWorld() {
        // A sample program that has crashed is to fail the test, not to end it.
        std::signal(SIGPIPE, SIG_IGN);
        require(!std::filesystem::exists(testDirectory),
                testDirectory + " exists, and the tests would remove it: move it away");
    }
    ~MacWorld() override {
        std::error_code error;
        std::filesystem::remove_all(testDirectory, error);
        if (screensAreChanged) {
            CGRestorePermanentDisplayConfiguration();
        }
    }

    [[nodiscard]] Platform& platform() override { return macPlatform; }

    bool runUntil(const std::function<bool()>& condition, Seconds bound) override {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(bound);
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= deadline) {
                return false;
            }
            serveNextEvent();
        }
        return true;
    }

    OtherWindow openWindow(const std::string& title, const DisplayRect& bounds) override {
        return open(startSample(), "open", title, bounds);
    }
    OtherWindow openSecondWindow(const OtherWindow& first, const std::string& title,
                                 const DisplayRect& bounds) override {
        return open(sampleOf(first), "open", title, bounds);
    }
    std::optional<OtherWindow> openScrollingWindow() override {
        return open(startSample(), "scroll", "Lista", {{100, 100}, {400, 300}});
    }
    void activate(const OtherWindow& window) override {
        auto& sample = sampleOf(window);
        sample.send(fmt::format("activate {}", window.windowID));
        makeFrontmost(window.pid);
        sample.answer();
    }
    void move(const OtherWindow& window, const DisplayRect& bounds) override {
        sampleOf(window).obey(fmt::format("move {} {}", window.windowID, text(bounds)));
    }
    void minimise(const OtherWindow& window) override {
        sampleOf(window).obey(fmt::format("minimise {}", window.windowID));
    }
    void draw(const OtherWindow& window) override { sampleOf(window).obey(fmt::format("draw {}", window.windowID)); }
    void close(const OtherWindow& window) override { sampleOf(window).obey(fmt::format("close {}", window.windowID)); }
    void kill(const OtherWindow& window) override { sampleOf(window).kill(); }

    void click(const ScreenPoint& point) override {
        requireControlOfOtherPrograms();
        const CGPoint place = toDisplay(point);
        for (const CGEventType type : {kCGEventMouseMoved, kCGEventLeftMouseDown, kCGEventLeftMouseUp}) {
            const auto event =
                Retained<CGEventRef>::adopt(CGEventCreateMouseEvent(nullptr, type, place, kCGMouseButtonLeft));
            CGEventPost(kCGHIDEventTap, event.get());
        }
    }

    void movePointer(const ScreenPoint& point) override {
        require(CGWarpMouseCursorPosition(toDisplay(point)) == kCGErrorSuccess, "the pointer cannot be moved");
    }

    void pressKey(const KeyPress& press) override {
        requireControlOfOtherPrograms();
        for (const bool isDown : {true, false}) {
            const auto event = Retained<CGEventRef>::adopt(CGEventCreateKeyboardEvent(nullptr, press.keyCode, isDown));
            CGEventSetFlags(event.get(), press.modifiers);
            CGEventPost(kCGHIDEventTap, event.get());
        }
    }
    std::size_t keyPressesOf(const OtherWindow& window, std::uint16_t keyCode) override {
        return sampleOf(window).obey(fmt::format("keys {} {}", window.windowID, keyCode));
    }
    std::vector<PointerEvent> pointerEventsOf(const OtherWindow& window) override {
        auto& sample = sampleOf(window);
        std::vector<PointerEvent> received(sample.obey(fmt::format("pointer {}", window.windowID)));
        for (auto& event : received) {
            std::istringstream line(sample.answerLine());
            std::uint32_t type = 0;
            line >> type >> event.location.x >> event.location.y >> event.modifiers >> event.buttonNumber >>
                event.clickCount >> event.scrollX >> event.scrollY;
            event.type = SystemEventType{type}; // AppKit's numbers are the same
        }
        return received;
    }
    /// Taps do not claim presses, so that nobody can claim one before them.
    bool claim(const KeyPress& /*press*/) override { return false; }
    void giveBack(const KeyPress& /*press*/) override { throw std::logic_error("nothing was claimed"); }
    /// Key codes are the same on every keyboard.
    bool changeKeyboard(bool /*hasKeyP*/) override { return false; }

    /// An open menu keeps the main thread, on which the test runs, until it closes.
    bool openStatusMenu(StatusItem& /*item*/) override { return false; }
    void chooseMenuItem(const std::string& /*title*/) override { throw std::logic_error("no menu is open"); }
    void dismissMenu() override { throw std::logic_error("no menu is open"); }

    WindowUser* windowUser() override { return &user; }

    bool writeDefault(const std::string& key, const std::string& value) override {
        NSTask* const task = [[NSTask alloc] init];
        task.executableURL = [NSURL fileURLWithPath:@"/usr/bin/defaults"];
        // A program that is no bundle has its settings under its name.
        task.arguments = @[
            @"write", NSProcessInfo.processInfo.processName, macos::toNSString(key), @"-string",
            macos::toNSString(value)
        ];
        require([task launchAndReturnError:nil], "there is no program that changes settings");
        [task waitUntilExit];
        require(task.terminationStatus == 0, "a setting cannot be changed");
        return true;
    }
    /// The user's own Dock and permissions are left alone.
    bool showDock(double /*height*/) override { return false; }
    /// The service takes bundles only.
    bool canLaunchAtLogin() override { return false; }
    bool switchLoginItemOff() override { return false; }
    bool setTrusted(bool /*isTrusted*/) override { return false; }

    /// Another size of the main display, until the world or at the latest the process ends; there is none on a display
    /// with one size only.
    bool changeScreens() override {
        const CGDirectDisplayID display = CGMainDisplayID();
        const CGSize before = CGDisplayBounds(display).size;
        NSArray* const modes = CFBridgingRelease(CGDisplayCopyAllDisplayModes(display, nullptr));
        for (id entry in modes) {
            const auto mode = (__bridge CGDisplayModeRef)entry;
            const bool differs = static_cast<double>(CGDisplayModeGetWidth(mode)) != before.width ||
                                 static_cast<double>(CGDisplayModeGetHeight(mode)) != before.height;
            if (differs && CGDisplayModeIsUsableForDesktopGUI(mode) &&
                CGDisplaySetDisplayMode(display, mode, nullptr) == kCGErrorSuccess) {
                screensAreChanged = true;
                return true;
            }
        }
        return false;
    }

private:
    SampleProgram& startSample() {
        requireControlOfOtherPrograms();
        requirePermission(CGPreflightScreenCaptureAccess(), "Screen Recording");
        samples.push_back(std::make_unique<SampleProgram>());
        return *samples.back();
    }

    OtherWindow open(SampleProgram& sample, std::string_view command, const std::string& title,
                     const DisplayRect& bounds) {
        const OtherWindow window{sample.obey(fmt::format("{} {} {}", command, text(bounds), title)), sample.pid()};
        activate(window);
        require(runUntil([&] { return isOnScreen(window.windowID); }, stepBound),
                "a window of the sample program does not come on screen");
        return window;
    }

    SampleProgram& sampleOf(const OtherWindow& window) {
        for (const auto& sample : samples) {
            if (sample->pid() == window.pid) {
                return *sample;
            }
        }
        throw std::logic_error("no sample program has that window");
    }

    Platform& macPlatform = sharedPlatform();
    /// What the tests write lies below it.
    const std::string testDirectory = macPlatform.fileSystem().userLibraryDirectory().value() + "/Contract";
    std::vector<std::unique_ptr<SampleProgram>> samples;
    MacWindowUser user;
    bool screensAreChanged = false;
};

} // namespace

std::unique_ptr<World> makeWorld() {
    return std::make_unique<MacWorld>();
}

} // namespace quillon::contract
