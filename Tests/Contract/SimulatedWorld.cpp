#include "World.h"

#include "SimulatedWindowUser.h"

#include "Simulated/Desktop.h"

#include <map>

namespace quillon::contract {
namespace {

class SimulatedWorld final : public World {
public:
    [[nodiscard]] Platform& platform() override { return desktop; }

    bool runUntil(const std::function<bool()>& condition, Seconds bound) override {
        return desktop.runUntil(condition, bound);
    }

    OtherWindow openWindow(const std::string& title, const DisplayRect& bounds) override {
        const auto pid = desktop.launch("Altro programma");
        const OtherWindow window{desktop.openWindow(pid, title, bounds), pid};
        activate(window);
        return window;
    }
    OtherWindow openSecondWindow(const OtherWindow& first, const std::string& title,
                                 const DisplayRect& bounds) override {
        return {desktop.openWindow(first.pid, title, bounds), first.pid};
    }
    std::optional<OtherWindow> openScrollingWindow() override {
        const DisplayRect bounds{{100, 100}, {400, 300}};
        const auto window = openWindow("Lista", bounds);
        desktop.accessibility().window(window.windowID)->addScrollArea(bounds).addVerticalScrollBar(0);
        return window;
    }
    void activate(const OtherWindow& window) override { desktop.activateWindow(window.windowID); }
    void move(const OtherWindow& window, const DisplayRect& bounds) override { desktop.move(window.windowID, bounds); }
    void minimise(const OtherWindow& window) override { desktop.minimise(window.windowID); }
    void draw(const OtherWindow& window) override { desktop.draw(window.windowID); }
    void close(const OtherWindow& window) override { desktop.close(window.windowID); }
    void kill(const OtherWindow& window) override { desktop.terminate(window.pid); }
    void click(const ScreenPoint& point) override { desktop.click(point); }
    void pressKey(const KeyPress& press) override {
        const bool isForOwnWindow = desktop.titledWindows().keyWindow() != nullptr;
        if (desktop.pressKey(press.keyCode, press.modifiers) == TappedEvent::passes && !isForOwnWindow) {
            ++keyPresses[press.keyCode];
        }
    }
    std::size_t keyPressesOf(const OtherWindow& /*window*/, std::uint16_t keyCode) override {
        return keyPresses[keyCode];
    }
    std::vector<PointerEvent> pointerEventsOf(const OtherWindow& window) override {
        std::vector<PointerEvent> received;
        for (const auto& event : desktop.syntheticEvents().posted()) {
            if (event.pid == window.pid &&
                integer(event, SystemEventField::mouseEventWindowUnderMousePointer) == window.windowID) {
                received.push_back(receivedEvent(event, desktop.model().window(window.windowID).bounds.origin));
            }
        }
        return received;
    }
    bool claim(const KeyPress& press) override {
        desktop.eventTaps().setReach(press, KeyPressReach::heldByAnotherProgram);
        return true;
    }
    void giveBack(const KeyPress& press) override { desktop.eventTaps().setReach(press, KeyPressReach::reaches); }
    bool changeKeyboard(bool hasKeyP) override {
        desktop.eventTaps().setReach(controlCommandP,
                                     hasKeyP ? KeyPressReach::reaches : KeyPressReach::missingOnKeyboard);
        return true;
    }
    bool openStatusMenu(StatusItem& item) override {
        desktop.statusBar().click(dynamic_cast<simulated::SimulatedStatusItem&>(item));
        return true;
    }
    void chooseMenuItem(const std::string& title) override { desktop.statusBar().choose(title); }
    void dismissMenu() override { desktop.statusBar().dismissMenu(); }
    void movePointer(const ScreenPoint& point) override { desktop.screens().setMouseLocation(point); }
    bool showDock(double height) override {
        auto screens = desktop.screens().screens();
        auto& free = screens.front().visibleFrame;
        free = {{free.minX(), free.minY() + height}, {free.size.width, free.size.height - height}};
        desktop.changeScreens(std::move(screens));
        return true;
    }
    bool writeDefault(const std::string& key, const std::string& value) override {
        desktop.userDefaults().store(key, value);
        return true;
    }
    bool canLaunchAtLogin() override { return true; }
    bool switchLoginItemOff() override {
        desktop.loginItem().setEnabled(false);
        return true;
    }
    bool setTrusted(bool isTrusted) override {
        desktop.accessibility().setTrusted(isTrusted);
        desktop.distributedNotificationCenter().postFromOutside("com.apple.accessibility.api");
        return true;
    }
    bool changeScreens() override {
        desktop.changeScreens({{{{0, 0}, {1200, 900}}, 1}});
        return true;
    }

    std::optional<std::string> fileContent(const std::string& path) override {
        return desktop.fileSystem().content(path);
    }
    std::optional<unsigned> permissions(const std::string& path) override {
        return desktop.fileSystem().permissions(path);
    }
    void makeSymbolicLink(const std::string& target, const std::string& path) override {
        desktop.fileSystem().makeSymbolicLink(target, path);
    }

    WindowUser* windowUser() override { return &user; }

private:
    /// 0 for a field that was not set.
    static std::int64_t integer(const simulated::PostedEvent& event, SystemEventField field) {
        const auto found = event.integers.find(field);
        return found != event.integers.end() ? found->second : 0;
    }
    static PointerEvent receivedEvent(const simulated::PostedEvent& event, const DisplayPoint& origin) {
        PointerEvent result{.type = event.type,
                            .location = {event.location.x - origin.x, event.location.y - origin.y},
                            .modifiers = event.flags};
        if (!event.button) {
            const bool isContinuous = integer(event, SystemEventField::scrollWheelEventIsContinuous) != 0;
            result.scrollY =
                isContinuous ? event.doubles.at(SystemEventField::scrollWheelEventPointDeltaAxis1) : event.wheel1;
            result.scrollX =
                isContinuous ? event.doubles.at(SystemEventField::scrollWheelEventPointDeltaAxis2) : event.wheel2;
            return result;
        }
        result.buttonNumber = event.integers.contains(SystemEventField::mouseEventButtonNumber)
                                  ? integer(event, SystemEventField::mouseEventButtonNumber)
                                  : static_cast<std::int64_t>(*event.button);
        result.clickCount = integer(event, SystemEventField::mouseEventClickState);
        return result;
    }

    simulated::Desktop desktop;
    SimulatedWindowUser user;
    /// Of the window in front, by key code: what no tap swallowed.
    std::map<std::uint16_t, std::size_t> keyPresses;
};

} // namespace

std::unique_ptr<World> makeWorld() {
    return std::make_unique<SimulatedWorld>();
}

} // namespace quillon::contract
