#include "EndToEndTest.h"

#include <algorithm>

namespace quillon::e2e {

EndToEndTest::EndToEndTest(const DesktopOptions& options)
    : desktop(options), client(desktop.displayName()), focus(desktop.displayName()), quillon(desktop) {}

void EndToEndTest::TearDown() {
    if (givesFocus) {
        return;
    }
    const auto& own = quillon.startedProcesses();
    for (const auto& change : focus.changes()) {
        const bool isQuillon = change.owner && std::find(own.begin(), own.end(), *change.owner) != own.end();
        EXPECT_FALSE(isQuillon) << (change.isKeyboardFocus ? "The keyboard focus" : "The active window")
                                << " went to Quillon's window " << change.window;
    }
}

Sample EndToEndTest::startSample(const std::vector<std::string>& arguments) {
    Command command{SAMPLE_WINDOW_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto option = std::find(arguments.begin(), arguments.end(), "--windows");
    const std::size_t count = option == arguments.end() ? 1 : std::stoul(*(option + 1));

    Sample sample{desktop.start(command), {}};
    const bool ready = client.waitUntil([&] {
        sample.windows = client.managedWindowsOf(sample.program->pid());
        return sample.windows.size() == count &&
               std::all_of(sample.windows.begin(), sample.windows.end(),
                           [&](Window window) { return shownContent(window) == 1 && client.isViewable(window); });
    });
    if (!ready) {
        throw std::runtime_error("the sample program did not start: " + sample.program->errors());
    }
    return sample;
}

Sample EndToEndTest::coverEverything() {
    auto cover = startSample({"--place", "20,40,1550,1130", "--title", "Cover"});
    // Unlike anything that a test shows in the window under it.
    constexpr std::uint32_t coverContent = 1000;
    showContent(cover.window(), coverContent);
    activate(cover.window());
    return cover;
}

EndToEndTest::Started EndToEndTest::startProgram(const Command& command) {
    Started started{desktop.start(command), 0};
    const bool ready = client.waitUntil([&] {
        const auto windows = client.managedWindowsOf(started.program->pid());
        if (windows.empty() || !client.isViewable(windows.front())) {
            return false;
        }
        started.window = windows.front();
        return true;
    });
    if (!ready) {
        throw std::runtime_error(command.front() + " did not show a window: " + started.program->errors());
    }
    return started;
}

void EndToEndTest::showContent(Window sampleWindow, std::uint32_t content) {
    client.sendMessage(sampleWindow, "_SAMPLE_SHOW", {content});
    ASSERT_TRUE(client.waitUntil([&] { return shownContent(sampleWindow) == content; }));
}

void EndToEndTest::play(Window sampleWindow, std::uint32_t contentsPerSecond, bool onlyRegion) {
    client.sendMessage(sampleWindow, "_SAMPLE_PLAY", {contentsPerSecond, onlyRegion ? 1U : 0U});
}

std::uint32_t EndToEndTest::shownContent(Window sampleWindow) const {
    const auto value = client.property(sampleWindow, "_SAMPLE_CONTENT");
    return value.empty() ? 0 : value.front();
}

std::string EndToEndTest::runOnDesktop(const Command& command) const {
    const auto outcome = run(command, desktop.environment());
    EXPECT_EQ(outcome.status, 0) << command.front() << ": " << outcome.errors;
    return outcome.output;
}

void EndToEndTest::activate(Window window) {
    client.activate(window);
    ASSERT_TRUE(client.waitUntil([&] { return client.activeWindow() == window; }));
}

Window EndToEndTest::pinAndShow(Window window) {
    const auto before = panels();
    const auto outcome = quillon.pin(window);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    Window shown = XCB_NONE;
    const bool appeared = client.waitUntil([&] {
        for (const auto panel : panels()) {
            if (std::find(before.begin(), before.end(), panel) == before.end()) {
                shown = panel;
            }
        }
        return shown != XCB_NONE;
    });
    if (!appeared) {
        throw std::runtime_error("no panel was shown for window " + std::to_string(window));
    }
    return shown;
}

testing::AssertionResult EndToEndTest::shows(Window panel, Window source, Milliseconds bound) {
    std::string problem;
    const bool same = client.waitUntil(
        [&] {
            const auto expected = client.windowPicture(source);
            const auto place = client.place(panel);
            if (!expected || !place) {
                problem = expected ? "the panel is gone" : "the window's picture cannot be read";
                return false;
            }
            problem = difference(*expected, client.screenPicture(*place), gripPixels);
            return problem.empty();
        },
        bound);
    return same ? testing::AssertionSuccess() : otherPicture("The panel shows another picture: " + problem);
}

testing::AssertionResult EndToEndTest::liesAt(Window panel, const Rect& place, Milliseconds bound) {
    std::optional<Rect> seen;
    const bool same = client.waitUntil(
        [&] {
            seen = client.place(panel);
            return seen == place;
        },
        bound);
    if (same) {
        return testing::AssertionSuccess();
    }
    if (!seen) {
        return testing::AssertionFailure() << "The panel is gone";
    }
    return testing::AssertionFailure() << "The panel lies at " << seen->x << "," << seen->y << " with " << seen->width
                                       << "x" << seen->height << ", expected " << place.x << "," << place.y << " with "
                                       << place.width << "x" << place.height;
}

testing::AssertionResult EndToEndTest::isGone(Window panel, Milliseconds bound) {
    const bool gone = client.waitUntil(
        [&] {
            const auto shown = panels();
            return std::find(shown.begin(), shown.end(), panel) == shown.end();
        },
        bound);
    return gone ? testing::AssertionSuccess() : testing::AssertionFailure() << "The panel is still there";
}

Picture EndToEndTest::seenAt(Window window) const {
    const auto place = client.place(window);
    return place ? client.screenPicture(*place) : Picture();
}

testing::AssertionResult EndToEndTest::screenShows(const Rect& place, const Picture& expected) {
    std::string problem;
    const bool same = client.waitUntil([&] {
        problem = difference(expected, client.screenPicture(place), 0);
        return problem.empty();
    });
    return same ? testing::AssertionSuccess() : otherPicture("The screen shows another picture: " + problem);
}

testing::AssertionResult EndToEndTest::otherPicture(const std::string& problem) const {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    auto name = std::string("failed-") + test->test_suite_name() + "-" + test->name();
    std::replace(name.begin(), name.end(), '/', '-');
    keepPicture(name);
    return testing::AssertionFailure() << problem;
}

void EndToEndTest::keepPicture(const std::string& name) const {
    if (const auto* directory = std::getenv("QUILLON_TEST_PICTURES")) {
        save(client.wholeScreen(), std::filesystem::path(directory) / (name + ".ppm"));
    }
}

} // namespace quillon::e2e
