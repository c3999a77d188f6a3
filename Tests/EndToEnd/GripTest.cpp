// Resizing a panel with the pointer.

#include "EndToEndTest.h"

namespace quillon::e2e {

namespace {

/// In the middle of the grip, from the panel's corner, in points.
constexpr int gripMiddle = 10;

class Grip : public EndToEndTest {
protected:
    explicit Grip(const DesktopOptions& options = {}) : EndToEndTest(options) {}

    /// Drags the panel's bottom right corner by that many pixels, in steps, as a hand does.
    void drag(Window panel, int x, int y) {
        constexpr int steps = 8;
        const auto place = client.place(panel).value_or(Rect());
        const int startX = place.x + place.width - gripMiddle;
        const int startY = place.y + place.height - gripMiddle;
        client.movePointer(startX, startY);
        client.pressButton(XCB_BUTTON_INDEX_1);
        for (int step = 1; step <= steps; ++step) {
            client.movePointer(startX + x * step / steps, startY + y * step / steps);
        }
        client.releaseButton(XCB_BUTTON_INDEX_1);
    }

    /// Peak signal-to-noise ratio of the panel against the window's picture, scaled by area.
    double likeness(Window panel, Window source) {
        const auto picture = client.windowPicture(source);
        const auto place = client.place(panel);
        if (!picture || !place) {
            return 0;
        }
        return signalToNoise(scaledByArea(*picture, place->width, place->height), client.screenPicture(*place),
                             gripPixels);
    }
};

TEST_F(Grip, MakesThePanelLargerAndSmallerFromItsCorner) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto start = client.place(panel).value_or(Rect());
    drag(panel, 160, 120);
    EXPECT_TRUE(liesAt(panel, {start.x, start.y, start.width + 160, start.height + 120}));
    drag(panel, -300, -200);
    EXPECT_TRUE(liesAt(panel, {start.x, start.y, start.width - 140, start.height - 80}));
    EXPECT_EQ(client.activeWindow(), cover.window());
}

TEST_F(Grip, StopsAtTheSmallestSize) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto start = client.place(panel).value_or(Rect());
    drag(panel, -600, -450);
    EXPECT_TRUE(liesAt(panel, {start.x, start.y, 320, 220}));
}

TEST_F(Grip, GivesThePanelASizeThatItKeeps) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto start = client.place(panel).value_or(Rect());
    drag(panel, -200, -150);
    ASSERT_TRUE(liesAt(panel, {start.x, start.y, start.width - 200, start.height - 150}));
    client.moveResize(source.window(), {500, 400, 700, 600});
    EXPECT_TRUE(liesAt(panel, {500, 400, start.width - 200, start.height - 150}, frameSyncBound));

    activate(source.window());
    ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(source.window(), panel); }));
    activate(cover.window());
    EXPECT_TRUE(liesAt(panel, {500, 400, start.width - 200, start.height - 150}));
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover.window()); }));
}

/// A change of size by the pointer, and how like the picture scaled by area the panel must be at least.
struct Scaling {
    std::string name;
    int x;
    int y;
    double decibels;
};

void PrintTo(const Scaling& scaling, std::ostream* stream) {
    *stream << scaling.name;
}

class ScaledPicture : public Grip, public testing::WithParamInterface<Scaling> {};

TEST_P(ScaledPicture, LooksLikeTheRealWindow) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto start = client.place(panel).value_or(Rect());
    drag(panel, GetParam().x, GetParam().y);
    ASSERT_TRUE(liesAt(panel, {start.x, start.y, start.width + GetParam().x, start.height + GetParam().y}));
    const auto looksAlike = [&] { return likeness(panel, source.window()) >= GetParam().decibels; };
    EXPECT_TRUE(client.waitUntil(looksAlike)) << likeness(panel, source.window()) << " dB";
    showContent(source.window(), 2);
    EXPECT_TRUE(client.waitUntil(looksAlike)) << likeness(panel, source.window()) << " dB";
    play(source.window(), 60, true);
    ASSERT_TRUE(client.waitUntil([&] { return shownContent(source.window()) > 30; }));
    play(source.window(), 0);
    EXPECT_TRUE(client.waitUntil(looksAlike)) << likeness(panel, source.window()) << " dB";
    RecordProperty("decibels", std::to_string(likeness(panel, source.window())));
    keepPicture("scaled-" + GetParam().name);
}

TEST_P(ScaledPicture, ShowsWhatChangesBesidesAnAreaThatKeepsChanging) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    drag(panel, GetParam().x, GetParam().y);
    const auto looksAlike = [&] { return likeness(panel, source.window()) >= GetParam().decibels; };
    for (std::uint32_t content = 1000; content < 4000; content += 1000) {
        // Long enough for the area to be expected. Its contents count from one after each change of the whole.
        play(source.window(), 30, true);
        ASSERT_TRUE(client.waitUntil([&] { return shownContent(source.window()) > 20; }));
        client.sendMessage(source.window(), "_SAMPLE_SHOW", {content});
        ASSERT_TRUE(client.waitUntil([&] {
            const auto shown = shownContent(source.window());
            return shown > 2 && shown < 15;
        }));
        play(source.window(), 0);
        EXPECT_TRUE(client.waitUntil(looksAlike)) << likeness(panel, source.window()) << " dB";
    }
}

// Exactly half is the mean of four pixels each. Otherwise bilinear filtering and the mean by area differ most along
// the sample's lines of one pixel.
INSTANTIATE_TEST_SUITE_P(Sizes, ScaledPicture,
                         testing::Values(Scaling{"Half", -320, -240, 45}, Scaling{"FiveEighths", -240, -180, 29},
                                         Scaling{"OneAndAHalf", 320, 240, 27}, Scaling{"Uneven", -117, 93, 34}),
                         [](const auto& scaling) { return scaling.param.name; });

class GripAtDoubleDensity : public Grip {
protected:
    GripAtDoubleDensity() : Grip({.dpi = 192}) { gripPixels = 2 * gripSide; }
};

TEST_F(GripAtDoubleDensity, IsTwiceAsLarge) {
    const auto source = startSample({"--place", "100,100,900,700"});
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    keepPicture("double-density");

    // The badge darkens the picture near its middle, which a badge of single size would not reach.
    const auto picture = client.windowPicture(source.window());
    ASSERT_TRUE(picture);
    const auto seen = seenAt(panel);
    const int x = seen.width - 2 * gripSide + 10;
    const int y = seen.height - 2 * gripSide + 20;
    EXPECT_NE(picture->at(x, y) & 0xffffff, seen.at(x, y) & 0xffffff);
}

TEST_F(GripAtDoubleDensity, StopsAtTheSmallestSizeInPoints) {
    const auto source = startSample({"--place", "100,100,900,700"});
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto start = client.place(panel).value_or(Rect());
    // Outside of the hot zone of single density, inside that of double density.
    constexpr int fromCorner = 50;
    const int startX = start.x + start.width - fromCorner;
    const int startY = start.y + start.height - fromCorner;
    client.movePointer(startX, startY);
    client.pressButton(XCB_BUTTON_INDEX_1);
    client.movePointer(startX - 600, startY - 500);
    client.releaseButton(XCB_BUTTON_INDEX_1);
    EXPECT_TRUE(liesAt(panel, {start.x, start.y, 640, 440}));
}

} // namespace

} // namespace quillon::e2e
