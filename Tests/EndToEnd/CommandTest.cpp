// The command line against a running program, and the life of the one instance.

#include "EndToEndTest.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace quillon::e2e {

namespace {

constexpr int failure = 1;
constexpr int wrongUse = 2;
constexpr int notRunning = 4;

/// One line for the user: some text and one line feed at its end.
bool isOneLine(const std::string& text) {
    return text.size() > 1 && text.find('\n') == text.size() - 1;
}

class Commands : public EndToEndTest {};

TEST_F(Commands, ListShowsNumberTabAndLabelOrderedByNumber) {
    const auto source = startSample({"--windows", "2", "--title", "Prova"});
    const auto cover = coverEverything();
    quillon.start();
    EXPECT_EQ(quillon.command({"list"}).output, "");
    EXPECT_EQ(quillon.pin(source.windows[1]).status, 0);
    EXPECT_EQ(quillon.pin(source.windows[0]).status, 0);
    const auto outcome = quillon.command({"list"});
    EXPECT_EQ(outcome.status, 0);
    const auto firstLine = outcome.output.substr(0, outcome.output.find('\n') + 1);
    const auto secondLine = outcome.output.substr(firstLine.size());
    EXPECT_TRUE(firstLine.starts_with(std::to_string(source.windows[0]) + "\t")) << outcome.output;
    EXPECT_TRUE(firstLine.ends_with(" — Prova 1\n")) << outcome.output;
    EXPECT_TRUE(secondLine.starts_with(std::to_string(source.windows[1]) + "\t")) << outcome.output;
    EXPECT_TRUE(secondLine.ends_with(" — Prova 2\n")) << outcome.output;
}

TEST_F(Commands, PinTakesHexadecimalNumbersAndAnswersTwice) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    std::array<char, 16> number{};
    std::snprintf(number.data(), number.size(), "0x%x", source.window());
    EXPECT_EQ(quillon.command({"pin", number.data()}).status, 0);
    EXPECT_EQ(quillon.pinned(), source.windows);
    const auto again = quillon.pin(source.window());
    EXPECT_EQ(again.status, 0);
    EXPECT_TRUE(again.output.starts_with("Già fissata: ")) << again.output;
    EXPECT_TRUE(client.waitUntil([&] { return panels().size() == 1; }));
}

TEST_F(Commands, UnpinTakesThePanelAway) {
    const auto source = startSample({"--windows", "2"});
    const auto cover = coverEverything();
    quillon.start();
    const auto first = pinAndShow(source.windows[0]);
    const auto second = pinAndShow(source.windows[1]);
    const auto outcome = quillon.unpin(source.windows[0]);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(isGone(first, stepBound));
    EXPECT_EQ(quillon.pinned(), std::vector<Window>{source.windows[1]});
    EXPECT_TRUE(shows(second, source.windows[1]));
}

TEST_F(Commands, UnpinAllTakesEveryPanelAway) {
    const auto source = startSample({"--windows", "3"});
    const auto cover = coverEverything();
    quillon.start();
    for (const auto window : source.windows) {
        std::ignore = pinAndShow(window);
    }
    const auto outcome = quillon.command({"unpin", "all"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(outcome.output.find('3') != std::string::npos) << outcome.output;
    EXPECT_TRUE(client.waitUntil([&] { return panels().empty(); }));
    EXPECT_TRUE(quillon.pinned().empty());
}

TEST_F(Commands, ToggleActsOnTheActiveWindow) {
    const auto cover = coverEverything();
    const auto source = startSample({"--windows", "2"});
    activate(source.windows[1]);
    quillon.start();
    EXPECT_EQ(quillon.command({"toggle"}).status, 0);
    EXPECT_EQ(quillon.pinned(), std::vector<Window>{source.windows[1]});
    activate(cover.window());
    ASSERT_TRUE(client.waitUntil([&] { return panels().size() == 1; }));
    EXPECT_TRUE(shows(panels().front(), source.windows[1]));
    activate(source.windows[1]);
    EXPECT_EQ(quillon.command({"toggle"}).status, 0);
    EXPECT_TRUE(quillon.pinned().empty());
    EXPECT_TRUE(client.waitUntil([&] { return panels().empty(); }));
}

TEST_F(Commands, ListWindowsNamesWhatCanBePinnedButNotThePanels) {
    const auto source = startSample({"--title", "Da fissare"});
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto outcome = quillon.command({"--list-windows"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find(std::to_string(source.window())), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find("Da fissare"), std::string::npos) << outcome.output;
    EXPECT_NE(outcome.output.find(std::to_string(cover.window())), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find(std::to_string(panel)), std::string::npos) << outcome.output;
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 2) << outcome.output;
    EXPECT_EQ(quillon.pin(panel).status, failure);
    EXPECT_EQ(quillon.pinned(), source.windows);
}

TEST_F(Commands, ListWindowsWorksWithoutARunningProgram) {
    const auto source = startSample();
    const auto outcome = quillon.command({"--list-windows"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_NE(outcome.output.find(std::to_string(source.window())), std::string::npos) << outcome.output;
}

TEST_F(Commands, WrongArgumentsAreAnsweredWithOneLine) {
    const auto cover = coverEverything();
    quillon.start();
    const std::vector<std::pair<std::vector<std::string>, int>> cases{
        {{"--nonsense"}, wrongUse},
        {{"nonsense"}, wrongUse},
        {{"list", "too", "many"}, wrongUse},
        {{"pin", "window"}, wrongUse},
        {{"pin", "99999999999999999999"}, wrongUse},
        {{"pin", "-1"}, wrongUse},
        {{"pin", "4242"}, failure},
        {{"pin", "0"}, failure},
        {{"pin", std::to_string(client.root())}, failure},
        {{"unpin", std::to_string(cover.window())}, failure},
        {{"defaults", "read"}, wrongUse},
        {{"defaults", "read", "nothingOfThisName"}, failure},
    };
    for (const auto& [arguments, status] : cases) {
        const auto outcome = quillon.command(arguments);
        EXPECT_EQ(outcome.status, status) << arguments.front() << ": " << outcome.errors;
        EXPECT_EQ(outcome.output, "") << arguments.front();
        EXPECT_TRUE(isOneLine(outcome.errors)) << arguments.front() << ": " << outcome.errors;
    }
    EXPECT_TRUE(quillon.pinned().empty());
}

TEST_F(Commands, NeedARunningProgram) {
    for (const std::string verb : {"pin", "unpin", "toggle", "list"}) {
        const auto outcome = quillon.command({verb});
        EXPECT_EQ(outcome.status, notRunning) << verb;
        EXPECT_TRUE(isOneLine(outcome.errors)) << verb << ": " << outcome.errors;
    }
}

class Instance : public EndToEndTest {};

TEST_F(Instance, ASecondStartLeavesTheFirstInPlace) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    const auto second = quillon.command({});
    EXPECT_EQ(second.status, 0) << second.errors;
    EXPECT_EQ(second.errors, "");
    EXPECT_TRUE(quillon.program().isRunning());
    EXPECT_EQ(quillon.pinned(), source.windows);
    EXPECT_TRUE(shows(panel, source.window()));
}

TEST_F(Instance, OfManySimultaneousStartsOneRemains) {
    std::vector<std::unique_ptr<Program>> started;
    for (int count = 0; count < 4; ++count) {
        started.push_back(desktop.start({quillonPath()}));
    }
    const auto running = [&] {
        return std::count_if(started.begin(), started.end(), [](const auto& program) { return program->isRunning(); });
    };
    EXPECT_TRUE(client.waitUntil([&] { return running() == 1; }));
    EXPECT_TRUE(client.waitUntil([&] { return quillon.command({"list"}).status == 0; }));
    EXPECT_EQ(running(), 1);
    for (const auto& program : started) {
        EXPECT_EQ(program->waitForExit(Milliseconds(0)).value_or(0), 0) << program->errors();
    }
}

TEST_F(Instance, EndsCleanlyWhenAskedTo) {
    const auto source = startSample();
    const auto cover = coverEverything();
    for (const int signal : {SIGTERM, SIGINT}) {
        quillon.start();
        const auto panel = pinAndShow(source.window());
        quillon.program().send(signal);
        EXPECT_EQ(quillon.program().waitForExit(stepBound), 0) << quillon.program().errors();
        EXPECT_FALSE(client.place(panel)) << "the panel is still there";
        EXPECT_EQ(quillon.program().errors(), "");
        // Nothing keeps the window off the screen any more.
        EXPECT_FALSE(client.windowPicture(source.window()));
    }
}

TEST_F(Instance, LeavesTheRealWindowIntactWhenItIsKilled) {
    const auto source = startSample();
    const auto cover = coverEverything();
    quillon.start();
    const auto panel = pinAndShow(source.window());
    ASSERT_TRUE(shows(panel, source.window()));
    const auto picture = seenAt(panel);
    quillon.program().send(SIGKILL);
    ASSERT_TRUE(quillon.program().waitForExit(stepBound));
    EXPECT_TRUE(client.waitUntil([&] { return !client.place(panel); }));
    activate(source.window());
    EXPECT_TRUE(client.waitUntil([&] { return difference(picture, seenAt(source.window()), gripPixels).empty(); }));
    quillon.start();
    EXPECT_TRUE(quillon.pinned().empty());
}

TEST_F(Instance, EndsWithItsXServer) {
    Desktop other({});
    QuillonProgram onOther(other);
    onOther.start();
    other.stopServer();
    const auto status = onOther.program().waitForExit(stepBound);
    ASSERT_TRUE(status) << "still running without a display";
    EXPECT_LT(*status, 128) << "ended by a signal";
    EXPECT_TRUE(isOneLine(onOther.program().errors())) << onOther.program().errors();
}

} // namespace

} // namespace quillon::e2e
