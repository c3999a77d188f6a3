#pragma once

#include "Platform/EventTap.h"
#include "Platform/Geometry.h"
#include "Platform/Platform.h"
#include "Platform/Scheduler.h"
#include "Platform/StatusBar.h"
#include "Platform/SystemEvent.h"
#include "Platform/WindowServer.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillon::contract {

class WindowUser;

/// A window that belongs to another process than the one under test.
struct OtherWindow {
    WindowID windowID = 0;
    ProcessID pid = 0;
};

/// What the pointer did in a window, as the window's program was told.
struct PointerEvent {
    /// A press, a release, a drag or the wheel.
    SystemEventType type = SystemEventType::scrollWheel;
    /// In points from the window's top left.
    DisplayPoint location;
    EventFlags modifiers = 0;
    // Of a press and a release:
    std::int64_t buttonNumber = 0; ///< as in `SystemEventField::mouseEventButtonNumber`
    std::int64_t clickCount = 0;
    // Of the wheel; positive towards the left and the top:
    double scrollX = 0;
    double scrollY = 0;
};

inline constexpr KeyPress controlCommandP{35, eventFlagMaskControl | eventFlagMaskCommand};

/// A desktop on which a platform is put to the test: the platform itself and what other programs and the user do
/// beside it. Every action is complete, as far as the desktop is concerned, when it returns; what the platform
/// makes of it is awaited with `runUntil`. One is made for each test.
class World {
public:
    World() = default;
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    virtual ~World() = default;

    [[nodiscard]] virtual Platform& platform() = 0;

    /// Serves the platform's events until the condition holds or the bound has passed; the condition's last value.
    virtual bool runUntil(const std::function<bool()>& condition, Seconds bound) = 0;

    /// Starts a program with one ordinary window; `bounds` is where its content goes.
    virtual OtherWindow openWindow(const std::string& title, const DisplayRect& bounds) = 0;
    /// A further window of a program that `openWindow` started.
    virtual OtherWindow openSecondWindow(const OtherWindow& first, const std::string& title,
                                         const DisplayRect& bounds) = 0;
    /// Starts a program whose window has an area with a vertical scroll bar, which is at the top; none when there is no
    /// such program on this desktop.
    virtual std::optional<OtherWindow> openScrollingWindow() = 0;
    /// The user switches to the window.
    virtual void activate(const OtherWindow& window) = 0;
    virtual void move(const OtherWindow& window, const DisplayRect& bounds) = 0;
    virtual void minimise(const OtherWindow& window) = 0;
    /// The program draws something new in the window.
    virtual void draw(const OtherWindow& window) = 0;
    virtual void close(const OtherWindow& window) = 0;
    /// The program ends without a farewell.
    virtual void kill(const OtherWindow& window) = 0;
    /// The user presses and releases the left button at a point of the panels' coordinates.
    virtual void click(const ScreenPoint& point) = 0;
    /// The user presses and releases a key while holding the modifiers.
    virtual void pressKey(const KeyPress& press) = 0;
    /// How many presses of the key the window has got. Not while a key is pressed.
    [[nodiscard]] virtual std::size_t keyPressesOf(const OtherWindow& window, std::uint16_t keyCode) = 0;
    /// What the program of a window that `openWindow` opened was told of the pointer there, in that order.
    [[nodiscard]] virtual std::vector<PointerEvent> pointerEventsOf(const OtherWindow& window) = 0;
    /// Another program claims the key press for itself; false when a program cannot do that on this desktop.
    [[nodiscard]] virtual bool claim(const KeyPress& press) = 0;
    virtual void giveBack(const KeyPress& press) = 0;
    /// The user changes to a keyboard without the P key, or back to one that has it; false when this desktop has no
    /// such keyboards. (The simulation takes away `controlCommandP` only.)
    [[nodiscard]] virtual bool changeKeyboard(bool hasKeyP) = 0;
    /// The user clicks on the status item, and its menu is open; false when a program cannot do that on this desktop.
    [[nodiscard]] virtual bool openStatusMenu(StatusItem& item) = 0;
    /// The user chooses the one item of that title in the open menu.
    virtual void chooseMenuItem(const std::string& title) = 0;
    /// The user closes the open menu without choosing anything.
    virtual void dismissMenu() = 0;
    /// Uses the windows of this process; null when a program cannot do that on this desktop. Lives as long as the
    /// world.
    [[nodiscard]] virtual WindowUser* windowUser() = 0;
    /// The user moves the pointer to a point of the panels' coordinates, which lies inside a pixel.
    virtual void movePointer(const ScreenPoint& point) = 0;
    /// A Dock takes that height away at the bottom of the primary screen; false when a program cannot do that on this
    /// desktop.
    [[nodiscard]] virtual bool showDock(double height) = 0;
    /// Another program changes a setting; false when none can on this desktop.
    [[nodiscard]] virtual bool writeDefault(const std::string& key, const std::string& value) = 0;
    /// Whether this process can be a login item.
    [[nodiscard]] virtual bool canLaunchAtLogin() = 0;
    /// The user switches the login item off in the system's own settings; false when a program cannot do that on this
    /// desktop.
    [[nodiscard]] virtual bool switchLoginItemOff() = 0;
    /// The user gives or takes away the Accessibility permission; false when a program cannot do that on this desktop.
    [[nodiscard]] virtual bool setTrusted(bool isTrusted) = 0;
    /// Changes the number or the size of the screens; false when a program cannot do that on this desktop.
    [[nodiscard]] virtual bool changeScreens() = 0;

    /// What a file holds, and its permission bits; none when there is no such file. Directories have bits only.
    virtual std::optional<std::string> fileContent(const std::string& path) = 0;
    virtual std::optional<unsigned> permissions(const std::string& path) = 0;
    virtual void makeSymbolicLink(const std::string& target, const std::string& path) = 0;
};

/// The world of the platform that the suite was built for.
std::unique_ptr<World> makeWorld();

} // namespace quillon::contract
