#pragma once

#include "Latencies.h"

#include "Desktop.h"
#include "QuillonProgram.h"
#include "XClient.h"

#include <memory>
#include <string>
#include <vector>

namespace quillon::benchmarks {

/// What the source does while it is mirrored.
struct Activity {
    std::string name;
    std::uint32_t contentsPerSecond = 0;
    /// Only 200x100 pixels change, not the whole window.
    bool onlyRegion = false;
};

/// A mirror that runs: its processes and the window that shows the picture.
struct RunningMirror {
    std::unique_ptr<e2e::Program> program;
    e2e::Window window = 0;
};

/// A source window of 1280x800 on a desktop of its own, and the two mirrors: Quillon, and a GStreamer pipeline that
/// reads the window 30 (or more) times a second and shows it in a window.
class MirrorBench {
public:
    MirrorBench();

    void play(const Activity& activity) const;
    /// Processor time per second of the source, the X server and, if any, the mirror, in percent of one core.
    [[nodiscard]] double cost(const std::vector<pid_t>& mirror, double seconds) const;

    /// Starts Quillon, pins the source, has another window in front and resizes the panel with its grip.
    void startQuillon(double scale, double framesPerSecond);
    void stopQuillon();
    [[nodiscard]] e2e::Program& quillon() const { return quillonProgram.program(); }
    [[nodiscard]] e2e::Window panel() const { return panelWindow; }

    [[nodiscard]] RunningMirror startPipeline(double scale, int framesPerSecond) const;

    /// Frames that the window shows during the time.
    [[nodiscard]] std::uint64_t displayedFrames(e2e::Window window, double seconds) const;
    /// Times from a change of the source to the same pixel in the mirror.
    [[nodiscard]] Latencies latencies(e2e::Window mirror, double scale, int changes) const;

    [[nodiscard]] pid_t server() const { return serverProcess; }
    /// Lets the time pass.
    void wait(double seconds) const;

    static constexpr int sourceWidth = 1280;
    static constexpr int sourceHeight = 800;

private:
    void resizePanel(double scale) const;

    e2e::Desktop desktop;
    e2e::XClient client;
    e2e::QuillonProgram quillonProgram{desktop};
    std::unique_ptr<e2e::Program> sourceProgram;
    e2e::Window source = 0;
    std::unique_ptr<e2e::Program> otherProgram;
    e2e::Window other = 0;
    e2e::Window panelWindow = 0;
    pid_t serverProcess = 0;
};

} // namespace quillon::benchmarks
