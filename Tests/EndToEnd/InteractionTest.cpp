// What the user does on a panel reaches the real window, which stays covered and inactive.

#include "Interaction.h"
#include "EvdevKeys.h"

#include <xcb/shape.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>

namespace quillon::e2e {

namespace {

/// With a window that writes down what it gets.
class InteractionWithSample : public Interaction {
protected:
    void startSource(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"--place", "200,150,500,400", "--input", inputFile().string()};
        arguments.insert(arguments.end(), options.begin(), options.end());
        sample = startSample(arguments);
        pinCovered(sample->window());
    }
    [[nodiscard]] std::filesystem::path inputFile() const { return desktop.directory() / "input"; }
    [[nodiscard]] Lines received() const {
        auto lines = linesOf(inputFile());
        // What happened before it was covered.
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::min(alreadyThere, lines.size())));
        return lines;
    }
    [[nodiscard]] testing::AssertionResult receives(const Lines& expected) {
        return client.waitUntil([&] { return received() == expected; }) ? testing::AssertionSuccess()
                                                                        : testing::AssertionFailure()
                                                                              << "received:\n"
                                                                              << joined(received());
    }

    std::optional<Sample> sample;
    std::size_t alreadyThere = 0;
};

const Lines partOption{"--part", "100,100,200,150"};

TEST_F(InteractionWithSample, AClickInAWindowWithoutParts) {
    startSource();
    click(40, 30);
    EXPECT_TRUE(receives({"window focus in", "window press 1 at 40,30 state 0x0",
                          "window release 1 at 40,30 state 0x100", "window focus out"}));
}

TEST_F(InteractionWithSample, AClickInAPart) {
    startSource(partOption);
    click(140, 130);
    EXPECT_TRUE(receives({"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0",
                          "part release 1 at 40,30 state 0x100", "part leave at 40,30 state 0x0"}));
}

TEST_F(InteractionWithSample, ADragBelongsToThePartThatGotThePress) {
    startSource(partOption);
    moveTo(140, 130);
    press();
    dragThrough({{150, 130}, {50, 60}, {400, 300}});
    release();
    EXPECT_TRUE(
        receives({"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0", "part move at 50,30 state 0x100",
                  "part move at -50,-40 state 0x100", "part move at 300,200 state 0x100",
                  "part release 1 at 300,200 state 0x100", "part leave at 300,200 state 0x0"}));
}

TEST_F(InteractionWithSample, ADragThatEndsOutsideThePanelIsReleasedWhereItLeft) {
    startSource(partOption);
    moveTo(140, 130);
    press();
    dragThrough({{150, 130}, {-80, 60}, {-90, 70}});
    release();
    EXPECT_TRUE(
        receives({"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0", "part move at 50,30 state 0x100",
                  "part release 1 at 50,30 state 0x100", "part leave at 50,30 state 0x0"}));
}

TEST_F(InteractionWithSample, OtherButtonsAndTheWheel) {
    startSource(partOption);
    click(140, 130, right);
    click(140, 130, 2);
    click(140, 130, 9);
    turnWheel(140, 130, wheelUp);
    turnWheel(140, 130, wheelDown);
    turnWheel(140, 130, wheelLeft);
    turnWheel(140, 130, wheelRight);
    Lines expected;
    for (const auto& [button, state] :
         {std::pair{3, "0x400"}, {2, "0x200"}, {9, "0x0"}, {4, "0x800"}, {5, "0x1000"}, {6, "0x0"}, {7, "0x0"}}) {
        expected.push_back("part enter at 40,30 state 0x0");
        expected.push_back("part press " + std::to_string(button) + " at 40,30 state 0x0");
        expected.push_back("part release " + std::to_string(button) + " at 40,30 state " + state);
        expected.push_back("part leave at 40,30 state 0x0");
    }
    EXPECT_TRUE(receives(expected));
}

TEST_F(InteractionWithSample, TwoButtonsAtOnceStayInTheSamePart) {
    startSource(partOption);
    moveTo(140, 130);
    press();
    dragThrough({{20, 20}});
    press(right);
    release(right);
    release();
    EXPECT_TRUE(receives({"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0",
                          "part move at -80,-80 state 0x100", "part press 3 at -80,-80 state 0x100",
                          "part release 3 at -80,-80 state 0x500", "part release 1 at -80,-80 state 0x100",
                          "part leave at -80,-80 state 0x0"}));
}

TEST_F(InteractionWithSample, ModifiersAreThoseOfTheKeyboard) {
    startSource(partOption);
    for (const auto key : {shiftKey, controlKey}) {
        client.pressKey(key);
        turnWheel(140, 130, wheelUp);
        client.releaseKey(key);
    }
    EXPECT_TRUE(receives({"part enter at 40,30 state 0x1", "part press 4 at 40,30 state 0x1",
                          "part release 4 at 40,30 state 0x801", "part leave at 40,30 state 0x1",
                          "part enter at 40,30 state 0x4", "part press 4 at 40,30 state 0x4",
                          "part release 4 at 40,30 state 0x804", "part leave at 40,30 state 0x4"}));
}

TEST_F(InteractionWithSample, TheReleaseComesAfterThePanelHasGone) {
    startSource(partOption);
    moveTo(140, 130);
    press();
    dragThrough({{150, 130}});
    const Lines pressed{"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0",
                        "part move at 50,30 state 0x100"};
    ASSERT_TRUE(receives(pressed));
    ASSERT_EQ(quillon.unpin(source).status, 0);
    ASSERT_TRUE(isGone(panel, stepBound));
    EXPECT_TRUE(client.holdsFor([&] { return received() == pressed; }, Milliseconds(300)));
    release();
    auto released = pressed;
    released.insert(released.end(), {"part release 1 at 50,30 state 0x100", "part leave at 50,30 state 0x0"});
    EXPECT_TRUE(receives(released));
}

TEST_F(InteractionWithSample, TheReleaseComesWhenTheProgramEnds) {
    startSource(partOption);
    moveTo(140, 130);
    press();
    ASSERT_TRUE(client.waitUntil([&] { return received().size() == 2; }));
    EXPECT_EQ(quillon.stop(), 0);
    EXPECT_TRUE(receives({"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0",
                          "part release 1 at 40,30 state 0x100", "part leave at 40,30 state 0x0"}));
    release();
}

TEST_F(InteractionWithSample, AWindowThatClosesInTheMiddleOfADragDoesNoHarm) {
    startSource(partOption);
    moveTo(140, 130);
    press();
    ASSERT_TRUE(client.waitUntil([&] { return received().size() == 2; }));
    sample->program->send(SIGKILL);
    dragThrough({{150, 130}, {160, 130}});
    release();
    EXPECT_TRUE(isGone(panel, pruningBound));
    EXPECT_EQ(quillon.program().errors(), "");
    isSwitchExpected = true; // there is nothing left that could lie below the cover
    EXPECT_EQ(client.activeWindow(), cover->window());
}

TEST_F(InteractionWithSample, AProgramThatHangsHoldsNobodyUp) {
    startSource(partOption);
    sample->program->send(SIGSTOP);
    click(140, 130);
    turnWheel(140, 130, wheelDown, 5);
    EXPECT_EQ(quillon.pinned(), sample->windows);
    EXPECT_TRUE(received().empty());
    sample->program->send(SIGCONT);
    EXPECT_TRUE(client.waitUntil([&] { return received().size() == 4 + 5 * 4; }));
}

TEST_F(InteractionWithSample, ABurstLosesNothingAndKeepsItsOrder) {
    startSource(partOption);
    moveTo(140, 130);
    constexpr int steps = 10000;
    Lines expected;
    for (int step = 0; step < steps; ++step) {
        // No two stretches of it look alike.
        const bool isUp = (step * step / 7) % 2 == 0;
        const auto direction = isUp ? wheelUp : wheelDown;
        press(direction);
        release(direction);
        expected.push_back("part enter at 40,30 state 0x0");
        expected.push_back("part press " + std::to_string(direction) + " at 40,30 state 0x0");
        expected.push_back("part release " + std::to_string(direction) + " at 40,30 state " +
                           (isUp ? "0x800" : "0x1000"));
        expected.push_back("part leave at 40,30 state 0x0");
    }
    ASSERT_TRUE(client.waitUntil([&] { return received().size() >= expected.size(); }, Milliseconds(60000)))
        << received().size();
    EXPECT_TRUE(received() == expected);
}

/// A panel of twice the size.
TEST_F(InteractionWithSample, APanelOfAnotherSizeHitsTheSamePlaces) {
    startSource(partOption);
    moveTo(490, 390);
    press();
    dragThrough({{700, 500}, {990, 790}});
    release();
    const auto place = client.place(source).value_or(Rect());
    ASSERT_TRUE(liesAt(panel, {place.x, place.y, 1000, 800}));
    click(281, 261);
    EXPECT_TRUE(receives({"part enter at 40,30 state 0x0", "part press 1 at 40,30 state 0x0",
                          "part release 1 at 40,30 state 0x100", "part leave at 40,30 state 0x0"}));
}

/// Real toolkits under both window managers.
class InteractionWithPrograms : public Interaction, public testing::WithParamInterface<WindowManager> {
protected:
    InteractionWithPrograms() : Interaction({.windowManager = GetParam()}) {}
};

TEST_P(InteractionWithPrograms, XtermSelectsAndScrolls) {
    const auto terminal =
        startSourceProgram({"xterm", "-geometry", "60x20+150+120", "-e", "sh", "-c",
                            "seq 100 200; printf 'primo secondo terzo\\nquarto quinto'; exec sleep 1000"});
    pinCovered(terminal);
    // The last two of 20 lines.
    const auto place = client.place(source).value_or(Rect());
    const int lineHeight = place.height / 20;
    const int cellWidth = place.width / 60;
    const auto xOf = [&](int column) { return 2 + cellWidth * column + cellWidth / 2; };
    const auto yOf = [&](int line) { return 2 + lineHeight * line + lineHeight / 2; };
    ASSERT_TRUE(shows(panel, source));

    doubleClick(xOf(8), yOf(18));
    EXPECT_TRUE(becomesSelected("secondo"));
    waitAfterClicks();
    moveTo(xOf(0), yOf(19));
    press();
    dragThrough({{xOf(2), yOf(19)}, {xOf(5), yOf(19)}, {xOf(10), yOf(19)}});
    release();
    EXPECT_TRUE(becomesSelected("quarto qui"));
    EXPECT_TRUE(changesPicture([&] { turnWheel(xOf(3), yOf(3), wheelUp, 3); }));
    keepPicture("forwarded-to-xterm");
}

TEST_P(InteractionWithPrograms, GTKSelectsScrollsAndIsNotMoved) {
    const auto demo = startSourceProgram({"gtk3-demo"});
    client.moveResize(demo, {150, 100, 900, 700});
    ASSERT_TRUE(client.waitUntil([&] { return titleOf(demo) == "Application Class"; }));
    pinCovered(demo);
    // The list's rows lie below the title bar, next to each other; shadows may lie around all.
    const auto extents = client.property(source, "_GTK_FRAME_EXTENTS");
    const int marginX = extents.size() == 4 ? static_cast<int>(extents[0]) : 5;
    const int marginY = extents.size() == 4 ? static_cast<int>(extents[2]) : 5;
    click(marginX + 60, marginY + 47 + 35);
    EXPECT_TRUE(client.waitUntil([&] { return titleOf(source) == "Assistant"; })) << titleOf(source);
    EXPECT_TRUE(changesPicture([&] { turnWheel(marginX + 60, marginY + 300, wheelDown, 5); }));
    keepPicture("forwarded-to-gtk");

    // GTK comes to the front with a press on its title bar, and xfwm4 activates what comes to the front.
    mayTakeFocus = GetParam() == WindowManager::xfwm4;
    const auto before = client.place(source);
    moveTo(marginX + 300, marginY + 25);
    press();
    dragThrough({{marginX + 320, marginY + 30}, {marginX + 350, marginY + 45}, {marginX + 380, marginY + 80}});
    release();
    EXPECT_TRUE(client.holdsFor([&] { return client.place(source) == before; }, Milliseconds(500)));
}

TEST_P(InteractionWithPrograms, QtSelectsTextAndOpensMenus) {
    const auto text = desktop.directory() / "testo.txt";
    std::ofstream(text) << "primo secondo terzo\nquarto quinto sesto\n";
    const auto editor = startSourceProgram({"featherpad", text.string()});
    client.moveResize(editor, {150, 100, 700, 500});
    ASSERT_TRUE(client.waitUntil([&] { return client.place(editor) == Rect{150, 100, 700, 500}; }));
    // It reads the file after it has shown its window, and names it then.
    ASSERT_TRUE(client.waitUntil([&] { return titleOf(editor).find("testo.txt") != std::string::npos; }));
    ASSERT_TRUE(hasSettled(Milliseconds(300)));
    pinCovered(editor);
    ASSERT_TRUE(shows(panel, source));
    keepPicture("before-qt");
    doubleClick(15, 103);
    EXPECT_TRUE(becomesSelected("primo"));
    EXPECT_TRUE(isUndisturbed());
    keepPicture("forwarded-to-qt");

    // The menu is a real one, at the real window's place.
    const auto before = visibleWindowsOfSource();
    const auto isOpen = [&] { return visibleWindowsOfSource() > before; };
    click(15, 12);
    EXPECT_TRUE(client.waitUntil(isOpen));
    EXPECT_TRUE(client.holdsFor(isOpen, Milliseconds(700))) << "the menu closed by itself";
    EXPECT_TRUE(isUndisturbed());
    keepPicture("menu-of-qt");

    // Qt activates its window when a menu of its bar closes with the key; the focus comes back at once.
    mayTakeFocus = true;
    client.type({escapeKey});
    EXPECT_TRUE(client.waitUntil([&] { return visibleWindowsOfSource() == before; }));
    ASSERT_TRUE(hasSettled(Milliseconds(300)));
    EXPECT_TRUE(isUndisturbed());
}

TEST_P(InteractionWithPrograms, TkPressesDragsAndScrolls) {
    const auto log = desktop.directory() / "tk";
    const auto script = desktop.directory() / "script.tcl";
    std::ofstream(script) << "set log [open {" << log.string() << "} w]\n"
                          << R"(fconfigure $log -buffering line
wm geometry . 400x300+200+150
button .b -text Premi -command {puts $log pressed}
place .b -x 20 -y 20 -width 100 -height 40
canvas .c -background white
place .c -x 20 -y 80 -width 300 -height 150
bind .c <B1-Motion> {puts $log "drag %x %y"}
bind .c <Double-Button-1> {puts $log double}
bind .c <Button-4> {puts $log up}
bind .c <Button-5> {puts $log down}
)";
    pinCovered(startSourceProgram({"wish", script.string()}));
    const auto writes = [&](const Lines& expected) {
        return client.waitUntil([&] { return linesOf(log) == expected; })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << joined(linesOf(log));
    };
    click(60, 40);
    EXPECT_TRUE(writes({"pressed"}));
    moveTo(120, 130);
    press();
    dragThrough({{130, 140}, {10, 70}});
    release();
    EXPECT_TRUE(writes({"pressed", "drag 110 60", "drag -10 -10"}));
    turnWheel(120, 130, wheelUp);
    turnWheel(120, 130, wheelDown);
    EXPECT_TRUE(writes({"pressed", "drag 110 60", "drag -10 -10", "up", "down"}));
    doubleClick(200, 150);
    EXPECT_TRUE(writes({"pressed", "drag 110 60", "drag -10 -10", "up", "down", "double"}));
}

INSTANTIATE_TEST_SUITE_P(Desktops, InteractionWithPrograms,
                         testing::Values(WindowManager::openbox, WindowManager::xfwm4));

/// Programs that ignore posted events.
class InteractionThroughSecondPointer : public Interaction {
protected:
    void SetUp() override {
        const auto window =
            startSourceProgram({"/usr/bin/python3", SAMPLES "/SampleGTK.py", "4.0", eventsFile().string()});
        constexpr Rect wanted{150, 100, 600, 400};
        client.moveResize(window, wanted);
        ASSERT_TRUE(client.waitUntil([&] { return count("ready") == 1 && client.place(window) == wanted; }));
        pinCovered(window);
        ASSERT_TRUE(shows(panel, source));
    }
    [[nodiscard]] std::filesystem::path eventsFile() const { return desktop.directory() / "events"; }
    [[nodiscard]] std::ptrdiff_t count(const std::string& line) const {
        const auto lines = linesOf(eventsFile());
        return std::count(lines.begin(), lines.end(), line);
    }
    [[nodiscard]] testing::AssertionResult clickPressesButton() {
        const auto before = count("button");
        click(buttonX, buttonY);
        return client.waitUntil([&] { return count("button") == before + 1; })
                   ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << joined(linesOf(eventsFile()));
    }
    /// In pixels.
    [[nodiscard]] int scrolledTo() const {
        const std::string beginning = "vertical ";
        int last = 0;
        for (const auto& line : linesOf(eventsFile())) {
            if (line.starts_with(beginning)) {
                last = std::stoi(line.substr(beginning.size()));
            }
        }
        return last;
    }
    [[nodiscard]] bool hasRecordOfHoles() const {
        return !client.property(client.root(), "_QUILLON_INPUT_HOLES").empty();
    }
    /// Whether the other window takes the user's click at the place of the button.
    [[nodiscard]] bool coverTakesClick() {
        const auto before = count("button");
        const auto place = client.place(source).value_or(Rect());
        pointer = {place.x + buttonX, place.y + buttonY};
        client.movePointer(pointer.x, pointer.y);
        press();
        waitAsAHandDoes();
        release();
        return client.holdsFor([&] { return count("button") == before; }, Milliseconds(300)) &&
               client.isAbove(cover->window(), source);
    }

    /// The window itself when it has none.
    [[nodiscard]] Window frameOf(Window window) const {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(client.xcb(), xcb_query_tree(client.xcb(), window), nullptr));
        return !tree || tree->parent == client.root() ? window : frameOf(tree->parent);
    }

    static constexpr int buttonX = 80;
    static constexpr int buttonY = 40;
};

TEST_F(InteractionThroughSecondPointer, TheFirstClicksAreNotLostWhileItIsMade) {
    moveTo(buttonX, buttonY);
    for (int clicks = 0; clicks < 3; ++clicks) {
        press();
        release();
    }
    EXPECT_TRUE(client.waitUntil([&] { return count("button") == 3; })) << joined(linesOf(eventsFile()));
}

TEST_F(InteractionThroughSecondPointer, ABurstLosesNothingAndKeepsItsOrder) {
    constexpr int x = 300;
    constexpr int y = 200;
    constexpr int steps = 20;
    turnWheel(x, y, wheelDown, steps);
    for (int times = 0; times < 25; ++times) {
        turnWheel(x, y, wheelDown, steps);
        turnWheel(x, y, wheelUp, steps);
    }
    ASSERT_TRUE(clickPressesButton());
    const auto position = scrolledTo();
    turnWheel(x, y, wheelUp);
    ASSERT_TRUE(clickPressesButton());
    const auto step = position - scrolledTo();
    ASSERT_GT(step, 0);
    EXPECT_EQ(std::lround(static_cast<double>(position) / step), steps) << position << " by " << step;
}

TEST_F(InteractionThroughSecondPointer, KeysThatAreHeldCount) {
    click(200, 28);
    client.pressKey(shiftKey);
    click(340, 28);
    EXPECT_TRUE(client.waitUntil([&] { return joined(linesOf(eventsFile())).find("secondo t") != std::string::npos; }))
        << joined(linesOf(eventsFile()));
    client.releaseKey(shiftKey);
    EXPECT_TRUE(clickPressesButton());
}

TEST_F(InteractionThroughSecondPointer, AProgramThatHangsHoldsNobodyUp) {
    ASSERT_TRUE(clickPressesButton());
    sourceProgram->send(SIGSTOP);
    click(buttonX, buttonY);
    turnWheel(300, 200, wheelDown, 5);
    EXPECT_EQ(quillon.pinned(), std::vector{source});
    sourceProgram->send(SIGCONT);
    EXPECT_TRUE(client.waitUntil([&] { return count("button") == 2; }));
}

TEST_F(InteractionThroughSecondPointer, AKillLeavesNoWindowOpenAndTheNextRunWorks) {
    ASSERT_TRUE(clickPressesButton());
    moveTo(200, 28);
    press();
    dragThrough({{220, 28}});
    quillon.program().send(SIGKILL);
    ASSERT_TRUE(quillon.program().waitForExit(stepBound));
    release();
    EXPECT_FALSE(hasRecordOfHoles());
    EXPECT_TRUE(coverTakesClick());
    quillon.start();
    panel = pinAndShow(source);
    EXPECT_TRUE(clickPressesButton());
}

TEST_F(InteractionThroughSecondPointer, WhatAnEarlierRunLeftOpenIsClosed) {
    EXPECT_EQ(quillon.stop(), 0);
    const auto frame = frameOf(cover->window());
    const auto place = client.place(source).value_or(Rect());
    const auto framePlace = client.place(frame).value_or(Rect());
    const xcb_rectangle_t hole{static_cast<std::int16_t>(place.x + buttonX - framePlace.x),
                               static_cast<std::int16_t>(place.y + buttonY - framePlace.y), 1, 1};
    xcb_shape_rectangles(client.xcb(), XCB_SHAPE_SO_SUBTRACT, XCB_SHAPE_SK_INPUT, XCB_CLIP_ORDERING_UNSORTED, frame, 0,
                         0, 1, &hole);
    const std::array<std::uint32_t, 4> record{frame, static_cast<std::uint32_t>(hole.x),
                                              static_cast<std::uint32_t>(hole.y), 1};
    xcb_change_property(client.xcb(), XCB_PROP_MODE_REPLACE, client.root(), client.atom("_QUILLON_INPUT_HOLES"),
                        XCB_ATOM_CARDINAL, 32, record.size(), record.data());
    ASSERT_TRUE(hasRecordOfHoles());
    quillon.start();
    EXPECT_FALSE(hasRecordOfHoles());
    EXPECT_TRUE(coverTakesClick());
}

/// The user goes to the real window.
class SwitchToRealWindow : public Interaction, public testing::WithParamInterface<WindowManager> {
protected:
    SwitchToRealWindow() : Interaction({.windowManager = GetParam()}) { isSwitchExpected = true; }

    [[nodiscard]] bool sourceComesToTheFront() {
        return client.waitUntil([&] {
            return client.activeWindow() == source && client.isViewable(source) &&
                   client.isAbove(source, cover->window());
        });
    }
};

TEST_P(SwitchToRealWindow, ACommandClickBringsItToTheFront) {
    const auto sample = startSample({"--windows", "2"});
    activate(sample.windows[1]);
    pinCovered(sample.windows[0]);
    client.pressKey(superKey);
    click(60, 60);
    EXPECT_TRUE(sourceComesToTheFront());
    // Only now: the window manager may hold the click up, but not the keys.
    client.releaseKey(superKey);
    EXPECT_TRUE(client.isAbove(cover->window(), sample.windows[1]));
}

TEST_P(SwitchToRealWindow, WithTheOtherRoutingEveryClickDoesAndIsNotForwarded) {
    const auto inputFile = desktop.directory() / "input";
    const auto sample = startSample({"--input", inputFile.string()});
    source = sample.window();
    cover = coverEverything();
    quillon.start({}, {"--input-routing=scroll"});
    ASSERT_EQ(quillon.command({"defaults", "write", "forwardEvents", "true"}).status, 0);
    panel = pinAndShow(source);
    ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover->window()); }));
    click(60, 60);
    EXPECT_TRUE(sourceComesToTheFront());
    const auto lines = linesOf(inputFile);
    EXPECT_TRUE(std::none_of(lines.begin(), lines.end(), [](const auto& line) {
        return line.find("press") != std::string::npos;
    })) << joined(lines);
}

INSTANTIATE_TEST_SUITE_P(Desktops, SwitchToRealWindow, testing::Values(WindowManager::openbox, WindowManager::xfwm4));

} // namespace

} // namespace quillon::e2e
