#include "World.h"

#include "Simulated/Desktop.h"

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
    void activate(const OtherWindow& window) override { desktop.activateWindow(window.windowID); }
    void move(const OtherWindow& window, const DisplayRect& bounds) override { desktop.move(window.windowID, bounds); }
    void minimise(const OtherWindow& window) override { desktop.minimise(window.windowID); }
    void draw(const OtherWindow& window) override { desktop.draw(window.windowID); }
    void close(const OtherWindow& window) override { desktop.close(window.windowID); }
    void kill(const OtherWindow& window) override { desktop.terminate(window.pid); }
    void click(const ScreenPoint& point) override { desktop.click(point); }
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

private:
    simulated::Desktop desktop;
};

} // namespace

std::unique_ptr<World> makeWorld() {
    return std::make_unique<SimulatedWorld>();
}

} // namespace quillon::contract
