// How long it takes from the press of the shortcut's key to the pinned window's picture on the screen. The picture is
// shown once another application is in front, so the user of this benchmark switches to one a moment after the window
// is pinned: the time of the window manager counts too. Argument: number of presses (default 200).

#include "Latencies.h"
#include "Require.h"

#include "Desktop.h"
#include "EvdevKeys.h"
#include "QuillonProgram.h"
#include "XClient.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <poll.h>

namespace quillon::benchmarks {

namespace {

using e2e::Milliseconds;
using e2e::Window;
using SteadyClock = std::chrono::steady_clock;

/// Far above what any step takes.
constexpr std::chrono::seconds stepBound{5};

double milliseconds(SteadyClock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

struct Times {
    /// From the key press until the window is pinned.
    Latencies pinned;
    /// From the switch to another application until the first of the picture is seen.
    Latencies shown;
    /// From the key press until the first of the picture is seen.
    Latencies total;
    /// The same until the picture has faded in.
    Latencies fadedIn;
};

class ShortcutBench {
public:
    explicit ShortcutBench(e2e::WindowManager windowManager)
        : desktop({.windowManager = windowManager}), client(desktop.displayName()) {
        pinnedProgram = startSample("200,200,640,480", pinnedWindow);
        otherProgram = startSample("100,100,1000,800", otherWindow);
        client.sendMessage(otherWindow, "_SAMPLE_SHOW", {otherContent});
        pinnedColor = colorInFrontOf(pinnedWindow);
        otherColor = colorInFrontOf(otherWindow);
        require(pinnedColor != otherColor, "the two windows cannot be told apart");
        require(quillon.command({"defaults", "write", "debugLogging", "true"}).status == 0, "no log");
        quillon.start();
    }

    Times run(int presses) {
        Times times;
        for (int press = 0; press < presses; ++press) {
            require(colorInFrontOf(pinnedWindow) == pinnedColor, "the window does not come to the front");
            // Uneven pauses, so that the presses fall anywhere between Quillon's timers.
            poll(nullptr, 0, 30 + (press * 37) % 50);
            pressOnce(times);
            unpin();
        }
        for (auto* latencies : {&times.pinned, &times.shown, &times.total, &times.fadedIn}) {
            std::sort(latencies->begin(), latencies->end());
        }
        return times;
    }

private:
    std::unique_ptr<e2e::Program> startSample(const std::string& place, Window& window) {
        auto program = desktop.start({SAMPLE_WINDOW_PROGRAM, "--place", place});
        require(client.waitUntil([&] {
            const auto windows = client.managedWindowsOf(program->pid());
            window = windows.empty() ? Window{XCB_NONE} : windows.front();
            return window != XCB_NONE && client.isViewable(window);
        }),
                "a sample window is not shown");
        return program;
    }

    /// A pixel that both windows cover.
    [[nodiscard]] std::uint32_t color() const {
        constexpr std::uint32_t withoutAlpha = 0xffffff;
        return client.screenPicture({430, 430, 1, 1}).at(0, 0) & withoutAlpha;
    }

    /// Activates the window; the colour once the screen is at rest.
    std::uint32_t colorInFrontOf(Window window) {
        client.activate(window);
        require(client.waitUntil([&] { return client.activeWindow() == window; }), "a window is not activated");
        auto last = color();
        constexpr int looksAtRest = 5;
        for (int same = 0; same < looksAtRest;) {
            poll(nullptr, 0, 10);
            const auto now = color();
            same = now == last ? same + 1 : 0;
            last = now;
        }
        return last;
    }

    void pressOnce(Times& times) {
        const auto logged = quillon.log().size();
        const auto pressed = SteadyClock::now();
        client.type({e2e::controlKey, e2e::superKey, e2e::pKey});
        // The log is the first place that tells.
        waitUntil([&] { return quillon.log().find("togglePin: Pinned", logged) != std::string::npos; });
        const auto pinned = SteadyClock::now();
        // No hand presses the keys and switches to another window at once; the pause is nobody's delay.
        poll(nullptr, 0, betweenPressAndSwitch);
        const auto switched = SteadyClock::now();
        client.activate(otherWindow);
        waitUntil([&] { return color() == otherColor; });
        waitUntil([&] { return color() != otherColor; });
        const auto seen = SteadyClock::now();
        waitUntil([&] { return color() == pinnedColor; });
        const auto fadedIn = SteadyClock::now();
        const double pinning = milliseconds(pinned - pressed);
        times.pinned.push_back(pinning);
        times.shown.push_back(milliseconds(seen - switched));
        times.total.push_back(pinning + milliseconds(seen - switched));
        times.fadedIn.push_back(pinning + milliseconds(fadedIn - switched));
    }

    /// Looks about three times a millisecond: often enough to measure, and the server has time for others.
    template <class Condition>
    static void waitUntil(Condition condition) {
        const auto deadline = SteadyClock::now() + stepBound;
        while (!condition()) {
            require(SteadyClock::now() < deadline, "the screen does not show what it should");
            constexpr timespec betweenLooks{0, 300000};
            nanosleep(&betweenLooks, nullptr);
        }
    }

    void unpin() { require(quillon.command({"unpin", "all"}).status == 0, "the window cannot be unpinned"); }

    static constexpr std::uint32_t otherContent = 1000;
    static constexpr int betweenPressAndSwitch = 50; // ms

    e2e::Desktop desktop;
    e2e::XClient client;
    e2e::QuillonProgram quillon{desktop};
    Window pinnedWindow = XCB_NONE;
    Window otherWindow = XCB_NONE;
    std::unique_ptr<e2e::Program> pinnedProgram;
    std::unique_ptr<e2e::Program> otherProgram;
    std::uint32_t pinnedColor = 0;
    std::uint32_t otherColor = 0;
};

void print(const char* desktop, const char* what, const Latencies& latencies) {
    std::printf("%-22s %-34s", desktop, what);
    printDistribution(latencies);
}

} // namespace

} // namespace quillon::benchmarks

int main(int count, char** arguments) {
    using namespace quillon::benchmarks;
    using quillon::e2e::WindowManager;
    const int presses = count > 1 ? std::atoi(arguments[1]) : 200;
    std::printf("From the press of the shortcut to the pinned window's picture, %d presses, ms\n\n", presses);
    std::printf("%-22s %-34s %7s %7s %7s %7s %7s %7s %7s %7s\n", "Desktop", "", "least", "p25", "median", "p75", "p90",
                "p95", "p99", "most");
    for (const auto& [windowManager, name] :
         {std::pair{WindowManager::openbox, "openbox"}, std::pair{WindowManager::xfwm4, "xfwm4, compositing"}}) {
        const auto times = ShortcutBench(windowManager).run(presses);
        print(name, "key press to pinned", times.pinned);
        print(name, "switch to first picture", times.shown);
        print(name, "key press to first picture", times.total);
        print(name, "key press to faded in (0.15 s)", times.fadedIn);
        std::fflush(stdout);
    }
    return 0;
}
