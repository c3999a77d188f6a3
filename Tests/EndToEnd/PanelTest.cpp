// Where a panel lies, and when it is in front, behind or gone.

#include "EndToEndTest.h"

namespace quillon::e2e {

namespace {

class Panel : public EndToEndTest, public testing::WithParamInterface<WindowManager> {
protected:
    Panel() : EndToEndTest({.windowManager = GetParam()}) {}
};

TEST_P(Panel, LiesOverTheRealWindow) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    EXPECT_TRUE(liesAt(panel, client.place(source.window()).value_or(Rect())));
    EXPECT_TRUE(client.isAbove(panel, cover.window()));
}

TEST_P(Panel, IsNotShownWhileItsApplicationIsInFront) {
    const auto cover = coverEverything();
    const auto source = startSample();
    activate(source.window());
    quillon.start();
    ASSERT_EQ(quillon.pin(source.window()).status, 0);
    EXPECT_TRUE(client.holdsFor([&] { return panels().empty(); }, Milliseconds(700)));
    activate(cover.window());
    ASSERT_TRUE(client.waitUntil([&] { return !panels().empty(); }));
    EXPECT_TRUE(shows(panels().front(), source.window()));
}

TEST_P(Panel, FollowsTheWindowThatMovesAndChangesItsSize) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());

    client.moveResize(source.window(), {300, 250, 640, 480});
    EXPECT_TRUE(liesAt(panel, {300, 250, 640, 480}, frameSyncBound));
    EXPECT_TRUE(shows(panel, source.window()));
    client.moveResize(source.window(), {300, 250, 801, 333});
    EXPECT_TRUE(liesAt(panel, {300, 250, 801, 333}, frameSyncBound));
    EXPECT_TRUE(shows(panel, source.window()));
    client.moveResize(source.window(), {200, 150, 360, 620});
    EXPECT_TRUE(liesAt(panel, {200, 150, 360, 620}, frameSyncBound));
    showContent(source.window(), 2);
    EXPECT_TRUE(shows(panel, source.window()));
}

TEST_P(Panel, StepsAsideForItsApplicationAndComesBack) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));

    activate(source.window());
    EXPECT_TRUE(client.waitUntil(
        [&] { return client.isAbove(cover.window(), panel) && client.isAbove(source.window(), panel); }));
    const auto before = seenAt(source.window());
    showContent(source.window(), 2);
    EXPECT_TRUE(client.waitUntil([&] { return !difference(before, seenAt(source.window()), 0).empty(); }));

    showContent(source.window(), 3);
    activate(cover.window());
    EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover.window()); }));
    EXPECT_TRUE(shows(panel, source.window()));
    showContent(source.window(), 4);
    EXPECT_TRUE(shows(panel, source.window()));
}

TEST_P(Panel, KeepsItsLastPictureBehind) {
    const auto source = startSample();
    const auto other = startSample({"--place", "600,450,500,400"});
    activate(other.window());
    quillon.start();
    const auto panel = pinAndShow(source.window());
    // The other window covers a part, so that the panel must have a picture of its own by now.
    ASSERT_TRUE(shows(panel, source.window()));
    const auto place = client.place(panel).value_or(Rect());
    const auto lastPicture = client.screenPicture(place);

    activate(source.window());
    ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(source.window(), panel); }));
    showContent(source.window(), 2);
    client.moveResize(other.window(), {900, 700, 500, 400});
    client.moveResize(source.window(), {850, 60, 640, 480});
    EXPECT_TRUE(screenShows(place, lastPicture));
    showContent(source.window(), 3);
    EXPECT_TRUE(client.holdsFor([&] { return difference(lastPicture, client.screenPicture(place), 0).empty(); },
                                Milliseconds(700)));
    keepPicture("kept-behind");
}

TEST_P(Panel, StaysForAMinimisedWindowAndIsLiveAgainAfterwards) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    const auto lastPicture = seenAt(panel);

    client.minimise(source.window());
    ASSERT_TRUE(client.waitUntil([&] { return !client.isViewable(source.window()); }));
    // Longer than it takes to notice a window that has closed.
    EXPECT_TRUE(client.holdsFor([&] { return difference(lastPicture, seenAt(panel), 0).empty(); }, Milliseconds(2500)));
    EXPECT_EQ(quillon.pinned(), source.windows);
    EXPECT_EQ(client.activeWindow(), cover.window());

    activate(source.window());
    ASSERT_TRUE(client.waitUntil([&] { return client.isViewable(source.window()); }));
    activate(cover.window());
    showContent(source.window(), 2);
    EXPECT_TRUE(shows(panel, source.window()));
}

TEST_P(Panel, GoesWithItsWindow) {
    const auto source = startSample({"--windows", "2"});
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.windows[0]);
    client.closeWindow(source.windows[0]);
    EXPECT_TRUE(isGone(panel, pruningBound));
    EXPECT_TRUE(quillon.pinned().empty());
    EXPECT_TRUE(source.program->isRunning());
}

TEST_P(Panel, GoesWithItsProgram) {
    const auto source = startSample({"--windows", "2"});
    const auto cover = coverEverything();
    quillon.start();
    const auto first = pinAndShow(source.windows[0]);
    const auto second = pinAndShow(source.windows[1]);
    source.program->send(SIGKILL);
    EXPECT_TRUE(isGone(first, pruningBound));
    EXPECT_TRUE(isGone(second, pruningBound));
    EXPECT_TRUE(quillon.pinned().empty());
}

INSTANTIATE_TEST_SUITE_P(Desktops, Panel, testing::Values(WindowManager::openbox, WindowManager::xfwm4));

class PanelOverFullScreen : public EndToEndTest {
protected:
    void makeFullScreen(Window window) {
        client.setFullScreen(window);
        ASSERT_TRUE(client.waitUntil([&] { return client.place(window) == Rect{0, 0, 1600, 1200}; }));
    }
    /// Succeeds once the one panel, which may become another X window on the way, lies over the cover and shows the
    /// source.
    [[nodiscard]] testing::AssertionResult panelShows(Window source, Window cover) {
        std::string problem;
        const bool shown = client.waitUntil([&] {
            const auto all = panels();
            if (all.size() != 1 || !client.isAbove(all.front(), cover)) {
                problem = "the panel is not above";
                return false;
            }
            const auto expected = client.windowPicture(source).value_or(Picture());
            problem = difference(expected, seenAt(all.front()), gripPixels);
            return problem.empty();
        });
        return shown ? testing::AssertionSuccess() : testing::AssertionFailure() << problem;
    }
};

TEST_F(PanelOverFullScreen, StaysOnTopWhenAnotherWindowBecomesFullScreen) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    std::ignore = pinAndShow(source.window());
    makeFullScreen(cover.window());
    EXPECT_TRUE(panelShows(source.window(), cover.window()));
    showContent(source.window(), 2);
    EXPECT_TRUE(panelShows(source.window(), cover.window()));
    keepPicture("over-full-screen");

    client.setFullScreen(cover.window(), false);
    ASSERT_TRUE(client.waitUntil([&] { return client.place(cover.window()) != Rect{0, 0, 1600, 1200}; }));
    EXPECT_TRUE(panelShows(source.window(), cover.window()));
    showContent(source.window(), 3);
    EXPECT_TRUE(panelShows(source.window(), cover.window()));
}

TEST_F(PanelOverFullScreen, IsShownOverAWindowThatAlreadyIs) {
    const auto source = startSample();
    const auto cover = coverEverything();
    makeFullScreen(cover.window());
    quillon.start();
    ASSERT_EQ(quillon.pin(source.window()).status, 0);
    EXPECT_TRUE(panelShows(source.window(), cover.window()));
    activate(source.window());
    EXPECT_TRUE(client.waitUntil([&] {
        const auto shown = panels();
        return shown.size() == 1 && client.isAbove(source.window(), shown.front());
    }));
}

class PanelOnDesktops : public EndToEndTest {
protected:
    void switchTo(std::uint32_t number) {
        client.switchToDesktop(number);
        ASSERT_TRUE(client.waitUntil([&] { return client.currentDesktop() == number; }));
    }
};

TEST_F(PanelOnDesktops, IsOnEveryOneWithTheSetting) {
    const auto source = startSample();
    const auto cover = coverEverything();
    ASSERT_EQ(quillon.command({"defaults", "write", "pinToAllSpaces", "true"}).status, 0);
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    const auto place = client.place(panel).value_or(Rect());
    const auto picture = client.screenPicture(place);
    switchTo(1);
    EXPECT_TRUE(screenShows(place, picture));
    switchTo(3);
    EXPECT_TRUE(screenShows(place, picture));
}

TEST_F(PanelOnDesktops, IsOnlyWhereItWasShownWithoutTheSetting) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    switchTo(1);
    EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(panel); }));
    switchTo(0);
    EXPECT_TRUE(client.waitUntil([&] { return client.isViewable(panel); }));
    EXPECT_TRUE(shows(panel, source.window()));
}

} // namespace

} // namespace quillon::e2e
