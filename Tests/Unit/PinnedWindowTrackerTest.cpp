#include "PinnedWindowTracker.h"

#include "UnitTest.h"
#include "WindowDetector.h"
#include "WindowOverlay.h"

namespace quillon {
namespace {

constexpr DisplayRect here{{100, 50}, {800, 600}};

class PinnedWindowTrackerTest : public UnitTest {
protected:
    PinnedWindowTrackerTest() {
        tracker.emplace();
        tracker->onChange = [this] { ++changes; };
    }

    void pin(WindowID windowID) {
        tracker->pin(WindowDetector::foreignWindow(windowID).value());
        desktop.runUntilIdle();
    }
    void activate(ProcessID pid) {
        desktop.activate(pid);
        desktop.runUntilIdle();
    }
    bool isInFront(WindowID windowID) { return tracker->overlays().at(windowID)->isPinVisible(); }
    std::size_t panels() { return desktop.panels().all().size(); }

    ProcessID notes = desktop.launch("Note");
    ProcessID mail = desktop.launch("Mail");
    WindowID shopping = desktop.openWindow(notes, "Spesa", here);
    WindowID journey = desktop.openWindow(notes, "Viaggio", here);
    WindowID inbox = desktop.openWindow(mail, "Posta", here);
    std::optional<PinnedWindowTracker> tracker;
    int changes = 0;
};

using PinnedWindowTrackerEdgeCases = PinnedWindowTrackerTest;

TEST_F(PinnedWindowTrackerEdgeCases, PinningTheSameWindowTwiceCreatesOneOverlayAndTellsOnce) {
    turnLoggingOn();
    pin(shopping);
    pin(shopping);
    EXPECT_EQ(panels(), 1U);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(takeLog().front(), "pin: overlay created for wid=" + std::to_string(shopping));
}

TEST_F(PinnedWindowTrackerEdgeCases, PinningTheSameNumberUnderAnotherTitleChangesNothing) {
    pin(shopping);
    tracker->pin({shopping, mail, "Mail", "Altro"});
    ASSERT_EQ(tracker->pinnedWindows().size(), 1U);
    EXPECT_EQ(tracker->pinnedWindows().begin()->windowTitle, "Spesa");
    EXPECT_EQ(tracker->pinnedWindows().begin()->ownerName, "Note");
    EXPECT_EQ(changes, 1);
}

TEST_F(PinnedWindowTrackerEdgeCases, UnpinningAllWithNothingPinnedStillTells) {
    tracker->unpinAll();
    EXPECT_EQ(changes, 1);
}

TEST_F(PinnedWindowTrackerEdgeCases, AClosedWindowIsDroppedWithinTwoSecondsAndAMinimisedOneOrOneElsewhereStays) {
    pin(shopping);
    pin(journey);
    pin(inbox);
    desktop.minimise(journey);
    desktop.moveToSpace(inbox, 2);
    desktop.close(shopping);
    desktop.advance(Seconds(2));
    EXPECT_FALSE(tracker->isPinned(shopping));
    EXPECT_TRUE(tracker->isPinned(journey));
    EXPECT_TRUE(tracker->isPinned(inbox));
    EXPECT_EQ(panels(), 2U);
    EXPECT_EQ(changes, 4);
}

TEST_F(PinnedWindowTrackerEdgeCases, QuittingAnApplicationRemovesAllItsPinsAndTellsOnce) {
    pin(shopping);
    pin(journey);
    pin(inbox);
    changes = 0;
    desktop.terminate(notes);
    desktop.runUntilIdle();
    EXPECT_FALSE(tracker->isPinned(shopping));
    EXPECT_FALSE(tracker->isPinned(journey));
    EXPECT_TRUE(tracker->isPinned(inbox));
    EXPECT_EQ(panels(), 1U);
    EXPECT_EQ(changes, 1);
}

TEST_F(PinnedWindowTrackerEdgeCases, ActivationsMoveTheOverlayExceptThisProgramsOwn) {
    pin(shopping);
    activate(mail);
    EXPECT_TRUE(isInFront(shopping));
    activate(notes);
    EXPECT_FALSE(isInFront(shopping));
    activate(mail);
    EXPECT_TRUE(isInFront(shopping));
    desktop.journal().clear();
    activate(simulated::Desktop::ownPID());
    EXPECT_TRUE(isInFront(shopping));
    EXPECT_EQ(desktop.journal().take({"panel."}), Lines{});
}

TEST_F(PinnedWindowTrackerEdgeCases, BothWindowsOfAnApplicationGoBehindWhenItIsActivated) {
    pin(shopping);
    pin(journey);
    activate(mail);
    ASSERT_TRUE(isInFront(shopping) && isInFront(journey));
    activate(notes);
    EXPECT_FALSE(isInFront(shopping));
    EXPECT_FALSE(isInFront(journey));
    for (const auto* panel : desktop.panels().all()) {
        EXPECT_EQ(panel->level(), normalWindowLevel - 1);
    }
}

TEST_F(PinnedWindowTrackerTest, ConstructionPollsAndObservesInThatOrder) {
    tracker.reset();
    desktop.journal().clear();
    tracker.emplace();
    EXPECT_EQ(desktop.journal().take(),
              (Lines{"scheduler.scheduleRepeatingTimer 2", "workspace.observeDidActivateApplication",
                     "workspace.observeDidTerminateApplication"}));
    EXPECT_TRUE(tracker->pinnedWindows().empty());
    EXPECT_TRUE(tracker->overlays().empty());
    EXPECT_FALSE(tracker->onChange);
}

TEST_F(PinnedWindowTrackerTest, DestructionEndsTheTimerAndTheObservers) {
    tracker.reset();
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), 0U);
    EXPECT_EQ(desktop.workspace().observers(), 0U);
}

TEST_F(PinnedWindowTrackerTest, PinningShowsNothingYet) {
    pin(shopping);
    ASSERT_EQ(panels(), 1U);
    EXPECT_FALSE(desktop.panels().all().front()->isVisible());
    EXPECT_EQ(tracker->overlays().at(shopping)->targetWindowID(), shopping);
    EXPECT_EQ(tracker->overlays().at(shopping)->targetPID(), notes);
    EXPECT_TRUE(tracker->isPinned(shopping));
    EXPECT_FALSE(tracker->isPinned(journey));
}

TEST_F(PinnedWindowTrackerTest, WithoutACallbackChangesAreKeptToItself) {
    tracker->onChange = nullptr;
    pin(shopping);
    tracker->unpin(shopping);
    tracker->unpinAll();
    EXPECT_EQ(changes, 0);
}

TEST_F(PinnedWindowTrackerTest, TheCallbackComesAfterTheChange) {
    std::vector<std::size_t> sizes;
    tracker->onChange = [&] { sizes.push_back(tracker->pinnedWindows().size() * 10 + tracker->overlays().size()); };
    pin(shopping);
    pin(inbox);
    tracker->unpin(shopping);
    tracker->unpinAll();
    EXPECT_EQ(sizes, (std::vector<std::size_t>{11, 22, 11, 0}));
}

TEST_F(PinnedWindowTrackerTest, UnpinningHidesAndReleasesTheOverlay) {
    turnLoggingOn();
    pin(shopping);
    activate(mail);
    takeLog();
    changes = 0;
    desktop.journal().clear();
    tracker->unpin(shopping);
    EXPECT_EQ(desktop.journal().take({"panel."}), (Lines{"panel.orderOut", "panel.destroy"}));
    EXPECT_EQ(takeLog(), Lines{"overlay: hideOverlay wid=" + std::to_string(shopping)});
    EXPECT_TRUE(tracker->overlays().empty());
    EXPECT_FALSE(tracker->isPinned(shopping));
    EXPECT_EQ(changes, 1);
    EXPECT_TRUE(desktop.screenCapture().runningStreams().empty());
}

TEST_F(PinnedWindowTrackerTest, UnpinningAnUnknownNumberDoesNothing) {
    pin(shopping);
    changes = 0;
    tracker->unpin(inbox);
    EXPECT_EQ(changes, 0);
    EXPECT_EQ(panels(), 1U);
}

TEST_F(PinnedWindowTrackerTest, UnpinningAllHidesEveryOverlayAndTellsOnce) {
    pin(shopping);
    pin(inbox);
    activate(mail);
    changes = 0;
    desktop.journal().clear();
    tracker->unpinAll();
    EXPECT_EQ(desktop.journal().take({"panel."}),
              (Lines{"panel.orderOut", "panel.orderOut", "panel.destroy", "panel.destroy"}));
    EXPECT_TRUE(tracker->pinnedWindows().empty());
    EXPECT_TRUE(tracker->overlays().empty());
    EXPECT_EQ(changes, 1);
}

TEST_F(PinnedWindowTrackerTest, AWindowMayBePinnedAgain) {
    pin(shopping);
    tracker->unpin(shopping);
    pin(shopping);
    EXPECT_TRUE(tracker->isPinned(shopping));
    EXPECT_EQ(panels(), 1U);
}

TEST_F(PinnedWindowTrackerTest, PruningHappensEveryTwoSecondsAndTellsOnceForAll) {
    pin(shopping);
    pin(journey);
    desktop.close(shopping);
    desktop.close(journey);
    changes = 0;
    desktop.advance(Seconds(1.99));
    EXPECT_EQ(tracker->pinnedWindows().size(), 2U);
    desktop.advance(Seconds(0.01));
    EXPECT_TRUE(tracker->pinnedWindows().empty());
    EXPECT_EQ(changes, 1);

    pin(inbox);
    desktop.close(inbox);
    desktop.advance(Seconds(2));
    EXPECT_TRUE(tracker->pinnedWindows().empty());
}

TEST_F(PinnedWindowTrackerTest, PruningWithNothingToDropTellsNothing) {
    desktop.advance(Seconds(10));
    pin(shopping);
    changes = 0;
    desktop.advance(Seconds(10));
    EXPECT_TRUE(tracker->isPinned(shopping));
    EXPECT_EQ(changes, 0);
}

TEST_F(PinnedWindowTrackerTest, AWindowServerThatDoesNotAnswerIsTakenAtItsWord) {
    pin(shopping);
    pin(inbox);
    desktop.windowServer().setFailing(true);
    desktop.advance(Seconds(2));
    EXPECT_TRUE(tracker->pinnedWindows().empty());
    EXPECT_EQ(panels(), 0U);
}

TEST_F(PinnedWindowTrackerTest, ActivatingTheOwnerLeavesAnOverlayThatIsNotInFront) {
    pin(shopping);
    desktop.journal().clear();
    activate(notes);
    EXPECT_EQ(desktop.journal().take({"panel."}), Lines{});
}

TEST_F(PinnedWindowTrackerTest, ActivatingThisProgramDoesNotBringAnOverlayToTheFront) {
    activate(notes);
    pin(shopping);
    activate(simulated::Desktop::ownPID());
    EXPECT_FALSE(isInFront(shopping));
}

TEST_F(PinnedWindowTrackerTest, EachOverlayFollowsItsOwnApplication) {
    pin(shopping);
    pin(inbox);
    activate(mail);
    EXPECT_TRUE(isInFront(shopping));
    EXPECT_FALSE(isInFront(inbox));
    activate(notes);
    EXPECT_FALSE(isInFront(shopping));
    EXPECT_TRUE(isInFront(inbox));
}

TEST_F(PinnedWindowTrackerTest, AThirdApplicationAfterAThirdOneOnlyLogs) {
    turnLoggingOn();
    pin(shopping);
    activate(mail);
    takeLog();
    activate(desktop.launch("Musica"));
    EXPECT_EQ(takeLog(), Lines{"overlay: bringToFront skipped (already front) wid=" + std::to_string(shopping)});
}

TEST_F(PinnedWindowTrackerTest, NotificationsWithoutAnApplicationAreIgnored) {
    pin(shopping);
    changes = 0;
    desktop.workspace().announceActivation(std::nullopt);
    desktop.workspace().announceTermination(std::nullopt);
    desktop.runUntilIdle();
    EXPECT_FALSE(isInFront(shopping));
    EXPECT_TRUE(tracker->isPinned(shopping));
    EXPECT_EQ(changes, 0);
}

TEST_F(PinnedWindowTrackerTest, TheEndOfAnotherApplicationTellsNothing) {
    pin(shopping);
    changes = 0;
    desktop.terminate(mail);
    desktop.runUntilIdle();
    EXPECT_TRUE(tracker->isPinned(shopping));
    EXPECT_EQ(changes, 0);
}

TEST_F(PinnedWindowTrackerTest, AnOverlayIsShownAtOnceWhenAnotherApplicationIsInFront) {
    activate(mail);
    pin(shopping);
    pin(inbox);
    tracker->showIfBehind(shopping);
    tracker->showIfBehind(inbox);
    tracker->showIfBehind(journey);
    desktop.runUntilIdle();
    EXPECT_TRUE(isInFront(shopping));
    EXPECT_FALSE(isInFront(inbox));
}

TEST_F(PinnedWindowTrackerTest, WithoutAFrontmostApplicationNothingIsShownAtOnce) {
    pin(shopping);
    tracker->showIfBehind(shopping);
    EXPECT_FALSE(isInFront(shopping));
}

} // namespace
} // namespace quillon
