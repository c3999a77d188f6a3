#include "RealFilesWorld.h"

#include "Desktop.h"
#include "EvdevKeys.h"
#include "X11WindowUser.h"
#include "XClient.h"

#include "Platform/Scheduler.h"
#include "Platform/X11/ClickCounter.h"
#include "Platform/X11/PointerButtons.h"
#include "Platform/X11/QtApplication.h"
#include "Platform/X11/X11Platform.h"

#include <QApplication>
#include <QEventLoop>
#include <QMenu>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace quillon::contract {
namespace {

using e2e::Program;
using e2e::Rect;

Rect pixels(const DisplayRect& rect) {
    return {static_cast<int>(rect.minX()), static_cast<int>(rect.minY()), static_cast<int>(rect.size.width),
            static_cast<int>(rect.size.height)};
}

struct ModifierKey {
    EventFlags flag;
    std::uint8_t key;
    /// The bit that the test server's keyboard has for it.
    std::uint16_t bit;
};
constexpr std::array<ModifierKey, 4> modifierKeys{{
    {eventFlagMaskShift, e2e::shiftKey, XCB_MOD_MASK_SHIFT},
    {eventFlagMaskControl, e2e::controlKey, XCB_MOD_MASK_CONTROL},
    {eventFlagMaskAlternate, e2e::altKey, XCB_MOD_MASK_1},
    {eventFlagMaskCommand, e2e::superKey, XCB_MOD_MASK_4},
}};

std::uint16_t modifierBits(EventFlags flags) {
    std::uint16_t bits = 0;
    for (const auto& modifier : modifierKeys) {
        bits |= (flags & modifier.flag) != 0 ? modifier.bit : 0;
    }
    return bits;
}

/// One line of what the sample program writes down; none for what is no action of the pointer.
struct InputLine {
    std::string action;
    xcb_button_t button = 0; ///< of a press and a release
    int x = 0;
    int y = 0;
    std::uint16_t state = 0;
};

std::optional<InputLine> parseInput(const std::string& line) {
    InputLine input;
    std::istringstream words(line);
    std::string receiver;
    words >> receiver >> input.action;
    if (input.action == "press" || input.action == "release") {
        int button = 0;
        words >> button;
        input.button = static_cast<xcb_button_t>(button);
    } else if (input.action != "move") {
        return std::nullopt;
    }
    std::string preposition;
    std::string stateName;
    char comma = 0;
    std::string state;
    words >> preposition >> input.x >> comma >> input.y >> stateName >> state;
    input.state = static_cast<std::uint16_t>(std::stoul(state, nullptr, 16));
    return input;
}

EventFlags modifiersIn(std::uint16_t state) {
    EventFlags flags = 0;
    for (const auto& modifier : modifierKeys) {
        flags |= (state & modifier.bit) != 0 ? modifier.flag : 0;
    }
    return flags;
}

/// Reads the pointer's actions as X programs do: they count clicks by themselves, and the wheel's buttons are no
/// buttons to them. The sample program tells no times, so that presses in one place count as following at once.
class PointerReader {
public:
    /// None for what makes no event of its own: a move without a button, the wheel's button coming up.
    [[nodiscard]] std::optional<PointerEvent> read(const InputLine& input) {
        PointerEvent event{.location = {static_cast<double>(input.x), static_cast<double>(input.y)},
                           .modifiers = modifiersIn(input.state)};
        if (input.action == "move") {
            if ((input.state & XCB_BUTTON_MASK_1) == 0) {
                return std::nullopt;
            }
            event.type = SystemEventType::leftMouseDragged;
            clicks.drag(input.x, input.y);
            return event;
        }
        const bool isPress = input.action == "press";
        if (x11::isWheel(input.button)) {
            event.scrollY = (input.button == x11::wheelUp) - (input.button == x11::wheelDown);
            event.scrollX = (input.button == x11::wheelLeft) - (input.button == x11::wheelRight);
            return isPress ? std::optional(event) : std::nullopt;
        }
        event.buttonNumber = x11::buttonNumber(input.button);
        event.clickCount = isPress ? clicks.press(input.button, 0, input.x, input.y, {}) : clicks.release(input.button);
        event.type = typeOf(event.buttonNumber, isPress);
        return event;
    }

private:
    static SystemEventType typeOf(std::int64_t number, bool isPress) {
        switch (number) {
        case 0:
            return isPress ? SystemEventType::leftMouseDown : SystemEventType::leftMouseUp;
        case 1:
            return isPress ? SystemEventType::rightMouseDown : SystemEventType::rightMouseUp;
        default:
            return isPress ? SystemEventType::otherMouseDown : SystemEventType::otherMouseUp;
        }
    }

    x11::ClickCounter clicks;
};

/// The platform on a real X server, in this process; the other programs are real ones.
class X11World final : public RealFilesWorld {
public:
    X11World() {
        // The platform looks for its display and its files where the environment says.
        for (const auto& [name, value] : desktop.environment()) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        auto opened = x11::Connection::open();
        if (const auto* problem = std::get_if<std::string>(&opened)) {
            throw std::runtime_error(*problem);
        }
        auto& connection = std::get<std::unique_ptr<x11::Connection>>(opened);
        application = x11::makeApplication(connection->scale());
        x11Platform = std::make_unique<x11::X11Platform>(std::move(connection));
    }

    [[nodiscard]] Platform& platform() override { return *x11Platform; }

    bool runUntil(const std::function<bool()>& condition, Seconds bound) override {
        const auto deadline =
            std::chrono::steady_clock::now() + std::chrono::duration_cast<std::chrono::steady_clock::duration>(bound);
        // The condition may depend on the server alone, so it is looked at again every few milliseconds.
        const auto looks = x11Platform->scheduler().scheduleRepeatingTimer(Seconds(0.005), [] {});
        while (!condition()) {
            if (std::chrono::steady_clock::now() >= deadline) {
                return condition();
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }

    OtherWindow openWindow(const std::string& title, const DisplayRect& bounds) override {
        // A second window waits, not shown yet, for `openSecondWindow`.
        const auto inputFile = desktop.directory() / ("input-" + std::to_string(programs.size()));
        programs.push_back(
            desktop.start({SAMPLE_WINDOW_PROGRAM, "--windows", "2", "--title", title, "--input", inputFile.string()}));
        inputFiles[programs.back()->pid()] = inputFile;
        auto& program = *programs.back();
        std::vector<e2e::Window> windows;
        require(client.waitUntil([&] {
            windows = client.managedWindowsOf(program.pid());
            return windows.size() == 2 && client.isViewable(windows[0]) && client.isViewable(windows[1]);
        }));
        client.minimise(windows[1]);
        require(client.waitUntil([&] { return !client.isViewable(windows[1]); }));
        const OtherWindow window{windows[0], program.pid()};
        client.setTitle(window.windowID, title);
        move(window, bounds);
        activate(window);
        return window;
    }

    OtherWindow openSecondWindow(const OtherWindow& first, const std::string& title,
                                 const DisplayRect& bounds) override {
        const OtherWindow window{client.managedWindowsOf(first.pid).at(1), first.pid};
        client.setTitle(window.windowID, title);
        activate(window);
        move(window, bounds);
        return window;
    }

    std::optional<OtherWindow> openScrollingWindow() override {
        desktop.startAccessibilityBus();
        programs.push_back(desktop.start({"gtk3-demo"}));
        const auto pid = programs.back()->pid();
        require(client.waitUntil([&] { return client.managedWindowsOf(pid).size() == 1; }));
        const OtherWindow window{client.managedWindowsOf(pid).front(), pid};
        activate(window);
        return window;
    }

    void activate(const OtherWindow& window) override {
        client.activate(window.windowID);
        require(client.waitUntil([&] { return client.activeWindow() == window.windowID; }));
    }
    void move(const OtherWindow& window, const DisplayRect& bounds) override {
        client.moveResize(window.windowID, pixels(bounds));
        require(client.waitUntil([&] { return client.place(window.windowID) == pixels(bounds); }));
    }
    void minimise(const OtherWindow& window) override {
        client.minimise(window.windowID);
        require(client.waitUntil([&] { return !client.isViewable(window.windowID); }));
    }
    void draw(const OtherWindow& window) override {
        ++content;
        client.sendMessage(window.windowID, "_SAMPLE_SHOW", {content});
        require(client.waitUntil([&] {
            return client.property(window.windowID, "_SAMPLE_CONTENT") == std::vector<std::uint32_t>{content};
        }));
    }
    void close(const OtherWindow& window) override {
        client.closeWindow(window.windowID);
        require(client.waitUntil([&] { return !client.place(window.windowID); }));
    }
    void kill(const OtherWindow& window) override {
        for (const auto& program : programs) {
            if (program->pid() == window.pid) {
                program->send(SIGKILL);
                require(program->waitForExit(e2e::stepBound).has_value());
            }
        }
    }
    void click(const ScreenPoint& point) override {
        clickAt(static_cast<int>(point.x), screenHeight() - static_cast<int>(point.y));
    }
    void pressKey(const KeyPress& press) override {
        std::vector<std::uint8_t> keys;
        for (const auto& modifier : modifierKeys) {
            if ((press.modifiers & modifier.flag) != 0) {
                keys.push_back(modifier.key);
            }
        }
        keys.push_back(e2e::evdevKeyCode(press.keyCode));
        client.type(keys);
    }
    std::size_t keyPressesOf(const OtherWindow& window, std::uint16_t keyCode) override {
        const auto keys = client.property(window.windowID, "_SAMPLE_KEYS");
        return static_cast<std::size_t>(std::count(keys.begin(), keys.end(), e2e::evdevKeyCode(keyCode)));
    }
    std::vector<PointerEvent> pointerEventsOf(const OtherWindow& window) override {
        std::vector<PointerEvent> received;
        std::ifstream file(inputFiles.at(window.pid));
        PointerReader reader;
        for (std::string line; std::getline(file, line) && !file.eof();) {
            const auto input = parseInput(line);
            if (const auto event = input ? reader.read(*input) : std::nullopt) {
                received.push_back(*event);
            }
        }
        return received;
    }
    bool claim(const KeyPress& press) override {
        require(client.grabKey(e2e::evdevKeyCode(press.keyCode), modifierBits(press.modifiers)));
        return true;
    }
    void giveBack(const KeyPress& press) override {
        client.ungrabKey(e2e::evdevKeyCode(press.keyCode), modifierBits(press.modifiers));
    }
    bool changeKeyboard(bool hasKeyP) override {
        // The key stays where it is, under a name that stands for no place.
        require(e2e::run({"sh", "-c", "xkbcomp -w0 \"$DISPLAY\" - | sed \"s/<$1>/<$2>/\" | xkbcomp -w0 - \"$DISPLAY\"",
                          "sh", hasKeyP ? "GONE" : "AD10", hasKeyP ? "AD10" : "GONE"},
                         desktop.environment())
                    .status == 0);
        return true;
    }
    bool openStatusMenu(StatusItem& /*item*/) override {
        if (!tray) {
            tray = desktop.start({"trayer", "--edge", "bottom", "--align", "right", "--height", "24"});
        }
        // The tray puts the icon where it stays, then shows it.
        std::optional<Rect> icon;
        require(runUntil(
            [&] {
                const auto window = client.visibleWindowNamed("ContractItem");
                icon = window ? client.place(*window) : std::nullopt;
                return icon && icon->y > screenHeight() / 2;
            },
            bound));
        clickAt(icon->x + icon->width / 2, icon->y + icon->height / 2);
        require(runUntil([] { return openMenu() != nullptr; }, bound));
        return true;
    }
    void chooseMenuItem(const std::string& title) override {
        auto* const menu = openMenu();
        for (auto* action : menu->actions()) {
            if (action->text().replace("&&", "&").toStdString() == title) {
                const auto middle = menu->mapToGlobal(menu->actionGeometry(action).center());
                clickAt(middle.x(), middle.y());
                require(runUntil([] { return openMenu() == nullptr; }, bound));
                return;
            }
        }
        require(false);
    }
    void dismissMenu() override {
        clickAt(0, 0);
        require(runUntil([] { return openMenu() == nullptr; }, bound));
    }
    void movePointer(const ScreenPoint& point) override {
        client.movePointer(static_cast<int>(point.x), screenHeight() - 1 - static_cast<int>(point.y));
    }
    bool showDock(double height) override {
        programs.push_back(desktop.start({"trayer", "--edge", "bottom", "--widthtype", "percent", "--width", "100",
                                          "--height", std::to_string(static_cast<int>(height)), "--SetDockType", "true",
                                          "--SetPartialStrut", "true"}));
        return true;
    }
    bool writeDefault(const std::string& key, const std::string& value) override {
        require(e2e::run({QUILLON_PROGRAM, "defaults", "write", key, value}, desktop.environment()).status == 0);
        return true;
    }
    bool canLaunchAtLogin() override { return true; }
    bool switchLoginItemOff() override {
        const auto entry = std::filesystem::path(desktop.environment().at("XDG_CONFIG_HOME")) / "autostart" /
                           "local.quillon.floating.desktop";
        require(std::filesystem::exists(entry));
        std::ofstream(entry, std::ios::app) << "Hidden=true\n";
        return true;
    }
    bool setTrusted(bool isTrusted) override {
        desktop.setAccessibilityEnabled(isTrusted);
        return true;
    }
    WindowUser* windowUser() override { return &user; }
    bool changeScreens() override {
        for (const auto& arguments : std::vector<e2e::Command>{
                 {"--newmode", "smaller", "30", "1200", "1200", "1200", "1200", "900", "900", "900", "900"},
                 {"--addmode", "screen", "smaller"},
                 {"--output", "screen", "--mode", "smaller"}}) {
            e2e::Command command{"xrandr"};
            command.insert(command.end(), arguments.begin(), arguments.end());
            require(e2e::run(command, desktop.environment()).status == 0);
        }
        return true;
    }

private:
    static constexpr Seconds bound = e2e::stepBound;

    [[nodiscard]] int screenHeight() {
        return static_cast<int>(x11Platform->screens().screens().front().frame.size.height);
    }
    /// In pixels of the screen.
    void clickAt(int x, int y) {
        client.movePointer(x, y);
        client.pressButton(1);
        client.releaseButton(1);
    }
    /// Null for none.
    static QMenu* openMenu() { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); }
    /// A world that does not do what it is told cannot test anything.
    static void require(bool done) {
        if (!done) {
            throw std::runtime_error("the desktop did not do what the test asked for");
        }
    }

    e2e::Desktop desktop{e2e::DesktopOptions{}};
    e2e::XClient client{desktop.displayName()};
    X11WindowUser user{*this, client};
    std::vector<std::unique_ptr<Program>> programs;
    /// What the sample programs write down, by their processes.
    std::map<pid_t, std::filesystem::path> inputFiles;
    std::uint32_t content = 100;
    std::unique_ptr<Program> tray;
    std::unique_ptr<QApplication> application;
    std::unique_ptr<x11::X11Platform> x11Platform;
};

} // namespace

std::unique_ptr<World> makeWorld() {
    return std::make_unique<X11World>();
}

} // namespace quillon::contract
