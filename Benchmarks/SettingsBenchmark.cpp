// How long it takes from the command `quillon settings` to the window's complete picture on the screen: when the
// program opens the window for the first time, and later, when it has it; beside the start of a desktop's settings
// program if one is installed. And what the program costs at rest, before the window was opened and after it was
// closed. Argument: number of openings of each kind (default 20).

#include "Latencies.h"
#include "ProcessCost.h"
#include "Require.h"

#include "Desktop.h"
#include "QuillonProgram.h"
#include "XClient.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <poll.h>

namespace quillon::benchmarks {

namespace {

using e2e::Picture;
using e2e::Rect;
using e2e::Window;
using SteadyClock = std::chrono::steady_clock;

/// Far above what any step takes.
constexpr std::chrono::seconds stepBound{10};
/// How long the screen has to stay the same to count as complete.
constexpr e2e::Milliseconds restTime{500};

/// A picture on the screen and where it lies.
struct Seen {
    Rect place;
    Picture picture;
};

struct Cost {
    /// Of one core, in percent.
    double processor = 0;
    /// A second.
    double wakeups = 0;
};

class SettingsBench {
public:
    explicit SettingsBench(e2e::WindowManager windowManager)
        : desktop({.windowManager = windowManager}), client(desktop.displayName()) {
        // Where no control is, so that none shows that the pointer is over it.
        client.movePointer(0, 0);
    }

    /// Of a program that has just started.
    Latencies firstOpenings(int count) {
        Latencies latencies;
        for (int opening = 0; opening < count; ++opening) {
            quillon.start();
            if (!settings) {
                settings = seenWindow(quillon.command({"settings"}).status == 0 ? quillon.pid() : 0);
                require(quillon.stop() == 0, "Quillon does not end");
                quillon.start();
            }
            latencies.push_back(timeUntilSeen({e2e::quillonPath(), "settings"}, *settings));
            require(quillon.stop() == 0, "Quillon does not end");
        }
        std::sort(latencies.begin(), latencies.end());
        return latencies;
    }

    Latencies laterOpenings(int count) {
        quillon.start();
        timeUntilSeen({e2e::quillonPath(), "settings"}, *settings);
        Latencies latencies;
        for (int opening = 0; opening < count; ++opening) {
            closeWindowsOf(quillon.pid());
            latencies.push_back(timeUntilSeen({e2e::quillonPath(), "settings"}, *settings));
        }
        require(quillon.stop() == 0, "Quillon does not end");
        std::sort(latencies.begin(), latencies.end());
        return latencies;
    }

    /// Of the start of another program until its window is complete; none when it is not installed.
    std::optional<Latencies> starts(const std::string& program, int count) {
        if (e2e::run({"sh", "-c", "command -v \"$1\"", "sh", program}, desktop.environment()).status != 0) {
            return std::nullopt;
        }
        std::optional<Seen> complete;
        Latencies latencies;
        for (int start = 0; start <= count; ++start) {
            std::unique_ptr<e2e::Program> running;
            if (!complete) {
                running = desktop.start({program});
                complete = seenWindow(running->pid());
            } else {
                latencies.push_back(timeUntilSeen({program}, *complete, &running));
            }
        }
        std::sort(latencies.begin(), latencies.end());
        return latencies;
    }

    struct Costs {
        Cost before;
        Cost open;
        Cost after;
    };
    Costs costsAtRest(double seconds) {
        quillon.start();
        Costs costs;
        costs.before = costFor(seconds);
        timeUntilSeen({e2e::quillonPath(), "settings"}, *settings);
        costs.open = costFor(seconds);
        closeWindowsOf(quillon.pid());
        costs.after = costFor(seconds);
        require(quillon.stop() == 0, "Quillon does not end");
        return costs;
    }

private:
    /// The one window of a program, once nothing changes in it any more.
    Seen seenWindow(pid_t process) {
        std::vector<Window> windows;
        require(client.waitUntil([&] {
            windows = client.managedWindowsOf(process);
            return windows.size() == 1 && client.isViewable(windows.front());
        }),
                "no window is shown");
        Seen seen;
        do {
            seen.place = client.place(windows.front()).value_or(Rect());
            seen.picture = client.screenPicture(seen.place);
        } while (!client.holdsFor(
            [&] {
                return client.place(windows.front()) == seen.place && client.screenPicture(seen.place) == seen.picture;
            },
            restTime));
        return seen;
    }

    /// Looks about as often as the server hands out a picture of the window, which takes it some milliseconds.
    double timeUntilSeen(const e2e::Command& command, const Seen& complete,
                         std::unique_ptr<e2e::Program>* running = nullptr) {
        require(client.waitUntil([&] { return client.screenPicture(complete.place) != complete.picture; }),
                "the window does not go");
        const auto begin = SteadyClock::now();
        auto started = desktop.start(command);
        while (client.screenPicture(complete.place) != complete.picture) {
            require(SteadyClock::now() < begin + stepBound, "the window does not look as before");
            constexpr timespec betweenLooks{0, 300000};
            nanosleep(&betweenLooks, nullptr);
        }
        const auto end = SteadyClock::now();
        if (running != nullptr) {
            *running = std::move(started);
        } else {
            require(started->waitForExit(stepBound) == 0, "the command failed");
        }
        return std::chrono::duration<double, std::milli>(end - begin).count();
    }

    void closeWindowsOf(pid_t process) {
        for (const auto window : client.managedWindowsOf(process)) {
            client.closeWindow(window);
        }
        require(client.waitUntil([&] { return client.visibleWindowsOf(process).empty(); }), "a window stays open");
    }

    Cost costFor(double seconds) {
        // What opening and closing have left to do is not rest, and Qt ends its helping threads 30 s after they have
        // done so: the wakeups of a thread are forgotten with it.
        poll(nullptr, 0, 33000);
        const auto processor = processorSeconds({quillon.pid()});
        const auto woken = wakeups(quillon.pid());
        poll(nullptr, 0, static_cast<int>(seconds * 1000));
        return {100 * (processorSeconds({quillon.pid()}) - processor) / seconds,
                static_cast<double>(wakeups(quillon.pid()) - woken) / seconds};
    }

    e2e::Desktop desktop;
    e2e::XClient client;
    e2e::QuillonProgram quillon{desktop};
    std::optional<Seen> settings;
};

void print(const char* desktop, const std::string& what, const Latencies& latencies) {
    std::printf("%-22s %-34s", desktop, what.c_str());
    for (const double fraction : {0.0, 0.25, 0.5, 0.75, 0.9, 1.0}) {
        std::printf(" %7.1f", percentile(latencies, fraction));
    }
    std::printf("\n");
    std::fflush(stdout);
}

void print(const char* when, const Cost& cost) {
    std::printf("%-34s %10.2f %10.1f\n", when, cost.processor, cost.wakeups);
}

} // namespace

} // namespace quillon::benchmarks

int main(int count, char** arguments) {
    using namespace quillon::benchmarks;
    using quillon::e2e::WindowManager;
    const int openings = count > 1 ? std::atoi(arguments[1]) : 20;
    std::printf("From the command to the settings window's complete picture, %d openings of each kind, ms\n\n",
                openings);
    std::printf("%-22s %-34s %7s %7s %7s %7s %7s %7s\n", "Desktop", "", "least", "p25", "median", "p75", "p90", "most");
    for (const auto& [windowManager, name] :
         {std::pair{WindowManager::openbox, "openbox"}, std::pair{WindowManager::xfwm4, "xfwm4, compositing"}}) {
        SettingsBench bench(windowManager);
        print(name, "first opening", bench.firstOpenings(openings));
        print(name, "later openings", bench.laterOpenings(openings));
        for (const auto* program : {"obconf", "xfce4-appearance-settings"}) {
            if (const auto latencies = bench.starts(program, openings)) {
                print(name, std::string("start of ") + program, *latencies);
            }
        }
    }

    constexpr double seconds = 20;
    std::printf("\nAt rest, over %.0f s each %18s %10s\n", seconds, "CPU, %", "wakeups/s");
    SettingsBench bench(WindowManager::openbox);
    bench.firstOpenings(1);
    const auto costs = bench.costsAtRest(seconds);
    print("before the window was opened", costs.before);
    print("while it is open", costs.open);
    print("after it was closed", costs.after);
    return 0;
}
