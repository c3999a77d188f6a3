// What the user can do to a covered window over its copy, in one real program after the other. docs/matrix.md is made
// of what is seen here (scripts/matrix).

#include "EvdevKeys.h"
#include "MatrixProgram.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <tuple>
#include <utility>

namespace quillon::e2e {

namespace {

using ProgramAndManager = std::tuple<std::shared_ptr<MatrixProgram>, WindowManager>;

std::string managerName(WindowManager windowManager) {
    return testing::PrintToString(windowManager);
}

/// Where the rows are to be written; null when they are not wanted.
const char* rowsDirectory() {
    return std::getenv("QUILLON_MATRIX");
}

class Matrix : public Interaction, public testing::WithParamInterface<ProgramAndManager> {
protected:
    Matrix() : Interaction({.windowManager = std::get<WindowManager>(GetParam())}) {}

    void SetUp() override {
        if (program.isLarge() && rowsDirectory() == nullptr) {
            GTEST_SKIP() << program.name() << " is for scripts/matrix";
        }
        // Only programs that start after the bus are on it.
        desktop.startAccessibilityBus();
        const auto command = program.command(desktop);
        if (command.empty()) {
            GTEST_SKIP() << program.name() << " is not installed";
        }
        pinCovered(startReady(command), Milliseconds(1000));
        ASSERT_TRUE(shows(panel, source));
    }
    void TearDown() override {
        isSwitchExpected = true; // every cell has looked for itself
        Interaction::TearDown();
    }
    [[nodiscard]] Window startReady(const Command& command) {
        const auto window = startSourceProgram(command);
        client.moveResize(window, place);
        EXPECT_TRUE(client.waitUntil([&] { return client.place(window) == place; }));
        EXPECT_TRUE(program.isReady(*this));
        EXPECT_TRUE(client.waitUntil([&] { return client.activeWindow() == window; }));
        return window;
    }

    /// Performs an action and adds its cell.
    template <class Action>
    void cell(MatrixAction action, Action perform) {
        const auto obstacle = program.obstacle(action);
        // Long enough for whatever works: seen are some ten milliseconds.
        bound = obstacle ? Milliseconds(700) : stepBound;
        const bool reacted = perform();
        bound = stepBound;
        EXPECT_NE(reacted, obstacle.has_value()) << "column " << cells.size() + 1;
        const auto undisturbed = isUndisturbed();
        EXPECT_TRUE(undisturbed) << "column " << cells.size() + 1;
        if (obstacle) {
            cells.push_back(reacted ? "?" : "no: " + *obstacle);
        } else {
            cells.push_back(reacted && undisturbed ? "yes" : "no");
        }
    }
    /// A menu would take the next click. Menus that do not get the keyboard close with a click elsewhere.
    void closeMenu(std::size_t windowsBefore) {
        waitAsAHandDoes();
        client.type({escapeKey});
        pointer = {place.x + place.width + 100, place.y};
        client.movePointer(pointer.x, pointer.y);
        press();
        waitAsAHandDoes();
        release();
        waitAsAHandDoes();
        EXPECT_TRUE(client.waitUntil([&] { return visibleWindowsOfSource() <= windowsBefore; }));
    }
    [[nodiscard]] bool switchesWithCommand() {
        client.pressKey(superKey);
        click(place.width / 2, place.height / 2);
        const bool switches = client.waitUntil(
            [&] { return client.activeWindow() == source && client.isAbove(source, cover->window()); });
        // Only now: the window manager may hold the click up, but not the keys.
        client.releaseKey(superKey);
        return switches;
    }
    /// With the other routing of input.
    [[nodiscard]] bool scrollsThroughAccessibility() {
        activate(cover->window());
        EXPECT_EQ(quillon.stop(), 0);
        quillon.start({}, {"--input-routing=scroll"});
        EXPECT_EQ(quillon.command({"defaults", "write", "forwardEvents", "true"}).status, 0);
        panel = pinAndShow(source);
        EXPECT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover->window()); }));
        changesBefore = focus.changes().size();
        // A program may need some seconds before it tells what is in its window.
        const auto end = std::chrono::steady_clock::now() + bound;
        const auto wholeBound = std::exchange(bound, Milliseconds(500));
        bool scrolled = false;
        while (!scrolled && std::chrono::steady_clock::now() < end) {
            scrolled = program.wheel(*this);
        }
        bound = wholeBound;
        return scrolled;
    }
    void writeRow() const {
        const auto* directory = rowsDirectory();
        if (directory == nullptr) {
            return;
        }
        const auto manager = managerName(std::get<WindowManager>(GetParam()));
        std::ofstream row(std::filesystem::path(directory) / (manager + "-" + program.name()));
        row << "| " << program.name() << " | " << program.version(desktop) << " |";
        for (const auto& text : cells) {
            row << ' ' << text << " |";
        }
        row << '\n';
    }

    /// A whole number of a terminal's lines and columns.
    static constexpr Rect place{150, 100, 700, 498};
    MatrixProgram& program = *std::get<std::shared_ptr<MatrixProgram>>(GetParam());
    std::vector<std::string> cells;
};

TEST_P(Matrix, Row) {
    cell(MatrixAction::click, [&] { return program.click(*this); });
    cell(MatrixAction::doubleClick, [&] { return program.doubleClick(*this); });
    cell(MatrixAction::dragSelect, [&] { return program.dragSelect(*this); });
    cell(MatrixAction::wheel, [&] { return program.wheel(*this); });
    cell(MatrixAction::horizontalWheel, [&] { return program.horizontalWheel(*this); });
    const auto windows = visibleWindowsOfSource();
    cell(MatrixAction::rightClick, [&] { return program.rightClick(*this); });
    closeMenu(windows);
    const bool switches = switchesWithCommand();
    EXPECT_TRUE(switches);
    cells.emplace_back(switches ? "yes" : "no");
    cell(MatrixAction::accessibilityScroll, [&] { return scrollsThroughAccessibility(); });
    writeRow();
}

std::string testName(const testing::TestParamInfo<ProgramAndManager>& info) {
    auto name = std::get<0>(info.param)->name() + "_" + managerName(std::get<1>(info.param));
    std::replace_if(
        name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Programs, Matrix,
                         testing::Combine(testing::ValuesIn(matrixPrograms()),
                                          testing::Values(WindowManager::openbox, WindowManager::xfwm4)),
                         testName);

} // namespace

} // namespace quillon::e2e
