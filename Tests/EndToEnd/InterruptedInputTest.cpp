// Something happens to the real window while the user holds a button down on its copy: one event is lost at most, no
// button stays down, and the next click works.

#include "EndToEndTest.h"

#include <fstream>

namespace quillon::e2e {

namespace {

using Lines = std::vector<std::string>;

constexpr std::uint8_t left = 1;
constexpr std::uint8_t wheelDown = 5;
constexpr Rect sourcePlace{200, 150, 500, 400};
/// Of the window, in the part that takes input.
constexpr int pressX = 240;
constexpr int pressY = 230;

class InterruptedInput : public EndToEndTest {
protected:
    void SetUp() override {
        startSource();
        quillon.start();
        panel = pinAndShow(source.window());
        ASSERT_TRUE(shows(panel, source.window()));
        press();
        ASSERT_TRUE(receives({"press"}));
    }
    void TearDown() override {
        EXPECT_EQ(client.activeWindow(), cover->window());
        EXPECT_EQ(quillon.program().errors(), "");
        EndToEndTest::TearDown();
    }

    /// Covered.
    void startSource() {
        source = startSample({"--input", inputFile().string(), "--part", partPlace});
        place(sourcePlace);
        if (!cover) {
            cover = coverEverything();
        }
        activate(cover->window());
    }
    void press() {
        const auto place = client.place(panel).value_or(Rect());
        client.movePointer(place.x + pressX, place.y + pressY);
        client.pressButton(left);
    }
    void release() { client.releaseButton(left); }
    void moveBy(int x, int y) {
        const auto pointer = client.pointer();
        client.movePointer(pointer.x + x, pointer.y + y);
    }
    void place(const Rect& wanted) {
        client.moveResize(source.window(), wanted);
        ASSERT_TRUE(client.waitUntil([&] { return client.place(source.window()) == wanted; }));
    }

    [[nodiscard]] std::filesystem::path inputFile() const { return desktop.directory() / "input"; }
    /// What the part got beside the pointer's coming and going: "press 1 at 40,30 state 0x0".
    [[nodiscard]] Lines received() const {
        Lines lines;
        std::ifstream file(inputFile());
        const std::string receiver = "part ";
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with(receiver) && line.find("enter") == std::string::npos &&
                line.find("leave") == std::string::npos) {
                lines.push_back(line.substr(receiver.size()));
            }
        }
        return lines;
    }
    /// Succeeds once the lines begin like that, and there are no more of them.
    [[nodiscard]] testing::AssertionResult receives(const Lines& beginnings) const {
        Lines lines;
        const bool same = client.waitUntil([&] {
            lines = received();
            return std::equal(lines.begin(), lines.end(), beginnings.begin(), beginnings.end(),
                              [](const auto& line, const auto& beginning) { return line.starts_with(beginning); });
        });
        auto result = same ? testing::AssertionSuccess() : testing::AssertionFailure() << "received:";
        for (const auto& line : lines) {
            result << "\n" << line;
        }
        return result;
    }
    /// A further click comes whole.
    [[nodiscard]] testing::AssertionResult clickWorks() {
        const auto before = received().size();
        press();
        release();
        const auto isWhole = [&] {
            const auto lines = received();
            return lines.size() == before + 2 && lines[before].starts_with("press 1 at 140,130 state 0x0") &&
                   lines[before + 1].starts_with("release 1 at 140,130 state 0x100");
        };
        return client.waitUntil(isWhole) ? testing::AssertionSuccess() : testing::AssertionFailure();
    }

    /// Most of the window, so that its lower right stays for the grip.
    static constexpr const char* partPlace = "100,100,300,200";
    Sample source;
    std::optional<Sample> cover;
    Window panel = 0;
};

TEST_F(InterruptedInput, TheWindowMoves) {
    place({260, 200, sourcePlace.width, sourcePlace.height});
    ASSERT_TRUE(liesAt(panel, {260, 200, sourcePlace.width, sourcePlace.height}, frameSyncBound));
    release();
    // The pointer did not move, the window did.
    EXPECT_TRUE(receives({"press 1 at 140,130", "release 1 at 80,80"}));
    EXPECT_TRUE(clickWorks());
}

TEST_F(InterruptedInput, TheWindowChangesItsSize) {
    place({200, 150, 800, 700});
    ASSERT_TRUE(liesAt(panel, {200, 150, 800, 700}, frameSyncBound));
    release();
    EXPECT_TRUE(receives({"press 1 at 140,130", "release 1 at 140,130"}));
    EXPECT_TRUE(clickWorks());
}

/// The panel has not followed yet: the place counts relative to the window's new size.
TEST_F(InterruptedInput, TheWindowChangesItsSizeAndTheReleaseFollowsAtOnce) {
    place({200, 150, 800, 700});
    release();
    ASSERT_TRUE(client.waitUntil([&] { return received().size() == 2; }));
    EXPECT_TRUE(received()[1].starts_with("release 1"));
    ASSERT_TRUE(liesAt(panel, {200, 150, 800, 700}, frameSyncBound));
    EXPECT_TRUE(clickWorks());
}

TEST_F(InterruptedInput, TheWindowIsMinimised) {
    client.minimise(source.window());
    ASSERT_TRUE(client.waitUntil([&] { return !client.isViewable(source.window()); }));
    release();
    EXPECT_TRUE(receives({"press 1 at 140,130", "release 1 at 140,130"}));
    EXPECT_FALSE(client.isViewable(source.window()));
}

TEST_F(InterruptedInput, TheProgramHangs) {
    source.program->send(SIGSTOP);
    moveBy(20, 10);
    release();
    client.pressButton(wheelDown);
    client.releaseButton(wheelDown);
    EXPECT_EQ(quillon.pinned(), source.windows);
    EXPECT_EQ(received().size(), 1U);
    source.program->send(SIGCONT);
    EXPECT_TRUE(
        receives({"press 1 at 140,130", "move at 160,140", "release 1 at 160,140", "press 5 at", "release 5 at"}));
    EXPECT_TRUE(clickWorks());
}

TEST_F(InterruptedInput, TheProgramEndsAndAnotherWindowTakesClicks) {
    source.program->send(SIGKILL);
    ASSERT_TRUE(isGone(panel, pruningBound));
    release();
    EXPECT_TRUE(quillon.pinned().empty());
    // The button is up for Quillon, too: a new press is a press of its own.
    std::filesystem::remove(inputFile());
    startSource();
    panel = pinAndShow(source.window());
    EXPECT_TRUE(clickWorks());
}

TEST_F(InterruptedInput, TheWindowCloses) {
    client.closeWindow(source.window());
    ASSERT_TRUE(client.waitUntil([&] { return !client.place(source.window()); }));
    moveBy(20, 10);
    release();
    EXPECT_TRUE(isGone(panel, pruningBound));
    EXPECT_TRUE(quillon.pinned().empty());
    EXPECT_TRUE(receives({"press 1 at 140,130"}));
}

} // namespace

} // namespace quillon::e2e
