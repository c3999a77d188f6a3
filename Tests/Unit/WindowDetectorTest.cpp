#include "WindowDetector.h"

#include "PinnedWindow.h"
#include "UnitTest.h"

#include <unordered_set>

namespace quillon {
namespace {

constexpr DisplayRect here{{100, 50}, {800, 600}};
constexpr DisplayRect there{{300, 200}, {500, 400}};

class WindowDetectorTest : public UnitTest {
protected:
    /// The frontmost application "Note" with two windows: `behind` and, before it, `front`.
    ProcessID app = desktop.launch("Note");
    WindowID behind = desktop.openWindow(app, "Spesa", here);
    WindowID front = desktop.openWindow(app, "Viaggio", there);

    WindowDetectorTest() { desktop.activate(app); }

    simulated::SimulatedElement& applicationElement() { return *desktop.accessibility().application(app); }
    simulated::SimulatedElement& windowElement(WindowID windowID) { return *desktop.accessibility().window(windowID); }
    simulated::OpenWindow& window(WindowID windowID) { return desktop.model().window(windowID); }
    void alter(WindowID windowID, std::function<void(WindowDescription&)> alteration) {
        window(windowID).alterDescription = std::move(alteration);
    }
    /// Makes the application say that the window has the focus, wherever it lies.
    void focus(WindowID windowID) {
        applicationElement().setAttribute(
            "AXFocusedWindow", std::shared_ptr<AccessibilityElement>(desktop.accessibility().window(windowID)));
    }
    static std::optional<WindowID> found() {
        const auto window = WindowDetector::getFrontmostForeignWindow();
        return window ? std::optional(window->windowID) : std::nullopt;
    }
};

using WindowDetectorEdgeCases = WindowDetectorTest;

TEST_F(WindowDetectorEdgeCases, WhenThisProgramIsFrontmostThereIsNoWindow) {
    desktop.openWindow(simulated::Desktop::ownPID(), "Impostazioni", here);
    desktop.activate(simulated::Desktop::ownPID());
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(WindowDetectorEdgeCases, OfTwoWindowsWithTheSameTitleTheOneNearerTheFrontIsFound) {
    window(front).title = "Spesa";
    focus(behind);
    EXPECT_EQ(found(), front);
}

TEST_F(WindowDetectorEdgeCases, AFrameThatDiffersByLessThanTwoPointsInEachMatchesAndByTwoInAnyDoesNot) {
    focus(behind);
    auto& element = windowElement(behind);
    element.setAttribute("AXTitle", std::string());
    const auto setFrame = [&](double x, double y, double width, double height) {
        element.setAttribute("AXPosition", DisplayPoint{here.origin.x + x, here.origin.y + y});
        element.setAttribute("AXSize", Size{here.size.width + width, here.size.height + height});
    };
    setFrame(1.9, 1.9, 1.9, 1.9);
    EXPECT_EQ(found(), behind);
    setFrame(-1.9, -1.9, -1.9, -1.9);
    EXPECT_EQ(found(), behind);
    for (const double difference : {2.0, -2.0}) {
        setFrame(difference, 0, 0, 0);
        EXPECT_EQ(found(), front) << "x " << difference;
        setFrame(0, difference, 0, 0);
        EXPECT_EQ(found(), front) << "y " << difference;
        setFrame(0, 0, difference, 0);
        EXPECT_EQ(found(), front) << "width " << difference;
        setFrame(0, 0, 0, difference);
        EXPECT_EQ(found(), front) << "height " << difference;
    }
}

TEST_F(WindowDetectorEdgeCases, AnEmptyAccessibilityTitleSkipsThePassByTitle) {
    window(front).title = "";
    window(behind).title = "";
    focus(behind);
    EXPECT_EQ(found(), behind);
}

TEST_F(WindowDetectorEdgeCases, WithoutNamesAndAccessTheFrontmostOrdinaryWindowIsFoundWithAnEmptyTitle) {
    desktop.accessibility().setTrusted(false);
    window(front).title = std::nullopt;
    window(behind).title = std::nullopt;
    const auto extra = desktop.openWindow(app, std::nullopt, here);
    window(extra).layer = 25;
    const auto panel = desktop.openWindow(app, std::nullopt, here);
    window(panel).layer = -1;

    const auto result = WindowDetector::getFrontmostForeignWindow();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->windowID, front);
    EXPECT_EQ(result->windowTitle, "");

    desktop.close(front);
    desktop.close(behind);
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(WindowDetectorEdgeCases, ALabelCutsATitleOf41CharactersAndIsTheOwnerAloneWithoutOne) {
    const auto label = [](const std::string& title) {
        return PinnedWindow(ForeignWindow{1, 2, "Note", title}).displayLabel();
    };
    EXPECT_EQ(label(std::string(41, 'a')), "Note — " + std::string(40, 'a') + "…");
    EXPECT_EQ(label(std::string(40, 'a')), "Note — " + std::string(40, 'a'));
    EXPECT_EQ(label(""), "Note");
}

template <class Record>
void expectEqualityByNumber() {
    const Record first(ForeignWindow{7, 1, "Note", "Spesa"});
    const Record second(ForeignWindow{7, 2, "Mail", "Posta"});
    const Record other(ForeignWindow{8, 1, "Note", "Spesa"});
    EXPECT_EQ(first, second);
    EXPECT_NE(first, other);
    EXPECT_EQ((std::unordered_set<Record>{first, second, other}.size()), 2U);
}

TEST_F(WindowDetectorEdgeCases, RecordsOfTheSameNumberAreEqualWhateverElseTheyHold) {
    expectEqualityByNumber<ForeignWindow>();
    expectEqualityByNumber<PinnedWindow>();
}

TEST_F(WindowDetectorTest, WithoutAFrontmostApplicationThereIsNoWindow) {
    desktop.terminate(app);
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(WindowDetectorTest, TheResultNamesTheWindowAndItsOwner) {
    const auto result = WindowDetector::getFrontmostForeignWindow();
    ASSERT_TRUE(result);
    EXPECT_EQ(result->windowID, front);
    EXPECT_EQ(result->ownerPID, app);
    EXPECT_EQ(result->ownerName, "Note");
    EXPECT_EQ(result->windowTitle, "Viaggio");
    EXPECT_EQ(result->titleOrOwnerName(), "Viaggio");
}

TEST_F(WindowDetectorTest, AnApplicationWithoutANameIsUnknown) {
    const auto nameless = desktop.launch(std::nullopt);
    const auto windowID = desktop.openWindow(nameless, std::nullopt, here);
    desktop.activate(nameless);
    EXPECT_EQ(WindowDetector::getFrontmostForeignWindow()->ownerName, "Unknown");
    EXPECT_EQ(WindowDetector::foreignWindow(windowID)->ownerName, "Unknown");
    EXPECT_EQ(WindowDetector::foreignWindow(windowID)->titleOrOwnerName(), "Unknown");
}

TEST_F(WindowDetectorTest, TheTitleIsMatchedBeforeTheFrame) {
    focus(behind);
    windowElement(behind).setAttribute("AXPosition", there.origin);
    windowElement(behind).setAttribute("AXSize", there.size);
    EXPECT_EQ(found(), behind);
}

TEST_F(WindowDetectorTest, TheTitleHasToBeExact) {
    window(behind).bounds = there;
    window(behind).title = "spesa";
    focus(behind);
    windowElement(behind).setAttribute("AXTitle", std::string("Spesa"));
    EXPECT_EQ(found(), front);
}

TEST_F(WindowDetectorTest, AWindowFoundByItsFrameHasTheNameOfTheWindowList) {
    window(behind).title = "Nuovo titolo";
    focus(behind);
    windowElement(behind).setAttribute("AXTitle", std::string("Titolo vecchio"));
    EXPECT_EQ(WindowDetector::getFrontmostForeignWindow()->windowID, behind);
    EXPECT_EQ(WindowDetector::getFrontmostForeignWindow()->windowTitle, "Nuovo titolo");
    window(behind).title = std::nullopt;
    EXPECT_EQ(WindowDetector::getFrontmostForeignWindow()->windowTitle, "");
}

TEST_F(WindowDetectorTest, AMissingNumberOfTheBoundsCountsAsZeroAndMissingBoundsAreSkipped) {
    focus(behind);
    windowElement(behind).setAttribute("AXTitle", std::string());
    alter(behind, [](auto& entry) { entry.bounds->x.reset(); });
    EXPECT_EQ(found(), front);
    windowElement(behind).setAttribute("AXPosition", DisplayPoint{0, here.origin.y});
    EXPECT_EQ(found(), behind);
    alter(behind, [](auto& entry) { entry.bounds.reset(); });
    EXPECT_EQ(found(), front);
}

TEST_F(WindowDetectorTest, EachFailedReadOnlyNarrowsWhatIsKnown) {
    focus(behind);
    auto& element = windowElement(behind);
    element.failAttribute("AXTitle", AccessibilityError::cannotComplete);
    EXPECT_EQ(found(), behind) << "by frame";
    element.failAttribute("AXSize", AccessibilityError::cannotComplete);
    EXPECT_EQ(found(), front) << "frontmost";
    element.setAttribute("AXSize", here.size);
    element.failAttribute("AXPosition", AccessibilityError::cannotComplete);
    EXPECT_EQ(found(), front) << "frontmost";
    element.setAttribute("AXTitle", std::string("Spesa"));
    EXPECT_EQ(found(), behind) << "by title, without a frame";
    applicationElement().failAttribute("AXFocusedWindow", AccessibilityError::noValue);
    EXPECT_EQ(found(), front) << "frontmost";
}

TEST_F(WindowDetectorTest, ValuesOfAnotherTypeCountAsAbsent) {
    focus(behind);
    auto& element = windowElement(behind);
    element.setAttribute("AXTitle", DisplayPoint());
    EXPECT_EQ(found(), behind) << "by frame";
    element.setAttribute("AXPosition", std::string("100, 50"));
    EXPECT_EQ(found(), front);
    element.setAttribute("AXPosition", here.origin);
    element.setAttribute("AXSize", std::monostate());
    EXPECT_EQ(found(), front);
    applicationElement().setAttribute("AXFocusedWindow", std::string("Spesa"));
    EXPECT_EQ(found(), front);
}

TEST_F(WindowDetectorTest, TheSizeIsOnlyReadAfterThePosition) {
    windowElement(front).failAttribute("AXPosition", AccessibilityError::noValue);
    EXPECT_EQ(found(), front);
    EXPECT_EQ(windowElement(front).reads(), (Lines{"AXTitle", "AXPosition"}));
}

TEST_F(WindowDetectorTest, EntriesWithoutOwnerNumberOrLayerAreNoCandidates) {
    const std::vector<std::function<void(WindowDescription&)>> alterations{
        [](auto& entry) { entry.ownerPID.reset(); }, [](auto& entry) { entry.ownerPID = 99; },
        [](auto& entry) { entry.number.reset(); },   [](auto& entry) { entry.layer.reset(); },
        [](auto& entry) { entry.layer = 1; },
    };
    for (const auto& alteration : alterations) {
        alter(front, alteration);
        EXPECT_EQ(found(), behind);
    }
}

TEST_F(WindowDetectorTest, OnlyWindowsOnTheScreenAreConsidered) {
    desktop.minimise(front);
    EXPECT_EQ(found(), behind);
    desktop.moveToSpace(behind, 2);
    EXPECT_EQ(found(), std::nullopt);
    window(front).isMinimised = false;
    window(front).isDesktopElement = true;
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(WindowDetectorTest, AWindowOfAnotherApplicationIsNotTakenForTheFrontmostOnes) {
    const auto other = desktop.launch("Mail");
    desktop.openWindow(other, "Viaggio", there);
    EXPECT_EQ(found(), front);
}

TEST_F(WindowDetectorTest, WhenTheWindowServerDoesNotAnswerNothingIsFound) {
    desktop.windowServer().setFailing(true);
    EXPECT_EQ(found(), std::nullopt);
    EXPECT_TRUE(WindowDetector::allOnScreenWindowIDs().empty());
    EXPECT_TRUE(WindowDetector::allForeignWindows().empty());
    EXPECT_EQ(WindowDetector::foreignWindow(front), std::nullopt);
}

TEST_F(WindowDetectorTest, AllNumbersHoldTheWindowsThatAreNotOnTheScreenToo) {
    desktop.minimise(front);
    desktop.moveToSpace(behind, 2);
    const auto hidden = desktop.openWindow(desktop.launch("Mail"), "Posta", here);
    desktop.model().application(window(hidden).ownerPID).isHidden = true;
    const auto above = desktop.openWindow(app, "Barra", here);
    window(above).layer = 25;
    EXPECT_EQ(WindowDetector::allOnScreenWindowIDs(), (std::unordered_set<WindowID>{front, behind, hidden, above}));
}

TEST_F(WindowDetectorTest, AllNumbersLeaveOutEntriesWithoutNumberOrLayerAndThoseBelowZero) {
    const auto below = desktop.openWindow(app, std::nullopt, here);
    window(below).layer = -1;
    const auto icon = desktop.openWindow(app, std::nullopt, here);
    window(icon).isDesktopElement = true;
    alter(front, [](auto& entry) { entry.layer.reset(); });
    EXPECT_EQ(WindowDetector::allOnScreenWindowIDs(), std::unordered_set<WindowID>{behind});
    alter(behind, [](auto& entry) { entry.number.reset(); });
    EXPECT_TRUE(WindowDetector::allOnScreenWindowIDs().empty());
}

TEST_F(WindowDetectorTest, AllForeignWindowsAreTheOrdinaryOnesOfOthersFrontToBack) {
    desktop.minimise(behind);
    desktop.openWindow(simulated::Desktop::ownPID(), "Impostazioni", here);
    const auto bar = desktop.openWindow(app, "Barra", here);
    window(bar).layer = 25;
    const auto orphan = desktop.openWindow(app, std::nullopt, here);
    alter(orphan, [](auto& entry) { entry.ownerPID = 99; });

    const auto windows = WindowDetector::allForeignWindows();
    ASSERT_EQ(windows.size(), 3U);
    EXPECT_EQ(windows[0].windowID, orphan);
    EXPECT_EQ(windows[0].ownerName, "Unknown");
    EXPECT_EQ(windows[0].windowTitle, "");
    EXPECT_EQ(windows[1].windowID, front);
    EXPECT_EQ(windows[2].windowID, behind);
    EXPECT_EQ(windows[2].windowTitle, "Spesa");
    EXPECT_EQ(windows[2].ownerName, "Note");
}

TEST_F(WindowDetectorTest, AWindowIsFoundByItsNumberWhateverItsState) {
    desktop.minimise(behind);
    EXPECT_EQ(WindowDetector::foreignWindow(behind)->windowTitle, "Spesa");
    EXPECT_EQ(WindowDetector::foreignWindow(9999), std::nullopt);
}

} // namespace
} // namespace quillon
