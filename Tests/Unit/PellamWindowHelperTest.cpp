#include "PellamKit/PellamWindowHelper.h"

#include "UnitTest.h"

namespace quillon {
namespace {

constexpr Screen primary{{{0, 0}, {1440, 900}}, 2, {{0, 60}, {1440, 815}}};
/// To the right of the primary one, with a Dock at its left edge.
constexpr Screen secondary{{{1440, 100}, {1000, 700}}, 1, {{1520, 100}, {920, 675}}};
constexpr ScreenPoint onSecondary{2000, 400};

class PellamWindowHelperTest : public UnitTest {
protected:
    PellamWindowHelperTest() {
        desktop.titledWindows().setFittingSize({300, 172});
        window = makeWindow("Prova");
        desktop.screens().set({primary, secondary});
        desktop.journal().clear();
    }

    std::shared_ptr<TitledWindow> makeWindow(const std::string& title) {
        return desktop.titledWindows().makeWindow(title, Column());
    }
    simulated::SimulatedTitledWindow& simulated() { return desktop.titledWindows().window("Prova"); }
    void showOnSpace(int space) {
        desktop.model().currentSpace = space;
        PellamWindowHelper::bringForward(*window);
    }

    std::shared_ptr<TitledWindow> window;
};

using PellamWindowHelperEdgeCases = PellamWindowHelperTest;
using PellamWindowHelperDeathTest = PellamWindowHelperTest;

TEST_F(PellamWindowHelperEdgeCases, AWindowIsCentredOnWhatTheDisplayUnderThePointerLeavesFree) {
    desktop.screens().setMouseLocation(onSecondary);
    PellamWindowHelper::centreOnActiveDisplay(*window);
    EXPECT_EQ(window->frame(), (ScreenRect{{1830, 337.5}, {300, 200}}));

    desktop.screens().setMouseLocation({0, 0});
    PellamWindowHelper::centreOnActiveDisplay(*window);
    EXPECT_EQ(window->frame(), (ScreenRect{{570, 367.5}, {300, 200}}));
}

TEST_F(PellamWindowHelperTest, WithThePointerOnNoScreenTheMainScreenIsActive) {
    desktop.screens().setMouseLocation({-1, -1});
    desktop.screens().set({primary, secondary}, secondary);
    EXPECT_EQ(PellamWindowHelper::activeScreen()->frame, secondary.frame);
}

TEST_F(PellamWindowHelperTest, OfTwoScreensThatShowTheSameTheFirstIsActive) {
    auto mirror = primary;
    mirror.backingScaleFactor = 1;
    desktop.screens().set({mirror, primary}, secondary);
    EXPECT_EQ(PellamWindowHelper::activeScreen()->backingScaleFactor, 1);
}

TEST_F(PellamWindowHelperTest, WithoutAScreenTheWindowCentresItself) {
    desktop.screens().set({});
    EXPECT_EQ(PellamWindowHelper::activeScreen(), std::nullopt);
    PellamWindowHelper::centreOnActiveDisplay(*window);
    EXPECT_EQ(desktop.journal().take(), Lines{"titledWindow.center"});
}

TEST_F(PellamWindowHelperTest, AWindowComesForwardWithTheKeyboardFocus) {
    desktop.activate(desktop.launch("Note"));
    desktop.journal().clear();
    PellamWindowHelper::bringForward(*window);
    EXPECT_EQ(desktop.journal().take(),
              (Lines{"titledWindow.makeKeyAndOrderFront", "application.activateIgnoringOtherApps"}));
    EXPECT_TRUE(simulated().isKey());
}

TEST_F(PellamWindowHelperTest, AClosedWindowComesToTheSpaceOfTheUserAndThenStaysThere) {
    showOnSpace(1);
    window->close();
    desktop.model().currentSpace = 2;
    desktop.journal().clear();
    PellamWindowHelper::bringForwardAgain(window);
    EXPECT_EQ(simulated().space(), 2);
    EXPECT_TRUE(simulated().collectionBehavior().moveToActiveSpace);
    desktop.runUntilIdle();
    EXPECT_EQ(simulated().collectionBehavior(), CollectionBehavior());
    EXPECT_EQ(
        desktop.journal().take({"titledWindow.", "application."}),
        (Lines{"titledWindow.setCollectionBehavior moveToActiveSpace=true", "titledWindow.makeKeyAndOrderFront",
               "application.activateIgnoringOtherApps", "titledWindow.setCollectionBehavior moveToActiveSpace=false"}));
}

TEST_F(PellamWindowHelperTest, AWindowThatIsShownElsewhereTakesTheUserThere) {
    showOnSpace(1);
    desktop.model().currentSpace = 2;
    desktop.journal().clear();
    PellamWindowHelper::bringForwardAgain(window);
    desktop.runUntilIdle();
    EXPECT_EQ(simulated().space(), 1);
    EXPECT_EQ(desktop.model().currentSpace, 1);
    EXPECT_EQ(desktop.journal().take({"titledWindow.", "application."}),
              (Lines{"titledWindow.makeKeyAndOrderFront", "application.activateIgnoringOtherApps"}));
}

TEST_F(PellamWindowHelperTest, AWindowThatGoesAtOnceIsNotTouchedAgain) {
    PellamWindowHelper::bringForwardAgain(window);
    window.reset();
    desktop.journal().clear();
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.journal().take({"titledWindow."}), Lines{});
}

TEST_F(PellamWindowHelperTest, OnlyTheKeyWindowIsClosed) {
    const auto other = makeWindow("Altra");
    PellamWindowHelper::bringForward(*other);
    PellamWindowHelper::bringForward(*window);
    PellamWindowHelper::closeKeyWindow();
    EXPECT_FALSE(window->isVisible());
    EXPECT_TRUE(other->isVisible());
}

TEST_F(PellamWindowHelperTest, WithoutAKeyWindowNothingIsClosed) {
    PellamWindowHelper::bringForward(*window);
    desktop.activate(desktop.launch("Note"));
    PellamWindowHelper::closeKeyWindow();
    EXPECT_TRUE(window->isVisible());
}

TEST_F(PellamWindowHelperDeathTest, WithoutAnApplicationObjectTheProcessStops) {
    desktop.removeApplicationObject();
    EXPECT_DEATH(PellamWindowHelper::bringForward(*window), "there is no shared application");
}

} // namespace
} // namespace quillon
