// The simulated desktop's windows with a title bar, and the keys that reach them.

#include "UnitTest.h"

#include <limits>

namespace quillon {
namespace {

using simulated::Desktop;
using simulated::SimulatedTitledWindow;

constexpr std::uint16_t keyA = 0;
constexpr std::uint16_t escape = 53;

class SimulatedTitledWindowsTest : public UnitTest {
protected:
    std::unique_ptr<TitledWindow> makeWindow(const std::string& title = "Impostazioni") {
        return desktop.titledWindows().makeWindow(title, form());
    }
    std::unique_ptr<TitledWindow> showWindow(const std::string& title = "Impostazioni") {
        auto window = makeWindow(title);
        window->makeKeyAndOrderFront();
        desktop.sharedApplication()->activateIgnoringOtherApps();
        return window;
    }
    WindowContent form() {
        return Form{.sections = {{"Una", {switchRow("Interruttore", true), pickerRow(), buttonRow("Consenti")}},
                                 {"Due", {switchRow("Altro", false)}}},
                    .closing = {.title = "Fine", .action = note("Fine"), .isCancel = true},
                    .minimumSize = {}};
    }
    FormRow switchRow(std::string title, bool isOn) {
        return {std::move(title), "", Switch{isOn, [this](bool on) {
                                                 done.push_back(fmt::format("{}, shown {}", on, shown().lines().at(1)));
                                             }}};
    }
    FormRow pickerRow() {
        return {"Scelta", "nota", Picker{{"una", "due"}, std::nullopt, [this](std::size_t index) {
                                             done.push_back(std::to_string(index));
                                         }}};
    }
    FormRow buttonRow(std::string title) {
        return {"Permesso", "",
                RowItems{Label{"testo", TextStyle::body}, Button{.title = title, .action = note(title)},
                         Badge{"Autorizzata", "checkmark"}}};
    }
    std::function<void()> note(std::string what) {
        return [this, what = std::move(what)] { done.push_back(what); };
    }
    SimulatedTitledWindow& shown() { return desktop.titledWindows().window("Impostazioni"); }
    Lines takeDone() { return std::exchange(done, {}); }

    ProcessID other = desktop.launch("Note");
    Lines done;
};

using SimulatedTitledWindowsDeathTest = SimulatedTitledWindowsTest;

TEST_F(SimulatedTitledWindowsTest, AWindowShowsItsContent) {
    const auto window = makeWindow();
    EXPECT_EQ(shown().lines(),
              (Lines{"= Una", "Interruttore: on", "Scelta: <>", "    nota",
                     "Permesso: testo [Consenti] {checkmark Autorizzata}", "= Due", "Altro: off", "[Fine ⎋]"}));
    window->setContent(Column{.items = {ApplicationIcon{{64, 64}}, Label{"Quillon", TextStyle::title}, Divider{},
                                        TextBlock{{{"uno", TextStyle::caption}, {"due", TextStyle::captionWarning}}},
                                        Button{.title = "Chiudi", .action = note("Chiudi")}}});
    EXPECT_EQ(shown().lines(), (Lines{"icon 64x64", "# Quillon", "---", "(uno)", "!due!", "[Chiudi]"}));
}

TEST_F(SimulatedTitledWindowsTest, ControlsShowTheirNewStateBeforeTheirActionsAreCalled) {
    const auto window = showWindow();
    shown().turnSwitch("Interruttore", false);
    EXPECT_EQ(takeDone(), Lines{"false, shown Interruttore: off"});
    shown().choose("Scelta", "due");
    shown().choose("Scelta", "due");
    EXPECT_EQ(takeDone(), Lines{"1"}) << "choosing the same again is no change";
    EXPECT_EQ(shown().lines().at(2), "Scelta: <due>");
    shown().press("Permesso", "Consenti");
    shown().press("Fine");
    EXPECT_EQ(takeDone(), (Lines{"Consenti", "Fine"}));
}

TEST_F(SimulatedTitledWindowsTest, AnActionMayShowOtherContent) {
    const auto window = showWindow();
    auto content = std::get<Form>(form());
    content.closing.action = [this, &window] {
        window->setContent(form());
        done.emplace_back("shown anew");
    };
    window->setContent(content);
    shown().press("Fine");
    shown().press("Fine");
    EXPECT_EQ(takeDone(), (Lines{"shown anew", "Fine"}));
}

TEST_F(SimulatedTitledWindowsTest, AControlKeepsTheFocusWhileTheSameOneCanShowItsRow) {
    const auto window = showWindow();
    EXPECT_EQ(shown().firstResponder(), std::nullopt);
    shown().focus("Scelta");
    window->setContent(form());
    EXPECT_EQ(shown().firstResponder(), "Scelta");
    auto content = std::get<Form>(form());
    content.sections[0].rows[1].note = "";
    window->setContent(content);
    EXPECT_EQ(shown().firstResponder(), std::nullopt) << "a row with a note takes other controls";

    window->setContent(form());
    shown().focus("Altro");
    content.sections.pop_back();
    window->setContent(content);
    EXPECT_EQ(shown().firstResponder(), std::nullopt);
    shown().focus("Interruttore");
    window->clearFirstResponder();
    EXPECT_EQ(shown().firstResponder(), std::nullopt);
    shown().focus("Interruttore");
    window->setContent(Column());
    EXPECT_EQ(shown().firstResponder(), std::nullopt);
}

TEST_F(SimulatedTitledWindowsTest, RowsHaveTheSameControlsWhateverTheirTextsAndValues) {
    const auto row = switchRow("uno", true);
    EXPECT_TRUE(haveSameControls(row, switchRow("due", false)));
    EXPECT_FALSE(haveSameControls(row, switchRow("", true)));
    EXPECT_FALSE(haveSameControls(row, pickerRow()));
    EXPECT_TRUE(haveSameControls(buttonRow("uno"), buttonRow("due")));
    auto fewer = buttonRow("uno");
    std::get<RowItems>(fewer.control).pop_back();
    EXPECT_FALSE(haveSameControls(buttonRow("uno"), fewer));
    auto others = buttonRow("uno");
    std::swap(std::get<RowItems>(others.control).front(), std::get<RowItems>(others.control).back());
    EXPECT_FALSE(haveSameControls(buttonRow("uno"), others));
}

TEST_F(SimulatedTitledWindowsTest, TheWindowInFrontIsKeyWhileTheProgramIsActive) {
    const auto first = makeWindow("Prima");
    const auto second = makeWindow("Seconda");
    auto& windows = desktop.titledWindows();
    first->makeKeyAndOrderFront();
    second->makeKeyAndOrderFront();
    EXPECT_EQ(windows.keyWindow(), nullptr) << "the program is not active";
    desktop.sharedApplication()->activateIgnoringOtherApps();
    EXPECT_EQ(windows.keyWindow(), second.get());
    windows.window("Prima").press("Fine");
    EXPECT_TRUE(windows.window("Prima").isKey());
    EXPECT_EQ(windows.stack(), (std::vector{&windows.window("Prima"), &windows.window("Seconda")}));
    first->close();
    EXPECT_EQ(windows.keyWindow(), second.get());
    EXPECT_FALSE(first->isVisible());
    EXPECT_TRUE(second->isVisible());
    desktop.activate(other);
    EXPECT_EQ(windows.keyWindow(), nullptr);
    windows.window("Seconda").focus("Altro");
    EXPECT_EQ(windows.keyWindow(), second.get());
    windows.window("Seconda").clickCloseButton();
    EXPECT_EQ(windows.keyWindow(), nullptr);
}

TEST_F(SimulatedTitledWindowsTest, ClosingIsToldBeforeTheWindowGoes) {
    const auto window = showWindow();
    std::vector<bool> visible;
    auto token = window->observeWillClose([&] { visible.push_back(window->isVisible()); });
    shown().clickCloseButton();
    EXPECT_EQ(visible, std::vector{true});
    window->makeKeyAndOrderFront();
    token.reset();
    window->close();
    EXPECT_EQ(visible, std::vector{true});
}

TEST_F(SimulatedTitledWindowsTest, TheTitleBarIsPartOfTheFrame) {
    desktop.titledWindows().setFittingSize({300, 200});
    const auto window = makeWindow();
    EXPECT_EQ(window->fittingSize(), (Size{300, 200}));
    EXPECT_EQ(window->contentSize(), (Size{300, 200}));
    EXPECT_EQ(window->frame(), (ScreenRect{{0, 0}, {300, 228}}));
    EXPECT_EQ(desktop.titledWindows().frameSize({0, 0}), (Size{0, 28}));
    window->setFrame({{10, 20}, {400, 528}}, true);
    EXPECT_EQ(window->contentSize(), (Size{400, 500}));
    window->setContentSize({420, 400});
    EXPECT_EQ(window->frame(), (ScreenRect{{10, 120}, {420, 428}})) << "the title bar stays";
    window->center();
    EXPECT_EQ(window->frame(), (ScreenRect{{510, 223.5}, {420, 428}}));
    shown().setFittingSize({500, 600});
    EXPECT_EQ(window->fittingSize(), (Size{500, 600}));
    desktop.screens().set({});
    window->center();
    EXPECT_EQ(window->frame(), (ScreenRect{{510, 223.5}, {420, 428}})) << "there is no screen";
}

TEST_F(SimulatedTitledWindowsTest, AWindowIsOnTheScreenThatItLiesOnMostAndTellsOfAnother) {
    const auto window = showWindow();
    int changes = 0;
    auto token = window->observeDidChangeScreen([&] { ++changes; });
    const Screen left{{{0, 0}, {1000, 900}}, 1};
    const Screen right{{{1000, 0}, {1000, 900}}, 2};
    desktop.changeScreens({left, right});
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 1) << "the first screen has become another one";
    window->setFrame({{700, 100}, {500, 428}}, true);
    EXPECT_EQ(window->screen()->backingScaleFactor, 1);
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 1);
    shown().drag({800, 100});
    EXPECT_EQ(window->screen()->backingScaleFactor, 2);
    EXPECT_EQ(changes, 1) << "it is told later";
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 2);
    window->setFrameOrigin({5000, 100});
    EXPECT_FALSE(window->screen());
    token.reset();
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 2);
}

TEST_F(SimulatedTitledWindowsTest, AWindowComesToTheCurrentSpaceOnlyWhenItIsToldTo) {
    const auto window = makeWindow();
    EXPECT_EQ(shown().space(), std::nullopt);
    window->makeKeyAndOrderFront();
    EXPECT_EQ(shown().space(), 1);
    desktop.model().currentSpace = 2;
    window->setCollectionBehavior({.moveToActiveSpace = true});
    window->makeKeyAndOrderFront();
    EXPECT_EQ(shown().space(), 2);
    EXPECT_TRUE(shown().collectionBehavior().moveToActiveSpace);
    window->setCollectionBehavior({});
    desktop.model().currentSpace = 1;
    window->makeKeyAndOrderFront();
    EXPECT_EQ(desktop.model().currentSpace, 2) << "the user is taken to the window's Space";
}

TEST_F(SimulatedTitledWindowsTest, WhatScrollsIsTheForm) {
    const auto window = showWindow();
    ASSERT_TRUE(window->scrollExtent());
    shown().setScrollExtent(ScrollExtent{900, 500, false});
    EXPECT_EQ(window->scrollExtent()->documentHeight, 900);
    EXPECT_NE(shown().scrollPosition(), 400);
    window->scrollTo(400);
    EXPECT_EQ(shown().scrollPosition(), 400);
    shown().scroll(20);
    EXPECT_EQ(shown().scrollPosition(), 20);
    window->setContent(Column());
    EXPECT_FALSE(window->scrollExtent());
}

// Keys

TEST_F(SimulatedTitledWindowsTest, EscapePressesTheCancelButtonOfTheKeyWindow) {
    desktop.pressKey(escape, 0);
    const auto window = showWindow();
    desktop.pressKey(keyA, 0);
    EXPECT_EQ(takeDone(), Lines{});
    desktop.pressKey(escape, 0);
    EXPECT_EQ(takeDone(), Lines{"Fine"});
    desktop.activate(other);
    desktop.pressKey(escape, 0);
    EXPECT_EQ(takeDone(), Lines{});
    desktop.activate(Desktop::ownPID());
    window->setContent(Column{.items = {Button{.title = "Chiudi", .action = note("Chiudi")}}});
    desktop.pressKey(escape, 0);
    EXPECT_EQ(takeDone(), Lines{}) << "it has no cancel button";
}

TEST_F(SimulatedTitledWindowsTest, MonitorsSeeAKeyBeforeTheWindowUntilOneSwallowsIt) {
    auto& monitors = desktop.keyMonitors();
    const auto window = showWindow();
    auto answer = TappedEvent::passes;
    RegistrationToken first = monitors.addLocalMonitor([&](const KeyEvent& event) {
        done.push_back(fmt::format("first {} {:#x}", event.keyCode, event.modifierFlags));
        return answer;
    });
    const auto second = monitors.addLocalMonitor([&](const KeyEvent&) {
        done.emplace_back("second");
        return TappedEvent::passes;
    });
    EXPECT_EQ(desktop.pressKey(escape, 0x10000), TappedEvent::passes);
    EXPECT_EQ(takeDone(), (Lines{"first 53 0x10000", "second", "Fine"}));
    answer = TappedEvent::swallowed;
    EXPECT_EQ(desktop.pressKey(escape, 0), TappedEvent::passes) << "this program saw it";
    EXPECT_EQ(takeDone(), Lines{"first 53 0x0"});
    desktop.activate(other);
    desktop.pressKey(escape, 0);
    EXPECT_EQ(takeDone(), Lines{});
    desktop.activate(Desktop::ownPID());
    first.reset();
    desktop.pressKey(keyA, 0);
    EXPECT_EQ(takeDone(), Lines{"second"});
}

TEST_F(SimulatedTitledWindowsTest, AMonitorMayEndItself) {
    const auto window = showWindow();
    RegistrationToken token;
    token = desktop.keyMonitors().addLocalMonitor([&](const KeyEvent&) {
        token.reset();
        return TappedEvent::swallowed;
    });
    desktop.pressKey(escape, 0);
    EXPECT_EQ(takeDone(), Lines{});
    EXPECT_EQ(desktop.keyMonitors().count(), 0U);
    desktop.pressKey(escape, 0);
    EXPECT_EQ(takeDone(), Lines{"Fine"});
}

TEST_F(SimulatedTitledWindowsTest, AKeyThatATapSwallowsReachesNoWindow) {
    const auto window = showWindow();
    const auto tap = desktop.eventTaps().create(EventTapLocation::session, EventTapPlacement::tailAppend,
                                                EventTapOptions::defaultTap, eventMaskBit(SystemEventType::keyDown),
                                                [](auto, const auto&) { return TappedEvent::swallowed; });
    const auto monitor = desktop.keyMonitors().addLocalMonitor([&](const KeyEvent&) {
        done.emplace_back("monitor");
        return TappedEvent::passes;
    });
    tap->addToMainRunLoop();
    tap->setEnabled(true);
    EXPECT_EQ(desktop.pressKey(escape, 0), TappedEvent::swallowed);
    EXPECT_EQ(takeDone(), Lines{});
}

TEST_F(SimulatedTitledWindowsTest, TheSystemMayRefuseMonitors) {
    desktop.keyMonitors().refuse(true);
    EXPECT_EQ(desktop.keyMonitors().addLocalMonitor([](const KeyEvent&) { return TappedEvent::passes; }), nullptr);
}

// Misuse

TEST_F(SimulatedTitledWindowsDeathTest, ControlsAreNamedByTextsThatThereAreOnceEach) {
    const auto window = showWindow();
    EXPECT_DEATH(shown().press("Annulla"), "there is not one button «Annulla»");
    EXPECT_DEATH(shown().press("Permesso", "Fine"), "there is not one button «Fine»");
    EXPECT_DEATH(shown().turnSwitch("Nessuna", true), "there is not one row «Nessuna»");
    EXPECT_DEATH(shown().turnSwitch("Scelta", true), "the row «Scelta» has another control");
    EXPECT_DEATH(shown().turnSwitch("Interruttore", true), "the switch «Interruttore» is turned to where it stands");
    EXPECT_DEATH(shown().choose("Scelta", "tre"), "«Scelta» has no option «tre»");
    const auto second = makeWindow();
    EXPECT_DEATH(shown().press("Fine"), "there is not one window «Impostazioni»");
}

TEST_F(SimulatedTitledWindowsDeathTest, OnlyAWindowOnScreenIsUsedAndOneActionAtATime) {
    auto window = makeWindow();
    EXPECT_DEATH(shown().press("Fine"), "input on a titled window that is not on screen");
    EXPECT_DEATH(window->close(), "TitledWindow::close of a window that is not on screen");
    window->makeKeyAndOrderFront();
    auto content = std::get<Form>(form());
    content.closing.action = [&] { shown().pressEscape(); };
    window->setContent(content);
    EXPECT_DEATH(shown().press("Fine"), "input while the titled window performs an action");
    content.closing.action = [&] { window.reset(); };
    window->setContent(content);
    EXPECT_DEATH(shown().press("Fine"), "a titled window was destroyed by an action of its content");
}

TEST_F(SimulatedTitledWindowsDeathTest, ContentThatDoesNothingOrCannotBeIsRefused) {
    const auto window = makeWindow();
    const auto show = [&](FormRow row) {
        window->setContent(Form{.sections = {{"", {std::move(row)}}},
                                .closing = {.title = "Fine", .action = note("Fine")},
                                .minimumSize = {}});
    };
    EXPECT_DEATH(window->setContent(Form()), "setContent with a button «» that does nothing");
    EXPECT_DEATH(show({"A", "", Switch()}), "setContent with a control «A» that does nothing");
    EXPECT_DEATH(show({"B", "", Picker()}), "setContent with a control «B» that does nothing");
    auto row = pickerRow();
    std::get<Picker>(row.control).selected = 2;
    EXPECT_DEATH(show(row), "with a selection in «Scelta» that is none of its options");
}

TEST_F(SimulatedTitledWindowsDeathTest, PlacesThatCannotBe) {
    const auto window = showWindow();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DEATH(window->setFrameOrigin({nan, 0}), "TitledWindow::setFrameOrigin with a frame that is no rectangle");
    EXPECT_DEATH(window->setFrame({{0, 0}, {nan, 0}}, true), "TitledWindow::setFrame with a frame that is no");
    EXPECT_DEATH(window->setContentSize({nan, 0}), "TitledWindow::setContentSize with a frame that is no rectangle");
    EXPECT_DEATH(window->scrollTo(nan), "TitledWindow::scrollTo a place that is none");
    shown().setScrollExtent(std::nullopt);
    EXPECT_DEATH(window->scrollTo(0), "TitledWindow::scrollTo without a scroll view");
    EXPECT_DEATH(shown().scroll(0), "the user scrolls what does not scroll");
}

TEST_F(SimulatedTitledWindowsDeathTest, NeitherWindowsNorMonitorsOutliveTheDesktop) {
    const auto leaveWindow = [&] {
        auto shortLived = std::make_unique<Desktop>();
        const auto window = shortLived->titledWindows().makeWindow("Impostazioni", form());
        shortLived.reset();
    };
    EXPECT_DEATH(leaveWindow(), "1 titled windows outlive the desktop");
    const auto leaveMonitor = [] {
        auto shortLived = std::make_unique<Desktop>();
        const auto token =
            shortLived->keyMonitors().addLocalMonitor([](const KeyEvent&) { return TappedEvent::passes; });
        shortLived.reset();
    };
    EXPECT_DEATH(leaveMonitor(), "1 key monitors outlive the desktop");
    EXPECT_DEATH(static_cast<void>(desktop.keyMonitors().addLocalMonitor(nullptr)),
                 "addLocalMonitor without a handler");
}

} // namespace
} // namespace quillon
