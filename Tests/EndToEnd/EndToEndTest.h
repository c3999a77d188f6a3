#pragma once

#include "Desktop.h"
#include "FocusWatch.h"
#include "QuillonProgram.h"
#include "XClient.h"

#include <gtest/gtest.h>

namespace quillon::e2e {

/// Side of the badge in a panel's bottom right corner, in points.
inline constexpr int gripSide = 26;
/// The panel looks for its window's place twice a second.
inline constexpr Milliseconds frameSyncBound{1500};
/// Closed windows are looked for every two seconds.
inline constexpr Milliseconds pruningBound{4000};

/// A running sample program and its windows.
struct Sample {
    std::unique_ptr<Program> program;
    std::vector<Window> windows;

    [[nodiscard]] Window window() const { return windows.front(); }
};

/// A test on a desktop of its own. Whatever a test does, at its end it fails if the keyboard focus or the active
/// window ever went to Quillon, unless it has opened one of Quillon's own windows.
class EndToEndTest : public testing::Test {
protected:
    explicit EndToEndTest(const DesktopOptions& options = {});
    void TearDown() override;

    /// Starts the sample program and waits until its windows show their first content.
    [[nodiscard]] Sample startSample(const std::vector<std::string>& arguments = {});
    /// Starts a sample program whose window covers most of the screen, and activates it: the application in front.
    [[nodiscard]] Sample coverEverything();
    /// Starts any program and waits for its window.
    struct Started {
        std::unique_ptr<Program> program;
        Window window = 0;
    };
    [[nodiscard]] Started startProgram(const Command& command);

    /// Shows a content and waits until it is drawn.
    void showContent(Window sampleWindow, std::uint32_t content);
    /// Changes the content by itself from now on; 0 to stop.
    void play(Window sampleWindow, std::uint32_t contentsPerSecond, bool onlyRegion = false);
    [[nodiscard]] std::uint32_t shownContent(Window sampleWindow) const;

    /// Runs a program on the desktop to its end; it must succeed. Returns what it writes.
    std::string runOnDesktop(const Command& command) const;

    /// Activates the window and waits until it is active.
    void activate(Window window);
    /// Pins a window of which no panel is shown yet and waits until its panel is. The window's application is not
    /// the active one.
    [[nodiscard]] Window pinAndShow(Window window);
    /// The panels on the screen, bottom to top, covered or not.
    [[nodiscard]] std::vector<Window> panels() const { return client.visibleWindowsOf(quillon.pid()); }

    /// Succeeds once the screen, at the panel's place, shows the window's own picture pixel for pixel, apart from
    /// the grip.
    [[nodiscard]] testing::AssertionResult shows(Window panel, Window source, Milliseconds bound = stepBound);
    /// Succeeds once the panel lies there.
    [[nodiscard]] testing::AssertionResult liesAt(Window panel, const Rect& place, Milliseconds bound = stepBound);
    [[nodiscard]] testing::AssertionResult isGone(Window panel, Milliseconds bound);
    /// What the user sees at the place of the window.
    [[nodiscard]] Picture seenAt(Window window) const;
    [[nodiscard]] testing::AssertionResult screenShows(const Rect& place, const Picture& expected);

    /// Saves the screen into the directory that QUILLON_TEST_PICTURES names, if it is set.
    void keepPicture(const std::string& name) const;

    Desktop desktop;
    XClient client;
    FocusWatch focus;
    QuillonProgram quillon;
    int gripPixels = gripSide;
    /// The test gives Quillon the keyboard focus.
    bool givesFocus = false;

private:
    /// Keeps a picture of the moment.
    [[nodiscard]] testing::AssertionResult otherPicture(const std::string& problem) const;
};

} // namespace quillon::e2e
