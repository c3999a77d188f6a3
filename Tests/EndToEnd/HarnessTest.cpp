// What the other tests rely on, without Quillon.

#include "EndToEndTest.h"

namespace quillon::e2e {

namespace {

class Harness : public EndToEndTest {};

TEST_F(Harness, TheWatchSeesWhoGetsTheFocus) {
    const auto first = startSample();
    const auto second = startSample();
    activate(first.window());
    activate(second.window());
    const auto sees = [&](Window window, pid_t owner, bool isKeyboardFocus) {
        return client.waitUntil([&] {
            for (const auto& change : focus.changes()) {
                if (change.window == window && change.owner == owner && change.isKeyboardFocus == isKeyboardFocus) {
                    return true;
                }
            }
            return false;
        });
    };
    EXPECT_TRUE(sees(first.window(), first.program->pid(), false));
    EXPECT_TRUE(sees(first.window(), first.program->pid(), true));
    EXPECT_TRUE(sees(second.window(), second.program->pid(), true));
}

TEST_F(Harness, WindowsAreMovedMinimisedAndClosed) {
    const auto sample = startSample();
    const Rect place{300, 200, 500, 400};
    client.moveResize(sample.window(), place);
    EXPECT_TRUE(liesAt(sample.window(), place));
    client.minimise(sample.window());
    EXPECT_TRUE(client.waitUntil([&] { return !client.isViewable(sample.window()); }));
    activate(sample.window());
    EXPECT_TRUE(client.waitUntil([&] { return client.isViewable(sample.window()); }));
    client.closeWindow(sample.window());
    EXPECT_EQ(sample.program->waitForExit(stepBound), 0);
}

/// With and without a compositor between the window and the screen.
class SampleOn : public EndToEndTest, public testing::WithParamInterface<WindowManager> {
protected:
    SampleOn() : EndToEndTest({.windowManager = GetParam()}) {}
};

TEST_P(SampleOn, EveryContentLooksDifferent) {
    const auto sample = startSample();
    const auto place = client.place(sample.window());
    ASSERT_TRUE(place);
    // The sample's first row is white; a compositor may be late.
    constexpr std::uint32_t white = 0xffffff;
    ASSERT_TRUE(client.waitUntil([&] { return (seenAt(sample.window()).at(0, 0) & white) == white; }));
    const auto first = seenAt(sample.window());
    showContent(sample.window(), 2);
    EXPECT_TRUE(client.waitUntil([&] { return !difference(first, seenAt(sample.window()), 0).empty(); }));
    showContent(sample.window(), 1);
    EXPECT_TRUE(screenShows(*place, first));
}

INSTANTIATE_TEST_SUITE_P(Desktops, SampleOn, testing::Values(WindowManager::openbox, WindowManager::xfwm4));

} // namespace

} // namespace quillon::e2e
