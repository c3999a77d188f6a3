// What the user does on a panel reaches the real window, which stays covered and inactive.

#include "EndToEndTest.h"
#include "EvdevKeys.h"

#include <algorithm>
#include <fstream>
#include <sstream>

namespace quillon::e2e {

namespace {

constexpr std::uint8_t left = 1;
constexpr std::uint8_t right = 3;
constexpr std::uint8_t wheelUp = 4;
constexpr std::uint8_t wheelDown = 5;
constexpr std::uint8_t wheelLeft = 6;
constexpr std::uint8_t wheelRight = 7;

using Lines = std::vector<std::string>;

Lines linesOf(const std::filesystem::path& path) {
    Lines lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::string joined(const Lines& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line + "\n";
    }
    return text;
}

class Interaction : public EndToEndTest {
protected:
    explicit Interaction(const DesktopOptions& options = {}) : EndToEndTest(options) {}

    /// Starts the program of the real window, which runs to the end of the test.
    Window startSourceProgram(const Command& command) {
        auto started = startProgram(command);
        sourceProgram = std::move(started.program);
        return started.window;
    }
    /// Covers the window, pins it and remembers how things are: they must be the same at the end.
    void pinCovered(Window window) {
        source = window;
        cover = coverEverything();
        quillon.start();
        panel = pinAndShow(source);
        ASSERT_TRUE(client.waitUntil([&] { return client.isAbove(panel, cover->window()); }));
        changesBefore = focus.changes().size();
    }

    void TearDown() override {
        if (cover && !isSwitchExpected) {
            EXPECT_TRUE(client.waitUntil(
                [&] { return client.isAbove(cover->window(), source) && client.activeWindow() == cover->window(); }));
            const auto changes = focus.changes();
            for (auto index = changesBefore; index < changes.size() && !mayTakeFocus; ++index) {
                EXPECT_EQ(changes[index].owner, cover->program->pid())
                    << "the focus went to window " << changes[index].window;
            }
            EXPECT_EQ(client.pointer(), pointer) << "the pointer was moved";
        }
        EndToEndTest::TearDown();
    }

    /// The user moves to a place of the panel.
    void moveTo(int x, int y) {
        const auto place = client.place(panel).value_or(Rect());
        pointer = {place.x + x, place.y + y};
        client.movePointer(pointer.x, pointer.y);
    }
    void press(std::uint8_t button = left) { client.pressButton(button); }
    void release(std::uint8_t button = left) { client.releaseButton(button); }
    void click(int x, int y, std::uint8_t button = left) {
        moveTo(x, y);
        press(button);
        release(button);
    }
    void doubleClick(int x, int y) {
        click(x, y);
        click(x, y);
    }
    void turnWheel(int x, int y, std::uint8_t direction, int steps = 1) {
        moveTo(x, y);
        for (int step = 0; step < steps; ++step) {
            press(direction);
            release(direction);
        }
    }
    /// Moves of a real hand are seen one by one.
    void dragThrough(const std::vector<std::pair<int, int>>& places) {
        for (const auto& [x, y] : places) {
            moveTo(x, y);
            std::ignore = client.holdsFor([] { return true; }, Milliseconds(30));
        }
    }

    [[nodiscard]] testing::AssertionResult becomesSelected(const std::string& text) {
        std::optional<std::string> seen;
        const bool same = client.waitUntil([&] {
            seen = client.selectedText();
            return seen == text;
        });
        return same ? testing::AssertionSuccess()
                    : testing::AssertionFailure() << "selected is \"" << seen.value_or("nothing") << '"';
    }
    /// What the window itself shows changes after the action.
    template <class Action>
    [[nodiscard]] bool changesPicture(Action action) {
        const auto before = client.windowPicture(source).value_or(Picture());
        action();
        return client.waitUntil(
            [&] { return !difference(before, client.windowPicture(source).value_or(Picture()), 0).empty(); });
    }

    std::unique_ptr<Program> sourceProgram;
    Window source = 0;
    std::optional<Sample> cover;
    Window panel = 0;
    XClient::Place pointer;
    bool isSwitchExpected = false;
    /// The real window may get the focus for a moment, until it is given back.
    bool mayTakeFocus = false;
    std::size_t changesBefore = 0;
};

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

    [[nodiscard]] std::string titleOf(Window window) const {
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            client.xcb(),
            xcb_get_property(client.xcb(), 0, window, client.atom("_NET_WM_NAME"), XCB_GET_PROPERTY_TYPE_ANY, 0, 1024),
            nullptr));
        return reply ? std::string(static_cast<const char*>(xcb_get_property_value(reply.get())),
                                   static_cast<std::size_t>(xcb_get_property_value_length(reply.get())))
                     : std::string();
    }
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
    pinCovered(editor);
    ASSERT_TRUE(shows(panel, source));
    keepPicture("before-qt");
    doubleClick(15, 103);
    EXPECT_TRUE(becomesSelected("primo"));
    keepPicture("forwarded-to-qt");

    // The menu is a real one, at the real window's place.
    const auto popups = [&] { return client.visibleWindowsOf(sourceProgram->pid()).size(); };
    const auto before = popups();
    click(15, 12);
    EXPECT_TRUE(client.waitUntil([&] { return popups() > before; }));
    EXPECT_TRUE(client.holdsFor([&] { return popups() > before; }, Milliseconds(700))) << "the menu closed by itself";
    keepPicture("menu-of-qt");
    client.type({escapeKey});
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

/// The user goes to the real window.
class SwitchToRealWindow : public Interaction, public testing::WithParamInterface<WindowManager> {
protected:
    SwitchToRealWindow() : Interaction({.windowManager = GetParam()}) { isSwitchExpected = true; }

    void commandClick() {
        client.pressKey(superKey);
        click(60, 60);
        client.releaseKey(superKey);
    }
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
    commandClick();
    EXPECT_TRUE(sourceComesToTheFront());
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
