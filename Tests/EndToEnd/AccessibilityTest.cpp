// Scrolling a covered window over its panel, through what its program tells on the accessibility bus.

#include "EndToEndTest.h"

#include <fstream>
#include <tuple>

namespace quillon::e2e {

namespace {

constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;
/// More than lead to the end from where a turn or two have led.
constexpr int turns = 5;
constexpr Rect sourcePlace{200, 150, 700, 500};
/// Of the window: inside an area with more content than fits, in all the programs.
constexpr int insideX = 100;
constexpr int insideY = 250;

struct Toolkit {
    const char* name;
    Command command;
};
void PrintTo(const Toolkit& toolkit, std::ostream* stream) {
    *stream << toolkit.name;
}

class ScrollingThroughAccessibility : public EndToEndTest, public testing::WithParamInterface<Toolkit> {
protected:
    /// Quillon is there before the bus.
    void SetUp() override {
        quillon.start({}, {"--input-routing=scroll"});
        for (const auto* key : {"forwardEvents", "debugLogging"}) {
            ASSERT_EQ(quillon.command({"defaults", "write", key, "true"}).status, 0);
        }
    }

    void pinCovered() {
        auto command = GetParam().command;
        if (command.front() == "featherpad") {
            command.push_back(makeLongText());
        }
        source = startProgram(command);
        client.moveResize(source->window, sourcePlace);
        ASSERT_TRUE(client.waitUntil([&] { return client.place(source->window) == sourcePlace; }));
        // Some programs ask for the focus a moment after they show their window; it goes to the cover for good.
        ASSERT_TRUE(client.waitUntil([&] { return client.activeWindow() == source->window; }));
        std::ignore = settledPicture();
        cover = coverEverything();
        ASSERT_TRUE(client.waitUntil([&] {
            return client.holdsFor([&] { return client.activeWindow() == cover->window(); }, Milliseconds(300));
        }));
        panel = pinAndShow(source->window);
        ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover->window()); }));
        const auto place = client.place(panel).value_or(Rect());
        client.movePointer(place.x + insideX, place.y + insideY);
    }
    [[nodiscard]] std::string makeLongText() const {
        const auto path = desktop.directory() / "text.txt";
        std::ofstream file(path);
        for (int line = 1; line <= 500; ++line) {
            file << line << '\n';
        }
        return path.string();
    }
    void turnWheel(std::uint8_t direction, int steps) {
        for (int step = 0; step < steps; ++step) {
            client.pressButton(direction);
            client.releaseButton(direction);
        }
    }
    /// The part of the window around the pointer: elsewhere a program may have more to show by and by.
    [[nodiscard]] Picture seenPart() const {
        constexpr Rect part{0, 120, 180, 250};
        const auto whole = client.windowPicture(source->window).value_or(Picture());
        Picture result{part.width, part.height, {}};
        for (int y = part.y; y < part.y + part.height && y < whole.height; ++y) {
            for (int x = part.x; x < part.x + part.width && x < whole.width; ++x) {
                result.pixels.push_back(whole.at(x, y));
            }
        }
        return result;
    }
    /// What is seen once it does not change any more.
    [[nodiscard]] Picture settledPicture() const {
        Picture settled;
        EXPECT_TRUE(client.waitUntil([&] {
            settled = seenPart();
            return client.holdsFor([&] { return seenPart() == settled; }, Milliseconds(300));
        }));
        return settled;
    }
    /// Turns the wheel until Quillon knows what it moves: a program may need some seconds before it tells what is in
    /// its window.
    [[nodiscard]] bool turnsUntilResolved(std::uint8_t direction) {
        return client.waitUntil([&] {
            turnWheel(direction, 1);
            return client.waitUntil([&] { return logs("axscroll: resolved"); }, Milliseconds(500));
        });
    }
    [[nodiscard]] bool logs(const std::string& text) const { return quillon.log().find(text) != std::string::npos; }
    void expectNothingElseHappened() {
        EXPECT_EQ(client.activeWindow(), cover->window());
        EXPECT_TRUE(client.isAbove(cover->window(), source->window));
    }

    std::optional<Started> source;
    std::optional<Sample> cover;
    Window panel = 0;
};

TEST_P(ScrollingThroughAccessibility, TheWheelMovesTheCoveredWindowsScrollBar) {
    desktop.startAccessibilityBus();
    pinCovered();
    ASSERT_TRUE(turnsUntilResolved(wheelDown)) << quillon.log();
    turnWheel(wheelUp, turns);
    const auto top = settledPicture();
    turnWheel(wheelDown, 1);
    EXPECT_TRUE(client.waitUntil([&] { return seenPart() != top; }));
    EXPECT_TRUE(shows(panel, source->window));
    turnWheel(wheelUp, 1);
    EXPECT_TRUE(client.waitUntil([&] { return seenPart() == top; }));
    expectNothingElseHappened();
}

INSTANTIATE_TEST_SUITE_P(Toolkits, ScrollingThroughAccessibility,
                         testing::Values(Toolkit{"GTK3", {"gtk3-demo"}}, Toolkit{"GTK4", {"gtk4-demo"}},
                                         Toolkit{"Qt5", {"featherpad", "--standalone"}}),
                         [](const auto& test) { return std::string(test.param.name); });

class ScrollingWithoutAccessibility : public ScrollingThroughAccessibility {};

TEST_P(ScrollingWithoutAccessibility, TheWheelDoesNothing) {
    pinCovered();
    const auto before = settledPicture();
    turnWheel(wheelDown, turns);
    EXPECT_TRUE(client.waitUntil([&] { return logs("axscroll: no settable scroll bar"); })) << quillon.log();
    EXPECT_TRUE(client.holdsFor([&] { return seenPart() == before; }, Milliseconds(300)));
    expectNothingElseHappened();
}

INSTANTIATE_TEST_SUITE_P(Toolkits, ScrollingWithoutAccessibility, testing::Values(Toolkit{"GTK3", {"gtk3-demo"}}),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace

} // namespace quillon::e2e
