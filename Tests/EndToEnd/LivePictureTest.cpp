// What a panel shows is what the real window shows.

#include "EndToEndTest.h"

#include <fstream>

namespace quillon::e2e {

namespace {

/// A program and a way to change what its covered window shows.
struct PinnedProgram {
    std::string name;
    /// `scratch` is a file of the test's own, which exists.
    std::function<Command(const std::string& scratch)> command;
    std::function<void(const XClient&, Window, const std::string& scratch)> change;
};

void PrintTo(const PinnedProgram& program, std::ostream* stream) {
    *stream << program.name;
}

void appendLine(const std::string& file) {
    std::ofstream(file, std::ios::app) << "another line\n";
}

/// The key "a" on the evdev layout, which X servers for tests use.
constexpr std::uint8_t letterKey = 38;

const std::vector<PinnedProgram>& programs() {
    static const std::vector<PinnedProgram> list{
        {"Xterm",
         [](const std::string& scratch) -> Command {
             return {"xterm", "-e", "tail", "-f", scratch};
         },
         [](const XClient&, Window, const std::string& scratch) { appendLine(scratch); }},
        {"Gtk", [](const std::string&) -> Command { return {"gtk3-demo"}; },
         [](const XClient& client, Window window, const std::string&) {
             // A row of the list of demos.
             client.postClick(window, 80, 200);
         }},
        {"Qt",
         [](const std::string& scratch) -> Command {
             return {"featherpad", "--standalone", scratch};
         },
         [](const XClient& client, Window window, const std::string&) { client.postKey(window, letterKey); }},
    };
    return list;
}

class LivePictureOf : public EndToEndTest, public testing::WithParamInterface<PinnedProgram> {};

TEST_P(LivePictureOf, IsThatOfTheRealWindow) {
    const auto scratch = (desktop.directory() / "scratch.txt").string();
    appendLine(scratch);
    const auto program = startProgram(GetParam().command(scratch));
    const auto cover = coverEverything();
    quillon.start();

    const auto panel = pinAndShow(program.window);
    ASSERT_TRUE(shows(panel, program.window));
    keepPicture("live-" + GetParam().name);

    // A program that is still starting may overlook the first attempts.
    const auto before = client.windowPicture(program.window);
    const auto hasChanged = [&] { return client.windowPicture(program.window) != before; };
    ASSERT_TRUE(client.waitUntil([&] {
        GetParam().change(client, program.window, scratch);
        return client.waitUntil(hasChanged, Milliseconds(500));
    }));
    EXPECT_TRUE(shows(panel, program.window));

    client.moveResize(program.window, {200, 150, 700, 500});
    ASSERT_TRUE(client.waitUntil([&] {
        const auto picture = client.windowPicture(program.window);
        return picture && picture->width == 700;
    }));
    EXPECT_TRUE(liesAt(panel, client.place(program.window).value_or(Rect())));
    EXPECT_TRUE(shows(panel, program.window));
    EXPECT_EQ(client.activeWindow(), cover.window());
}

INSTANTIATE_TEST_SUITE_P(Programs, LivePictureOf, testing::ValuesIn(programs()),
                         [](const auto& program) { return program.param.name; });

class LivePictureOn : public EndToEndTest, public testing::WithParamInterface<WindowManager> {
protected:
    LivePictureOn() : EndToEndTest({.windowManager = GetParam()}) {}
};

TEST_P(LivePictureOn, FollowsEveryChangeOfTheWindow) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    keepPicture(std::string("live-sample-") + (GetParam() == WindowManager::xfwm4 ? "xfwm4" : "openbox"));
    for (std::uint32_t content = 2; content < 6; ++content) {
        showContent(source.window(), content);
        EXPECT_TRUE(shows(panel, source.window())) << "content " << content;
    }
    EXPECT_EQ(client.activeWindow(), cover.window());
}

TEST_P(LivePictureOn, FollowsARegionThatChangesFast) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    play(source.window(), 60, true);
    ASSERT_TRUE(client.waitUntil([&] { return shownContent(source.window()) > 60; }));
    play(source.window(), 0);
    EXPECT_TRUE(shows(panel, source.window()));
}

TEST_P(LivePictureOn, FollowsAWholeWindowThatChangesFast) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    play(source.window(), 60);
    ASSERT_TRUE(client.waitUntil([&] { return shownContent(source.window()) > 60; }));
    play(source.window(), 0);
    EXPECT_TRUE(shows(panel, source.window()));
}

INSTANTIATE_TEST_SUITE_P(Desktops, LivePictureOn, testing::Values(WindowManager::openbox, WindowManager::xfwm4));

class LivePicture : public EndToEndTest {};

TEST_F(LivePicture, ShowsEachOfTwoPrograms) {
    const auto first = startSample({"--place", "60,80,500,400"});
    const auto second = startSample({"--place", "700,500,400,300"});
    const auto cover = coverEverything();
    quillon.start();
    const auto firstPanel = pinAndShow(first.window());
    const auto secondPanel = pinAndShow(second.window());
    showContent(first.window(), 2);
    showContent(second.window(), 3);
    EXPECT_TRUE(shows(firstPanel, first.window()));
    EXPECT_TRUE(shows(secondPanel, second.window()));
}

TEST_F(LivePicture, ShowsEachOfTwoWindowsOfOneProgram) {
    const auto source = startSample({"--windows", "2", "--place", "60,80,500,400"});
    client.moveResize(source.windows[1], {700, 500, 400, 300});
    const auto cover = coverEverything();
    quillon.start();
    const auto firstPanel = pinAndShow(source.windows[0]);
    const auto secondPanel = pinAndShow(source.windows[1]);
    EXPECT_TRUE(shows(firstPanel, source.windows[0]));
    EXPECT_TRUE(shows(secondPanel, source.windows[1]));

    activate(source.windows[1]);
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(cover.window(), firstPanel); }));
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(cover.window(), secondPanel); }));
    activate(cover.window());
    showContent(source.windows[0], 2);
    showContent(source.windows[1], 3);
    EXPECT_TRUE(shows(firstPanel, source.windows[0]));
    EXPECT_TRUE(shows(secondPanel, source.windows[1]));
}

TEST_F(LivePicture, ShowsAWindowWithAnAlphaChannel) {
    const auto source = startSample({"--depth", "32"});
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    // Without a compositor nothing shines through: the colours are shown as the program wrote them.
    ASSERT_TRUE(shows(panel, source.window()));
    showContent(source.window(), 2);
    EXPECT_TRUE(shows(panel, source.window()));
}

TEST_F(LivePicture, OfAHungProgramStaysAndQuillonAnswers) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    const auto before = seenAt(panel);

    source.program->send(SIGSTOP);
    EXPECT_EQ(quillon.pinned(), source.windows);
    EXPECT_TRUE(client.holdsFor([&] { return difference(before, seenAt(panel), 0).empty(); }, Milliseconds(2500)));
    EXPECT_EQ(quillon.pinned(), source.windows);

    source.program->send(SIGCONT);
    showContent(source.window(), 2);
    EXPECT_TRUE(shows(panel, source.window()));
}

} // namespace

} // namespace quillon::e2e
