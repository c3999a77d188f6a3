#include "RealFilesWorld.h"

#include "Desktop.h"
#include "XClient.h"

#include "Platform/Scheduler.h"
#include "Platform/X11/X11Platform.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <chrono>
#include <cmath>
#include <cstdlib>
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

/// The platform on a real X server, in this process; the other programs are real ones.
class X11World final : public RealFilesWorld {
public:
    X11World() {
        // The platform looks for its display and its files where the environment says.
        for (const auto& [name, value] : desktop.environment()) {
            setenv(name.c_str(), value.c_str(), 1);
        }
        application = std::make_unique<QCoreApplication>(argumentCount, arguments);
        auto opened = x11::Connection::open();
        if (const auto* problem = std::get_if<std::string>(&opened)) {
            throw std::runtime_error(*problem);
        }
        x11Platform = std::make_unique<x11::X11Platform>(std::move(std::get<std::unique_ptr<x11::Connection>>(opened)));
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
        programs.push_back(desktop.start({SAMPLE_WINDOW_PROGRAM, "--windows", "2", "--title", title}));
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
        const auto screen = x11Platform->screens().screens().front().frame;
        client.movePointer(static_cast<int>(point.x), static_cast<int>(screen.size.height - point.y));
        client.pressButton(1);
        client.releaseButton(1);
    }
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
    /// A world that does not do what it is told cannot test anything.
    static void require(bool done) {
        if (!done) {
            throw std::runtime_error("the desktop did not do what the test asked for");
        }
    }

    e2e::Desktop desktop{e2e::DesktopOptions{}};
    e2e::XClient client{desktop.displayName()};
    std::vector<std::unique_ptr<Program>> programs;
    std::uint32_t content = 100;
    int argumentCount = 1;
    char programName[8] = "quillon";
    char* arguments[2] = {programName, nullptr};
    std::unique_ptr<QCoreApplication> application;
    std::unique_ptr<x11::X11Platform> x11Platform;
};

} // namespace

std::unique_ptr<World> makeWorld() {
    return std::make_unique<X11World>();
}

} // namespace quillon::contract
