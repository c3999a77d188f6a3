// What a live copy of a window costs and how late it is, Quillon's beside a GStreamer pipeline's, in one run on one
// desktop. Argument: seconds of each measurement (default 10).

#include "MirrorBench.h"
#include "ProcessCost.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace quillon::benchmarks {

namespace {

/// Nothing at first: what wakes Quillon then, its timers with their questions to the server, is taken off later.
const std::array<Activity, 3> activities{{
    {"nothing changes", 0, false},
    {"whole window changes", 30, false},
    {"200x100 changes", 30, true},
}};

struct Size {
    const char* name;
    double scale;
};
constexpr std::array<Size, 3> sizes{{{"100 %", 1}, {"50 %", 0.5}, {"150 %", 1.5}}};

std::vector<pid_t> withDescendants(pid_t process) {
    auto processes = descendants(process);
    processes.push_back(process);
    return processes;
}

void printCosts(MirrorBench& bench, double seconds) {
    std::printf("\nCost: percent of one core for source, X server and mirror, less the same without a mirror;\n"
                "%dx%d source, 30 frames a second, %.0f s each\n\n",
                MirrorBench::sourceWidth, MirrorBench::sourceHeight, seconds);
    std::printf("%-22s %-6s %9s %9s %10s %8s %12s\n", "Case", "Scale", "alone", "Quillon", "GStreamer", "ratio",
                "wakeups/frame");
    double atRest = 0;
    for (const auto& activity : activities) {
        for (const auto& size : sizes) {
            bench.play(activity);
            const double alone = bench.cost({}, seconds);

            bench.startQuillon(size.scale, 30);
            bench.wait(1);
            const auto quillonPID = bench.quillon().pid();
            const double quillon = bench.cost({quillonPID}, seconds) - alone;
            const auto wakeupsBefore = wakeups(quillonPID);
            const auto frames = bench.displayedFrames(bench.panel(), seconds);
            const auto woken = wakeups(quillonPID) - wakeupsBefore;
            bench.stopQuillon();

            double pipelineCost = 0;
            {
                const auto pipeline = bench.startPipeline(size.scale, 30);
                bench.wait(1);
                pipelineCost = bench.cost(withDescendants(pipeline.program->pid()), seconds) - alone;
            }
            std::printf("%-22s %-6s %9.2f %9.2f %10.2f %8.2f ", activity.name.c_str(), size.name, alone, quillon,
                        pipelineCost, quillon / pipelineCost);
            if (activity.contentsPerSecond > 0) {
                const double forFrames = static_cast<double>(woken) - atRest * seconds;
                std::printf("%12.2f\n", forFrames / static_cast<double>(frames));
            } else {
                atRest = static_cast<double>(woken) / seconds;
                std::printf("%8.1f in 1 s\n", atRest);
            }
            std::fflush(stdout);
        }
    }
}

void printLatency(const std::string& name, const Latencies& latencies) {
    std::printf("%-22s %8.2f %8.2f %8.2f %6zu\n", name.c_str(), percentile(latencies, 0.5), percentile(latencies, 0.95),
                percentile(latencies, 0.99), latencies.size());
    std::fflush(stdout);
}

void printLatencies(MirrorBench& bench) {
    constexpr int changes = 400;
    constexpr int framesPerSecond = 60;
    std::printf("\nLatency: from a change of the source to the same pixel in the mirror, cap %d a second, ms\n\n",
                framesPerSecond);
    std::printf("%-22s %8s %8s %8s %6s\n", "Mirror", "median", "p95", "p99", "n");
    bench.play({"", 0, false});
    for (const auto& [name, scale] : {sizes[0], sizes[2]}) {
        bench.startQuillon(scale, framesPerSecond);
        printLatency(std::string("Quillon ") + name, bench.latencies(bench.panel(), scale, changes));
        bench.stopQuillon();
        const auto pipeline = bench.startPipeline(scale, framesPerSecond);
        bench.wait(1);
        printLatency(std::string("GStreamer ") + name, bench.latencies(pipeline.window, scale, changes));
    }
}

void printMemory(MirrorBench& bench) {
    constexpr double sourceKilobytes = MirrorBench::sourceWidth * MirrorBench::sourceHeight * 4 / 1024.0;
    bench.play({"", 30, false});
    bench.wait(1);
    const auto before = residentKilobytes(bench.server());
    bench.startQuillon(1, 30);
    bench.wait(3);
    const auto after = residentKilobytes(bench.server());
    std::printf("\nMemory: the X server grew by %.2f x width x height x 4 of the source; Quillon holds %.1f MB\n",
                (static_cast<double>(after) - static_cast<double>(before)) / sourceKilobytes,
                static_cast<double>(residentKilobytes(bench.quillon().pid())) / 1024);
    bench.stopQuillon();
}

} // namespace

} // namespace quillon::benchmarks

int main(int count, char** arguments) {
    using namespace quillon::benchmarks;
    const double seconds = count > 1 ? std::atof(arguments[1]) : 10;
    MirrorBench bench;
    printMemory(bench);
    printLatencies(bench);
    printCosts(bench, seconds);
    return 0;
}
