// How long it takes from the user's press of a button on a copy until the covered program has drawn its answer, beside
// the same press right on a window of the same program; and the longest turns of Quillon's main thread while the
// program that gets the input runs and while it is stopped. Argument: number of presses (default 200).

#include "Latencies.h"
#include "Require.h"
#include "TurnProbe.h"

#include "Desktop.h"
#include "EvdevKeys.h"
#include "QuillonProgram.h"
#include "XClient.h"

#include <xcb/damage.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <poll.h>
#include <sys/mman.h>
#include <unistd.h>

namespace quillon::benchmarks {

namespace {

using e2e::Command;
using e2e::Milliseconds;
using e2e::Rect;
using e2e::Window;
using SteadyClock = std::chrono::steady_clock;

constexpr std::uint8_t leftButton = 1;
constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;

void pass(int milliseconds) {
    poll(nullptr, 0, milliseconds);
}

Latencies sorted(Latencies latencies) {
    std::sort(latencies.begin(), latencies.end());
    return latencies;
}

/// A running program and its window.
struct Target {
    std::unique_ptr<e2e::Program> program;
    Window window = XCB_NONE;
};

Target start(const e2e::Desktop& desktop, const e2e::XClient& client, const Command& command) {
    Target target{desktop.start(command)};
    require(client.waitUntil([&] {
        const auto windows = client.managedWindowsOf(target.program->pid());
        target.window = windows.empty() ? Window{XCB_NONE} : windows.front();
        return target.window != XCB_NONE && client.isViewable(target.window);
    }),
            "a program does not show its window");
    return target;
}

void place(const e2e::XClient& client, Window window, const Rect& where) {
    client.moveResize(window, where);
    // A terminal takes whole characters only, and its corner may lie elsewhere by a part of one.
    constexpr int tolerance = 40;
    require(client.waitUntil([&] {
        const auto now = client.place(window);
        return now && std::abs(now->x - where.x) < tolerance && std::abs(now->y - where.y) < tolerance;
    }),
            "a window does not move");
}

Window pin(const e2e::QuillonProgram& quillon, const e2e::XClient& client, Window window) {
    const auto before = client.visibleWindowsOf(quillon.pid());
    require(quillon.pin(window).status == 0, "the window cannot be pinned");
    Window panel = XCB_NONE;
    require(client.waitUntil([&] {
        for (const auto shown : client.visibleWindowsOf(quillon.pid())) {
            panel = std::find(before.begin(), before.end(), shown) == before.end() ? shown : panel;
        }
        return panel != XCB_NONE;
    }),
            "no copy is shown");
    return panel;
}

// From the press to the answer

/// Notices that a window is drawn into, covered or not.
class DrawingWatch {
public:
    DrawingWatch(const e2e::XClient& client, Window window)
        : xcb(client.xcb()), window(window), damage(xcb_generate_id(xcb)) {
        const auto cookie = xcb_damage_query_version(xcb, 1, 1);
        std::free(xcb_damage_query_version_reply(xcb, cookie, nullptr));
        xcb_damage_create(xcb, damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        xcb_flush(xcb);
    }
    DrawingWatch(const DrawingWatch&) = delete;
    DrawingWatch& operator=(const DrawingWatch&) = delete;
    ~DrawingWatch() { xcb_damage_destroy(xcb, damage); }

    /// Takes note of what was drawn, until nothing is drawn for a while.
    void settle() const {
        constexpr int quiet = 20;
        do {
            xcb_damage_subtract(xcb, damage, XCB_NONE, XCB_NONE);
            xcb_flush(xcb);
        } while (waitForDrawing(quiet));
    }
    /// False when nothing is drawn in time.
    [[nodiscard]] bool waitForDrawing(int milliseconds) const {
        const auto deadline = SteadyClock::now() + Milliseconds(milliseconds);
        while (true) {
            while (const e2e::Reply<xcb_generic_event_t> event{xcb_poll_for_event(xcb)}) {
                const auto base = xcb_get_extension_data(xcb, &xcb_damage_id)->first_event;
                if ((event->response_type & 0x7f) == base + XCB_DAMAGE_NOTIFY &&
                    reinterpret_cast<const xcb_damage_notify_event_t&>(*event).drawable == window) {
                    return true;
                }
            }
            const auto left = std::chrono::ceil<Milliseconds>(deadline - SteadyClock::now()).count();
            pollfd source{xcb_get_file_descriptor(xcb), POLLIN, 0};
            if (left <= 0 || poll(&source, 1, static_cast<int>(left)) == 0) {
                return false;
            }
        }
    }

private:
    xcb_connection_t* xcb;
    Window window;
    xcb_damage_damage_t damage;
};

struct Reactions {
    Latencies onWindow;
    Latencies onCopy;
};

/// One window of the program is covered and pinned; another one, of a second process, is in front and active, so that
/// no window manager keeps the press to itself first.
class ReactionBench {
public:
    ReactionBench(e2e::WindowManager windowManager, const Command& command)
        : desktop({.windowManager = windowManager}), client(desktop.displayName()) {
        covered = start(desktop, client, command);
        place(client, covered.window, {150, 150, 500, 400});
        cover = start(desktop, client, {SAMPLE_WINDOW_PROGRAM, "--place", "100,100,600,500"});
        direct = start(desktop, client, command);
        place(client, direct.window, {900, 150, 500, 400});
        quillon.start();
        client.activate(direct.window);
        require(client.waitUntil([&] { return client.activeWindow() == direct.window; }), "no window is active");
        panel = pin(quillon, client, covered.window);
    }

    Reactions run(int presses) {
        Reactions reactions;
        const DrawingWatch coveredDrawing(client, covered.window);
        const DrawingWatch directDrawing(client, direct.window);
        for (int press = 0; press < presses; ++press) {
            // Uneven pauses, so that the presses fall anywhere between Quillon's timers.
            pass((press * 37) % 50);
            reactions.onCopy.push_back(pressOn(panel, coveredDrawing));
            reactions.onWindow.push_back(pressOn(direct.window, directDrawing));
        }
        return {sorted(reactions.onWindow), sorted(reactions.onCopy)};
    }

private:
    double pressOn(Window window, const DrawingWatch& drawing) {
        const auto where = client.place(window).value();
        client.movePointer(where.x + 100, where.y + 100);
        drawing.settle();
        const auto pressed = SteadyClock::now();
        client.pressButton(leftButton);
        require(drawing.waitForDrawing(5000), "the program does not answer");
        const std::chrono::duration<double, std::milli> latency = SteadyClock::now() - pressed;
        client.releaseButton(leftButton);
        return latency.count();
    }

    e2e::Desktop desktop;
    e2e::XClient client;
    e2e::QuillonProgram quillon{desktop};
    Target covered;
    Target cover;
    Target direct;
    Window panel = XCB_NONE;
};

// The turns of the main thread

/// The turns of the probed process, from its start on.
class TurnReader {
public:
    explicit TurnReader(const std::filesystem::path& path) {
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
        require(file >= 0 && ftruncate(file, sizeof(TurnRecord)) == 0, "the record cannot be made");
        void* const mapped = mmap(nullptr, sizeof(TurnRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        close(file);
        require(mapped != MAP_FAILED, "the record cannot be mapped");
        record = static_cast<TurnRecord*>(mapped);
    }
    TurnReader(const TurnReader&) = delete;
    TurnReader& operator=(const TurnReader&) = delete;
    ~TurnReader() { munmap(record, sizeof(TurnRecord)); }

    /// Since the last call.
    Latencies take() {
        const auto end = record->count.load(std::memory_order_acquire);
        require(end < TurnRecord::capacity, "the record is full");
        const auto* all = record->milliseconds.data();
        Latencies turns(all + taken, all + end);
        taken = end;
        return sorted(turns);
    }

private:
    TurnRecord* record = nullptr;
    std::uint64_t taken = 0;
};

/// What the user does on the copy of one program.
class TurnBench {
public:
    TurnBench(const Command& command, const std::vector<std::string>& options) {
        desktop.startAccessibilityBus();
        target = start(desktop, client, command);
        place(client, target.window, {150, 150, 500, 400});
        cover = start(desktop, client, {SAMPLE_WINDOW_PROGRAM, "--place", "100,100,700,600"});
        quillon.start({"env", "LD_PRELOAD=" TURN_PROBE, std::string(turnRecordVariable) + "=" + recordFile().string()},
                      options);
        require(quillon.command({"defaults", "write", "forwardEvents", "true"}).status == 0, "no settings");
        bringCopyBack();
        panel = pin(quillon, client, target.window);
        rest();
    }

    struct Action {
        const char* name;
        std::function<void(TurnBench&)> perform;
    };
    /// Prints the turns while the program runs and while it is stopped.
    void run(const char* name, const std::vector<Action>& actions) {
        for (const bool isStopped : {false, true}) {
            target.program->send(isStopped ? SIGSTOP : SIGCONT);
            for (const auto& action : actions) {
                rest();
                std::ignore = reader.take();
                action.perform(*this);
                rest();
                print(name, action.name, isStopped, reader.take());
            }
        }
    }

    void click() {
        for (int count = 0; count < 20; ++count) {
            pointAt(100 + 5 * count, 150);
            client.pressButton(leftButton);
            client.releaseButton(leftButton);
            pass(20);
        }
    }
    void drag() {
        for (int count = 0; count < 5; ++count) {
            pointAt(100, 150);
            client.pressButton(leftButton);
            for (int step = 0; step < 20; ++step) {
                pointAt(100 + 10 * step, 150 + 5 * step);
                pass(5);
            }
            client.releaseButton(leftButton);
        }
    }
    void turnWheel() {
        pointAt(100, 250);
        for (int step = 0; step < 100; ++step) {
            const auto direction = step % 20 < 10 ? wheelDown : wheelUp;
            client.pressButton(direction);
            client.releaseButton(direction);
            pass(10);
        }
    }
    void switchByCommandClick() {
        for (int count = 0; count < 5; ++count) {
            pointAt(100, 150);
            client.pressKey(e2e::superKey);
            client.pressButton(leftButton);
            client.releaseButton(leftButton);
            client.releaseKey(e2e::superKey);
            require(client.waitUntil([&] { return client.activeWindow() == target.window; }), "no switch");
            bringCopyBack();
            require(client.waitUntil([&] { return client.isAbove(panel, cover.window); }), "the copy stays behind");
        }
    }

private:
    [[nodiscard]] std::filesystem::path recordFile() const { return desktop.directory() / "turns"; }
    void pointAt(int x, int y) {
        const auto where = client.place(panel).value_or(Rect());
        client.movePointer(where.x + x, where.y + y);
    }
    void bringCopyBack() {
        client.activate(cover.window);
        require(client.waitUntil([&] { return client.activeWindow() == cover.window; }), "the cover is not active");
    }
    /// Longer than any consequence of what came before.
    static void rest() { pass(1000); }

    static void print(const char* program, const char* action, bool isStopped, const Latencies& turns) {
        std::printf("%-12s %-24s %-8s %7zu %8.2f %8.2f %8.2f %8.2f\n", program, action,
                    isStopped ? "stopped" : "running", turns.size(), percentile(turns, 0.5), percentile(turns, 0.95),
                    percentile(turns, 0.99), percentile(turns, 1));
        std::fflush(stdout);
    }

    e2e::Desktop desktop{e2e::DesktopOptions{}};
    e2e::XClient client{desktop.displayName()};
    e2e::QuillonProgram quillon{desktop};
    TurnReader reader{recordFile()};
    Target target;
    Target cover;
    Window panel = XCB_NONE;
};

void print(const char* what, const Latencies& latencies) {
    std::printf("%-58s", what);
    printDistribution(latencies);
}

void printReactions(const std::string& name, const Reactions& reactions) {
    print((name + ", on the window").c_str(), reactions.onWindow);
    print((name + ", on the copy").c_str(), reactions.onCopy);
    std::printf("%-58s", (name + ", copy / window").c_str());
    for (const double fraction : shownFractions) {
        std::printf(" %7.2f", percentile(reactions.onCopy, fraction) / percentile(reactions.onWindow, fraction));
    }
    std::printf("\n");
    std::fflush(stdout);
}

/// A terminal that reports presses to its program (X10 mouse mode), which shows what it is told.
const Command terminal{"xterm", "-e", "sh", "-c", "stty -icanon -echo; printf '\\033[?9h'; exec cat -v"};

void measureReactions(int presses) {
    using e2e::WindowManager;
    std::printf("From a press to the drawn answer, %d presses each, ms\n\n%-58s", presses, "");
    for (const auto* column : {"least", "p25", "median", "p75", "p90", "p95", "p99", "most"}) {
        std::printf(" %7s", column);
    }
    std::printf("\n");
    for (const auto& [windowManager, managerName] :
         {std::pair{WindowManager::openbox, "openbox"}, std::pair{WindowManager::xfwm4, "xfwm4, compositing"}}) {
        for (const auto& [name, command] :
             {std::pair{"a program that draws a pixel", Command{REACTION_SAMPLE, "300", "300"}},
              std::pair{"xterm", terminal}}) {
            printReactions(std::string(managerName) + ": " + name, ReactionBench(windowManager, command).run(presses));
        }
    }
}

void measureTurns() {
    std::printf("\nTurns of Quillon's main thread, ms\n\n%-12s %-24s %-8s %7s %8s %8s %8s %8s\n", "Program", "Action",
                "It is", "turns", "median", "p95", "p99", "most");
    const std::vector<TurnBench::Action> forwarding{
        {"clicks", &TurnBench::click},
        {"drags", &TurnBench::drag},
        {"wheel", &TurnBench::turnWheel},
        {"switches to the window", &TurnBench::switchByCommandClick},
    };
    const std::vector<TurnBench::Action> accessibility{{"wheel, Accessibility", &TurnBench::turnWheel}};
    for (const auto& [name, command] :
         {std::pair{"xterm", Command{"xterm"}}, std::pair{"gtk3-demo", Command{"gtk3-demo"}},
          std::pair{"featherpad", Command{"featherpad", "--standalone"}}}) {
        TurnBench(command, {}).run(name, forwarding);
        TurnBench(command, {"--input-routing=scroll"}).run(name, accessibility);
    }
}

} // namespace

} // namespace quillon::benchmarks

int main(int count, char** arguments) {
    using namespace quillon::benchmarks;
    constexpr int defaultPresses = 200;
    measureReactions(count > 1 ? std::atoi(arguments[1]) : defaultPresses);
    measureTurns();
    return 0;
}
