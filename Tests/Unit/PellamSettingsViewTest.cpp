// The settings window with its sizes, around a content of the test's own.

#include "PellamKit/PellamSettingsView.h"

#include "PellamKit/PellamSettingsMetrics.h"
#include "PellamKit/PellamSettingsWindowSizer.h"
#include "UnitTest.h"

#include <optional>

namespace quillon {
namespace {

using simulated::SimulatedTitledWindow;

const std::string title = "Quillon — Impostazioni";
const std::string launchRow = "Apri all’accesso";

constexpr Screen screenOf1000By700{{{0, 0}, {1000, 800}}, 1, {{0, 40}, {1000, 700}}};

class TestContent final : public PellamSettingsContent {
public:
    [[nodiscard]] std::vector<FormSection> sections() override {
        ++built;
        std::vector<FormRow> rows;
        for (int row = 1; row <= rowCount; ++row) {
            rows.push_back({"Riga " + std::to_string(row), "", Switch{false, [](bool) {}}});
        }
        return {{"Prova", rows}};
    }
    void windowWillClose() override { ++closed; }

    int rowCount = 1;
    int built = 0;
    int closed = 0;
};

class PellamSettingsViewTest : public UnitTest {
protected:
    SimulatedTitledWindow& open(bool showsLaunchAtLogin = true) {
        PellamSettingsView::showWindow("Quillon", showsLaunchAtLogin, [this] {
            auto made = std::make_unique<TestContent>();
            content = made.get();
            ++contentsMade;
            return made;
        });
        return window();
    }
    SimulatedTitledWindow& openSettled() {
        open();
        desktop.advance(Seconds(1));
        desktop.journal().clear();
        return window();
    }
    SimulatedTitledWindow& window() { return desktop.titledWindows().window(title); }
    Lines takeWindowCalls() { return desktop.journal().take({"titledWindow", "application."}); }

    TestContent* content = nullptr;
    int contentsMade = 0;
};

using PellamSettingsViewEdgeCases = PellamSettingsViewTest;

TEST_F(PellamSettingsViewEdgeCases, OpeningTheSettingsTwiceCreatesOneWindow) {
    openSettled();
    open();
    EXPECT_EQ(desktop.titledWindows().all().size(), 1U);
    EXPECT_EQ(contentsMade, 1);
    EXPECT_EQ(takeWindowCalls(), (Lines{"titledWindow.makeKeyAndOrderFront", "application.activateIgnoringOtherApps"}));
}

TEST_F(PellamSettingsViewEdgeCases, AContentThatWants300By200Gets420By400) {
    desktop.titledWindows().setFittingSize({300, 200});
    EXPECT_EQ(open().contentSize(), (Size{420, 400}));
}

TEST_F(PellamSettingsViewEdgeCases, AContentThatWants1200By900Gets800By532OnAScreenOf1000By700) {
    desktop.titledWindows().setFittingSize({1200, 900});
    desktop.screens().set({screenOf1000By700});
    EXPECT_EQ(open().contentSize(), (Size{800, 532}));
}

TEST_F(PellamSettingsViewEdgeCases, UnpluggingItsDisplayMovesTheWindowIntoWhatTheOtherOneLeavesFree) {
    const Screen laptop{{{0, 0}, {1000, 700}}, 2, {{0, 50}, {1000, 625}}};
    const Screen monitor{{{1000, -300}, {1920, 1080}}, 1, {{1000, -300}, {1920, 1055}}};
    desktop.titledWindows().setFittingSize({600, 800});
    desktop.screens().set({laptop, monitor});
    desktop.screens().setMouseLocation({1500, 0});
    openSettled();
    ASSERT_EQ(window().frame(), (ScreenRect{{1660, -186.5}, {600, 828}}));

    desktop.changeScreens({laptop});
    desktop.runUntilIdle();
    EXPECT_EQ(window().frame(), (ScreenRect{{400, 141.5}, {600, 500}}));
}

TEST_F(PellamSettingsViewEdgeCases, WithThePointerOnASecondDisplayItOpensCentredOnWhatThatLeavesFree) {
    desktop.screens().set({{{{0, 0}, {1440, 900}}, 2}, {{{1440, 0}, {1000, 800}}, 1, {{1440, 40}, {1000, 735}}}});
    desktop.screens().setMouseLocation({1500, 10});
    EXPECT_EQ(open().frame(), (ScreenRect{{1700, 113.5}, {480, 588}}));
}

// The window

TEST_F(PellamSettingsViewTest, TheApplicationsSectionsComeBeforeItsOwn) {
    EXPECT_EQ(open().lines(), (Lines{
                                  "= Prova",
                                  "Riga 1: off",
                                  "= Generali",
                                  "Apri all’accesso: off",
                                  "[Fine ⎋]",
                              }));
    EXPECT_EQ(std::get<Form>(window().content()).minimumSize, (Size{420, 400}));
}

TEST_F(PellamSettingsViewTest, WithoutLaunchAtLoginTheSectionIsLeftOut) {
    EXPECT_EQ(open(false).lines(), (Lines{"= Prova", "Riga 1: off", "[Fine ⎋]"}));
}

TEST_F(PellamSettingsViewTest, TheTextsAreLookedUp) {
    const std::pair<const char*, const char*> texts[] = {
        {"settings.title", "%@ Settings"},
        {"settings.general", "General"},
        {"settings.launch_at_login", "Open at login"},
        {"settings.done", "Done"},
    };
    for (const auto& [key, text] : texts) {
        desktop.bundle().setLocalizedString("Localizable", key, text);
    }
    PellamSettingsView::showWindow("Quillon", true, [] { return std::make_unique<TestContent>(); });
    EXPECT_EQ(desktop.titledWindows().window("Quillon Settings").lines(),
              (Lines{"= Prova", "Riga 1: off", "= General", "Open at login: off", "[Done ⎋]"}));
}

TEST_F(PellamSettingsViewTest, ItIsMadeSizedCentredShownAndScrolledInThisOrder) {
    desktop.activate(desktop.launch("Note"));
    desktop.journal().clear();
    open();
    desktop.advance(Seconds(0));
    EXPECT_EQ(takeWindowCalls(), (Lines{
                                     "titledWindows.makeWindow " + title,
                                     "titledWindow.observeDidChangeScreen",
                                     "titledWindow.observeWillClose",
                                     "titledWindow.setContentSize 480x640",
                                     "titledWindow.setFrameOrigin 480,103.5",
                                     "titledWindow.makeKeyAndOrderFront",
                                     "application.activateIgnoringOtherApps",
                                     "titledWindow.clearFirstResponder",
                                     "titledWindow.scrollTo 0",
                                 }));
    EXPECT_TRUE(window().isKey());
}

TEST_F(PellamSettingsViewTest, AClosedOneIsFittedToItsScreenAndComesToTheSpaceOfTheUser) {
    openSettled().clickCloseButton();
    window().setFittingSize({500, 500});
    desktop.model().currentSpace += 1;
    desktop.journal().clear();
    open();
    desktop.advance(Seconds(1));
    EXPECT_EQ(window().space(), desktop.model().currentSpace);
    EXPECT_EQ(takeWindowCalls(), (Lines{
                                     "titledWindow.setContentSize 500x500",
                                     "titledWindow.setCollectionBehavior moveToActiveSpace=true",
                                     "titledWindow.makeKeyAndOrderFront",
                                     "application.activateIgnoringOtherApps",
                                     "titledWindow.setCollectionBehavior moveToActiveSpace=false",
                                 }));
}

TEST_F(PellamSettingsViewTest, FineEscapeAndTheCloseButtonCloseItAndTellTheContent) {
    openSettled().press("Fine");
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(content->closed, 1);
    open().pressEscape();
    EXPECT_FALSE(window().isVisible());
    EXPECT_EQ(content->closed, 2);
    open().clickCloseButton();
    EXPECT_EQ(content->closed, 3);
    EXPECT_EQ(desktop.titledWindows().all().size(), 1U) << "it is kept";
}

TEST_F(PellamSettingsViewTest, ItGoesWithThePlatformAndNothingThatWaitsTouchesItThen) {
    open();
    const auto willChange = content->willChange;
    willChange();
    const PlatformScope next(desktop);
    EXPECT_TRUE(desktop.titledWindows().all().empty());
    willChange();
    desktop.journal().clear();
    desktop.advance(Seconds(1));
    EXPECT_EQ(takeWindowCalls(), Lines{});
}

// Changes of the content

TEST_F(PellamSettingsViewTest, TheWindowShowsAChangeInTheNextTurn) {
    openSettled();
    content->rowCount = 2;
    content->willChange();
    EXPECT_EQ(window().lines().size(), 5U);
    desktop.runUntilIdle();
    EXPECT_EQ(window().lines(), (Lines{
                                    "= Prova",
                                    "Riga 1: off",
                                    "Riga 2: off",
                                    "= Generali",
                                    "Apri all’accesso: off",
                                    "[Fine ⎋]",
                                }));
}

TEST_F(PellamSettingsViewTest, SeveralChangesInOneTurnCostOneNewContent) {
    openSettled();
    const auto built = content->built;
    for (int change = 0; change < 3; ++change) {
        content->willChange();
    }
    desktop.runUntilIdle();
    EXPECT_EQ(content->built, built + 1);
    EXPECT_EQ(takeWindowCalls(), Lines{"titledWindow.setContent"});
    content->willChange();
    desktop.runUntilIdle();
    EXPECT_EQ(takeWindowCalls(), Lines{"titledWindow.setContent"}) << "and the next change another one";
}

TEST_F(PellamSettingsViewTest, AChangeKeepsTheFocusAndTheScrollPosition) {
    openSettled().focus(launchRow);
    window().scroll(80);
    content->willChange();
    desktop.runUntilIdle();
    EXPECT_EQ(window().firstResponder(), launchRow);
    EXPECT_EQ(window().scrollPosition(), 80);
}

// The scroll position

TEST_F(PellamSettingsViewTest, ItIsScrolledToItsTopAtOnceAndAfter50And250Milliseconds) {
    open();
    for (const double settled : {0.0, 0.05, 0.2}) {
        window().focus(launchRow);
        window().scroll(80);
        desktop.advance(Seconds(settled) - Seconds(settled > 0 ? 0.001 : 0));
        if (settled > 0) {
            EXPECT_EQ(window().scrollPosition(), 80) << settled;
            desktop.advance(Seconds(0.001));
        }
        EXPECT_EQ(window().scrollPosition(), 0) << settled;
        EXPECT_EQ(window().firstResponder(), std::nullopt) << settled;
    }
    window().scroll(80);
    desktop.advance(Seconds(10));
    EXPECT_EQ(window().scrollPosition(), 80) << "from then on the position is the user's";
}

TEST_F(PellamSettingsViewTest, TheTopOfADocumentThatIsNotFlippedIsItsUpperEnd) {
    open().setScrollExtent(ScrollExtent{900, 600, false});
    desktop.advance(Seconds(0));
    EXPECT_EQ(window().scrollPosition(), 300);
    window().setScrollExtent(ScrollExtent{500, 600, false});
    desktop.advance(Seconds(0.05));
    EXPECT_EQ(window().scrollPosition(), 0);
}

TEST_F(PellamSettingsViewTest, WithoutAScrollViewOnlyTheFocusIsTakenAway) {
    open().setScrollExtent(std::nullopt);
    desktop.journal().clear();
    desktop.advance(Seconds(0));
    EXPECT_EQ(takeWindowCalls(), Lines{"titledWindow.clearFirstResponder"});
}

// Launch at login

TEST_F(PellamSettingsViewTest, TheSwitchStartsWithWhatTheSystemSays) {
    desktop.loginItem().setEnabled(true);
    EXPECT_EQ(open().lines().at(3), launchRow + ": on");
}

TEST_F(PellamSettingsViewTest, TheSwitchRegistersAndUnregisters) {
    openSettled().turnSwitch(launchRow, true);
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.journal().take({"loginItem."}), Lines{"loginItem.registerItem"});
    EXPECT_EQ(window().lines().at(3), launchRow + ": on");
    window().turnSwitch(launchRow, false);
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.journal().take({"loginItem."}), Lines{"loginItem.unregisterItem"});
    EXPECT_EQ(window().lines().at(3), launchRow + ": off");
}

TEST_F(PellamSettingsViewTest, WhereThatFailsTheSwitchGoesBackToWhatTheSystemSays) {
    openSettled();
    desktop.loginItem().refuse(true);
    window().turnSwitch(launchRow, true);
    desktop.runUntilIdle();
    EXPECT_EQ(window().lines().at(3), launchRow + ": off");
    EXPECT_EQ(desktop.journal().take({"loginItem."}), Lines{"loginItem.registerItem"}) << "and nothing is undone";

    desktop.loginItem().setEnabled(true);
    window().turnSwitch(launchRow, true);
    desktop.runUntilIdle();
    EXPECT_EQ(window().lines().at(3), launchRow + ": on") << "the user had allowed it elsewhere";

    window().turnSwitch(launchRow, false);
    desktop.runUntilIdle();
    EXPECT_EQ(window().lines().at(3), launchRow + ": on");
}

// Sizes

class PellamSettingsMetricsTest : public UnitTest {};

TEST_F(PellamSettingsMetricsTest, AContentGetsWhatItWantsBetweenTheLimits) {
    EXPECT_EQ(PellamSettingsMetrics::contentSize({500, 450}, screenOf1000By700), (Size{500, 450}));
    EXPECT_EQ(PellamSettingsMetrics::contentSize({800, 532}, screenOf1000By700), (Size{800, 532}));
    EXPECT_EQ(PellamSettingsMetrics::contentSize({801, 533}, screenOf1000By700), (Size{800, 532}));
    EXPECT_EQ(PellamSettingsMetrics::contentSize({0, 900}, screenOf1000By700), (Size{420, 532}));
    EXPECT_EQ(PellamSettingsMetrics::contentSize({900, 0}, screenOf1000By700), (Size{800, 400}));
}

TEST_F(PellamSettingsMetricsTest, OnASmallScreenTheMinimumWins) {
    const Screen small{{{0, 0}, {500, 400}}, 1, {{0, 0}, {500, 400}}};
    EXPECT_EQ(PellamSettingsMetrics::contentSize({1000, 1000}, small), (Size{420, 400}));
}

TEST_F(PellamSettingsMetricsTest, WithoutAScreenTheLimitIs960By720WithTheTitleBar) {
    EXPECT_EQ(PellamSettingsMetrics::contentSize({2000, 2000}, std::nullopt), (Size{960, 692}));
}

class PellamSettingsWindowSizerTest : public UnitTest {
protected:
    PellamSettingsWindowSizerTest() {
        desktop.titledWindows().setFittingSize({500, 450});
        window = desktop.titledWindows().makeWindow(title, Column());
        sizer.emplace(window);
        desktop.screens().set({screenOf1000By700});
        desktop.titledWindows().screensChanged();
        place({100, 100});
    }
    void place(const ScreenPoint& origin) {
        window->setFrameOrigin(origin);
        desktop.runUntilIdle();
        desktop.journal().clear();
    }
    void want(const Size& size) { desktop.titledWindows().window(title).setFittingSize(size); }
    ScreenPoint clampedFrom(const ScreenPoint& origin) {
        window->setFrameOrigin(origin);
        sizer->clamp();
        return window->frame().origin;
    }
    Lines takeWindowCalls() { return desktop.journal().take({"titledWindow."}); }

    std::shared_ptr<TitledWindow> window;
    std::optional<PellamSettingsWindowSizer> sizer;
};

TEST_F(PellamSettingsWindowSizerTest, AWindowThatFitsIsLeftAlone) {
    sizer->clamp();
    EXPECT_EQ(takeWindowCalls(), Lines{});
}

TEST_F(PellamSettingsWindowSizerTest, TheContentGetsTheSizeThatItWantsNow) {
    want({600, 500});
    sizer->clamp();
    EXPECT_EQ(takeWindowCalls(), Lines{"titledWindow.setContentSize 600x500"});
    want({5000, 5000});
    sizer->clamp();
    EXPECT_EQ(window->contentSize(), (Size{800, 532}));
    want({0, 0});
    sizer->clamp();
    EXPECT_EQ(window->contentSize(), (Size{420, 400}));
}

TEST_F(PellamSettingsWindowSizerTest, TheWindowIsMovedInsideOverEveryEdge) {
    // 500 x 478 on 1000 x 700, whose lower edge is at 40.
    EXPECT_EQ(clampedFrom({-20, 100}), (ScreenPoint{0, 100}));
    EXPECT_EQ(clampedFrom({520, 100}), (ScreenPoint{500, 100}));
    EXPECT_EQ(clampedFrom({100, 20}), (ScreenPoint{100, 40}));
    EXPECT_EQ(clampedFrom({100, 300}), (ScreenPoint{100, 262}));
    EXPECT_EQ(clampedFrom({500, 262}), (ScreenPoint{500, 262}));
}

TEST_F(PellamSettingsWindowSizerTest, TheMoveRedrawsTheWindow) {
    place({-20, 20});
    sizer->clamp();
    EXPECT_EQ(takeWindowCalls(), Lines{"titledWindow.setFrame 0,40 500x478 display=true"});
}

TEST_F(PellamSettingsWindowSizerTest, AWindowThatIsLargerThanItsScreenKeepsItsUpperRightCornerInside) {
    desktop.screens().set({{{{0, 0}, {400, 300}}, 1}});
    sizer->clamp();
    EXPECT_EQ(window->frame(), (ScreenRect{{-20, -128}, {420, 428}}));
}

TEST_F(PellamSettingsWindowSizerTest, AWindowOnNoScreenIsMovedToTheMainOne) {
    EXPECT_EQ(clampedFrom({5000, 5000}), (ScreenPoint{500, 262}));
}

TEST_F(PellamSettingsWindowSizerTest, WithoutAScreenNothingHappens) {
    want({600, 500});
    place({5000, 5000});
    desktop.screens().set({});
    sizer->clamp();
    EXPECT_EQ(takeWindowCalls(), Lines{});
}

TEST_F(PellamSettingsWindowSizerTest, WithoutItsWindowNothingHappens) {
    window.reset();
    desktop.journal().clear();
    sizer->clamp();
    EXPECT_EQ(takeWindowCalls(), Lines{});
}

TEST_F(PellamSettingsWindowSizerTest, AChangeOfTheScreensClampsInALaterTurn) {
    want({600, 500});
    desktop.notificationCenter().post(screenParametersDidChangeNotification);
    EXPECT_EQ(window->contentSize(), (Size{500, 450}));
    desktop.runUntilIdle();
    EXPECT_EQ(window->contentSize(), (Size{600, 500}));
}

TEST_F(PellamSettingsWindowSizerTest, AMoveToAnotherScreenClamps) {
    desktop.screens().set({screenOf1000By700, {{{1000, 0}, {600, 600}}, 1}});
    place({400, 100});
    window->setFrameOrigin({900, -50});
    desktop.runUntilIdle();
    EXPECT_EQ(window->frame().origin, (ScreenPoint{1000, 0}));
}

TEST_F(PellamSettingsWindowSizerTest, OnceItIsGoneNothingClamps) {
    want({600, 500});
    desktop.notificationCenter().post(screenParametersDidChangeNotification);
    sizer.reset();
    desktop.notificationCenter().post(screenParametersDidChangeNotification);
    desktop.runUntilIdle();
    EXPECT_EQ(window->contentSize(), (Size{500, 450}));
}

} // namespace
} // namespace quillon
