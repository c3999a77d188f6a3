#include "MirrorBench.h"

#include "ProcessCost.h"

#include <xcb/damage.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <poll.h>
#include <stdexcept>

namespace quillon::benchmarks {

namespace {

using e2e::Window;
using SteadyClock = std::chrono::steady_clock;

/// Room for the source, its mirror at 150 % over it and a second mirror beside it.
e2e::DesktopOptions desktopOptions() {
    return {.windowManager = e2e::WindowManager::openbox, .serverOptions = {"-screen", "0", "3400x1300x24"}};
}

double secondsSince(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

/// Watches a window with a Damage object of its own connection.
class DamageWatch {
public:
    DamageWatch(xcb_connection_t* connection, Window window)
        : connection(connection), damage(xcb_generate_id(connection)),
          firstEvent(xcb_get_extension_data(connection, &xcb_damage_id)->first_event) {
        std::free(xcb_damage_query_version_reply(connection, xcb_damage_query_version(connection, 1, 1), nullptr));
        xcb_damage_create(connection, damage, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
        rearm();
    }
    ~DamageWatch() {
        xcb_damage_destroy(connection, damage);
        xcb_flush(connection);
    }
    DamageWatch(const DamageWatch&) = delete;
    DamageWatch& operator=(const DamageWatch&) = delete;

    /// True when the window was drawn on before the deadline.
    bool next(SteadyClock::time_point deadline) {
        for (;;) {
            while (const e2e::Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection)}) {
                if ((event->response_type & 0x7f) == firstEvent + XCB_DAMAGE_NOTIFY &&
                    reinterpret_cast<const xcb_damage_notify_event_t&>(*event).damage == damage) {
                    rearm();
                    return true;
                }
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - SteadyClock::now());
            if (left.count() <= 0) {
                return false;
            }
            pollfd descriptor{xcb_get_file_descriptor(connection), POLLIN, 0};
            poll(&descriptor, 1, static_cast<int>(left.count()));
        }
    }

private:
    void rearm() const {
        xcb_damage_subtract(connection, damage, XCB_NONE, XCB_NONE);
        xcb_flush(connection);
    }

    xcb_connection_t* connection;
    xcb_damage_damage_t damage;
    int firstEvent;
};

Window windowOf(const e2e::XClient& client, const e2e::Program& program) {
    Window found = 0;
    const bool shown = client.waitUntil([&] {
        const auto windows = client.managedWindowsOf(program.pid());
        found = windows.empty() ? 0 : windows.front();
        return found != 0 && client.isViewable(found);
    });
    if (!shown) {
        throw std::runtime_error("a program shows no window: " + program.errors());
    }
    return found;
}

std::string number(double value) {
    return std::to_string(static_cast<int>(std::lround(value)));
}

/// Asked on the connection that watches the window, so that the server answers after it has rearmed the watch: what
/// is drawn later is announced.
std::uint32_t pixel(const e2e::XClient& eyes, Window window, int x, int y) {
    const auto cookie = xcb_get_image(eyes.xcb(), XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<std::int16_t>(x),
                                      static_cast<std::int16_t>(y), 1, 1, 0xffffffff);
    const e2e::Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(eyes.xcb(), cookie, nullptr));
    if (!image) {
        throw std::runtime_error("a pixel could not be read");
    }
    return *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get())) & 0xffffff;
}

} // namespace

MirrorBench::MirrorBench() : desktop(desktopOptions()), client(desktop.displayName()) {
    sourceProgram = desktop.start({SAMPLE_WINDOW_PROGRAM, "--place",
                                   "0,30," + number(sourceWidth) + "," + number(sourceHeight), "--title", "Source"});
    source = windowOf(client, *sourceProgram);
    otherProgram = desktop.start({SAMPLE_WINDOW_PROGRAM, "--place", "10,1000,300,200", "--title", "Other"});
    other = windowOf(client, *otherProgram);
    serverProcess = client.ownerOf(client.root()).value_or(0);
    for (const auto process : descendants(getpid())) {
        std::string name;
        std::ifstream("/proc/" + std::to_string(process) + "/comm") >> name;
        if (name == "Xvfb") {
            serverProcess = process;
        }
    }
}

void MirrorBench::play(const Activity& activity) const {
    client.sendMessage(source, "_SAMPLE_PLAY", {activity.contentsPerSecond, activity.onlyRegion ? 1U : 0U});
}

void MirrorBench::wait(double seconds) const {
    (void)client.holdsFor([] { return true; }, e2e::Milliseconds(std::lround(seconds * 1000)));
}

double MirrorBench::cost(const std::vector<pid_t>& mirror, double seconds) const {
    auto processes = mirror;
    processes.push_back(serverProcess);
    processes.push_back(sourceProgram->pid());
    const auto start = SteadyClock::now();
    const double before = processorSeconds(processes);
    // Asleep, so that the looking costs the server nothing.
    poll(nullptr, 0, static_cast<int>(seconds * 1000));
    return 100 * (processorSeconds(processes) - before) / secondsSince(start);
}

void MirrorBench::startQuillon(double scale, double framesPerSecond) {
    quillonProgram.start();
    if (quillonProgram.command({"defaults", "write", "captureRate", std::to_string(framesPerSecond)}).status != 0) {
        throw std::runtime_error("the capture rate could not be set");
    }
    client.activate(other);
    if (!client.waitUntil([&] { return client.activeWindow() == other; }) || quillonProgram.pin(source).status != 0) {
        throw std::runtime_error("the source could not be pinned");
    }
    if (!client.waitUntil([&] {
            const auto panels = client.visibleWindowsOf(quillonProgram.pid());
            panelWindow = panels.empty() ? 0 : panels.back();
            return panelWindow != 0;
        })) {
        throw std::runtime_error("Quillon shows no panel");
    }
    wait(1);
    if (scale != 1) {
        resizePanel(scale);
    }
}

void MirrorBench::stopQuillon() {
    (void)quillonProgram.stop();
}

void MirrorBench::resizePanel(double scale) const {
    const auto place = client.place(panelWindow).value();
    const int width = static_cast<int>(std::lround(sourceWidth * scale));
    const int height = static_cast<int>(std::lround(sourceHeight * scale));
    constexpr int insideGrip = 5;
    client.movePointer(place.x + place.width - insideGrip, place.y + place.height - insideGrip);
    client.pressButton(1);
    client.movePointer(place.x + width - insideGrip, place.y + height - insideGrip);
    client.releaseButton(1);
    const bool resized = client.waitUntil([&] {
        const auto now = client.place(panelWindow);
        return now && now->width == width && now->height == height;
    });
    if (!resized) {
        throw std::runtime_error("the panel could not be resized");
    }
}

RunningMirror MirrorBench::startPipeline(double scale, int framesPerSecond) const {
    e2e::Command command{"gst-launch-1.0",
                         "-q",
                         "ximagesrc",
                         "xid=" + std::to_string(source),
                         "use-damage=0",
                         "show-pointer=0",
                         "!",
                         "video/x-raw,framerate=" + std::to_string(framesPerSecond) + "/1",
                         "!"};
    if (scale != 1) {
        command.insert(command.end(),
                       {"videoscale", "!",
                        "video/x-raw,width=" + number(sourceWidth * scale) + ",height=" + number(sourceHeight * scale),
                        "!"});
    }
    command.insert(command.end(), {"ximagesink", "sync=false"});
    RunningMirror mirror{desktop.start(command), 0};
    // The sink's window is not its process's own in every version, so it is found by its name.
    mirror.window = windowOf(client, *mirror.program);
    return mirror;
}

std::uint64_t MirrorBench::displayedFrames(Window window, double seconds) const {
    const e2e::XClient watcher(desktop.displayName());
    DamageWatch watch(watcher.xcb(), window);
    const auto deadline = SteadyClock::now() + std::chrono::milliseconds(std::lround(seconds * 1000));
    std::uint64_t frames = 0;
    while (watch.next(deadline)) {
        ++frames;
    }
    return frames;
}

Latencies MirrorBench::latencies(Window mirror, double scale, int changes) const {
    // The middle of one of the source's cells, whose colour every content changes with high probability.
    constexpr int cellSide = 20;
    constexpr int sourceX = 31 * cellSide + cellSide / 2;
    constexpr int sourceY = 17 * cellSide + cellSide / 2;
    const int mirrorX = static_cast<int>(sourceX * scale);
    const int mirrorY = static_cast<int>(sourceY * scale);
    const e2e::XClient sourceEyes(desktop.displayName());
    const e2e::XClient mirrorEyes(desktop.displayName());
    DamageWatch sourceWatch(sourceEyes.xcb(), source);
    DamageWatch mirrorWatch(mirrorEyes.xcb(), mirror);

    Latencies result;
    for (int change = 0; change < changes; ++change) {
        // Uneven pauses, so that the changes fall anywhere between a mirror's ticks.
        poll(nullptr, 0, 40 + (change * 37) % 50);
        const auto before = pixel(sourceEyes, source, sourceX, sourceY);
        client.sendMessage(source, "_SAMPLE_SHOW", {static_cast<std::uint32_t>(1000 + change)});
        const auto deadline = SteadyClock::now() + std::chrono::milliseconds(500);
        // The last drawing before the pixel was seen to be new is the one that made it new. A content that happens
        // to have the same colour there is passed over.
        auto changed = SteadyClock::now();
        auto wanted = before;
        while (wanted == before && sourceWatch.next(deadline)) {
            changed = SteadyClock::now();
            wanted = pixel(sourceEyes, source, sourceX, sourceY);
        }
        if (wanted == before) {
            continue;
        }
        while (pixel(mirrorEyes, mirror, mirrorX, mirrorY) != wanted && SteadyClock::now() < deadline) {
            (void)mirrorWatch.next(std::min(deadline, SteadyClock::now() + std::chrono::milliseconds(50)));
        }
        result.push_back(1000 * secondsSince(changed));
    }
    std::sort(result.begin(), result.end());
    return result;
}

} // namespace quillon::benchmarks
