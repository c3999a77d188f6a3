#pragma once

#include "EndToEndTest.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillon::e2e {

// Buttons, as X numbers them.
inline constexpr std::uint8_t left = 1;
inline constexpr std::uint8_t right = 3;
inline constexpr std::uint8_t wheelUp = 4;
inline constexpr std::uint8_t wheelDown = 5;
inline constexpr std::uint8_t wheelLeft = 6;
inline constexpr std::uint8_t wheelRight = 7;

using Lines = std::vector<std::string>;

[[nodiscard]] Lines linesOf(const std::filesystem::path& path);
[[nodiscard]] std::string joined(const Lines& lines);

/// The user's hand on the copy of a window that lies below another one. At the end of a test everything but what
/// happened in the window is as it was: the focus, the order of the windows, the pointer.
class Interaction : public EndToEndTest {
public:
    /// To a place of the panel.
    void moveTo(int x, int y);
    void press(std::uint8_t button = left);
    void release(std::uint8_t button = left) { client.releaseButton(button); }
    void click(int x, int y, std::uint8_t button = left);
    void doubleClick(int x, int y);
    void turnWheel(int x, int y, std::uint8_t direction, int steps = 1);
    void dragThrough(const std::vector<std::pair<int, int>>& places);
    /// What a real hand does is seen one by one.
    void waitAsAHandDoes() const;
    /// Until a click counts as the first one again.
    void waitAfterClicks() const;
    /// Whether the window, which nothing covers, has drawn all that it draws for now.
    [[nodiscard]] bool hasSettled(Milliseconds quietTime) const;

    [[nodiscard]] Window sourceWindow() const { return source; }
    /// Within the time that a reaction may take.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& condition) const {
        return client.waitUntil(condition, bound);
    }
    [[nodiscard]] testing::AssertionResult becomesSelected(const std::string& text);
    /// Empty for nothing.
    [[nodiscard]] std::string selected() const { return client.selectedText().value_or(""); }
    /// What the window itself shows changes after the action.
    template <class Action>
    [[nodiscard]] bool changesPicture(Action action) {
        const auto before = client.windowPicture(source).value_or(Picture());
        action();
        return waitUntil(
            [&] { return !difference(before, client.windowPicture(source).value_or(Picture()), 0).empty(); });
    }
    [[nodiscard]] std::string titleOf(Window window) const;
    /// Menus and the like count too.
    [[nodiscard]] std::size_t visibleWindowsOfSource() const {
        return client.visibleWindowsOf(sourceProgram->pid()).size();
    }

protected:
    explicit Interaction(const DesktopOptions& options = {}) : EndToEndTest(options) {}
    void TearDown() override;

    /// Starts the program of the real window, which runs to the end of the test.
    Window startSourceProgram(const Command& command);
    /// Covers the window, pins it and remembers how things are: they must be the same at the end. A program that asks
    /// for the focus once more soon after its start is covered again, until it has been quiet for that time.
    void pinCovered(Window window, Milliseconds quietTime = {});
    /// Whether the other window still lies above and has the focus, and had it all the time.
    [[nodiscard]] testing::AssertionResult isUndisturbed();

    std::unique_ptr<Program> sourceProgram;
    Window source = 0;
    std::optional<Sample> cover;
    Window panel = 0;
    XClient::Place pointer;
    bool isSwitchExpected = false;
    /// The real window may get the focus for a moment, until it is given back.
    bool mayTakeFocus = false;
    std::size_t changesBefore = 0;
    /// How long a reaction may take.
    Milliseconds bound = stepBound;
};

} // namespace quillon::e2e
