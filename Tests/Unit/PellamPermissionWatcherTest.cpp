#include "PellamKit/PellamPermissionWatcher.h"

#include "UnitTest.h"

namespace quillon {
namespace {

using Pane = PellamPermissionWatcher::Pane;

const std::string announcement = "com.apple.accessibility.api";

class PellamPermissionWatcherTest : public UnitTest {
protected:
    /// One that reads `permission`, and is announced as Accessibility is.
    std::unique_ptr<PellamPermissionWatcher> makeWatcher(std::optional<std::string> name = announcement) {
        return std::make_unique<PellamPermissionWatcher>(std::move(name), [this] {
            ++reads;
            return permission;
        });
    }
    /// The next poll comes one second after the watcher was made.
    void makeWatcherNow() { watcher = makeWatcher(); }
    void announce() {
        desktop.distributedNotificationCenter().postFromOutside(announcement);
        desktop.runUntilIdle();
    }
    /// The user comes back to the program from another one.
    void reactivate() {
        desktop.activate(other);
        desktop.activate(simulated::Desktop::ownPID());
        desktop.runUntilIdle();
    }
    int takeReads() { return std::exchange(reads, 0); }

    ProcessID other = desktop.launch("Impostazioni di Sistema");
    bool permission = false;
    int reads = 0;
    std::unique_ptr<PellamPermissionWatcher> watcher;
};

using PellamPermissionWatcherEdgeCases = PellamPermissionWatcherTest;
using PellamPermissionWatcherDeathTest = PellamPermissionWatcherTest;

TEST_F(PellamPermissionWatcherEdgeCases, APermissionGrantedInTheBackgroundIsShownWithinOneSecond) {
    makeWatcherNow();
    desktop.activate(other);
    desktop.advance(Seconds(0.1));
    permission = true;
    desktop.advance(Seconds(0.8));
    EXPECT_FALSE(watcher->isGranted());
    desktop.advance(Seconds(0.2));
    EXPECT_TRUE(watcher->isGranted());
}

TEST_F(PellamPermissionWatcherEdgeCases, APermissionGrantedInTheBackgroundIsShownAtOnceWhenTheProgramComesToTheFront) {
    makeWatcherNow();
    desktop.activate(other);
    permission = true;
    desktop.runUntilIdle();
    EXPECT_FALSE(watcher->isGranted());
    desktop.activate(simulated::Desktop::ownPID());
    desktop.runUntilIdle();
    EXPECT_TRUE(watcher->isGranted());
}

TEST_F(PellamPermissionWatcherEdgeCases, AfterAnAnnouncementNothingIsReadForOneAndAHalfSecondsAndThenOnce) {
    makeWatcherNow();
    desktop.advance(Seconds(0.2));
    announce();
    permission = true;
    takeReads();
    reactivate();
    desktop.advance(Seconds(1.4));
    reactivate();
    EXPECT_EQ(takeReads(), 0) << "with a poll in between";
    EXPECT_FALSE(watcher->isGranted());
    desktop.advance(Seconds(0.1));
    EXPECT_TRUE(watcher->isGranted());
    EXPECT_EQ(takeReads(), 1);
    desktop.advance(Seconds(0.3));
    EXPECT_EQ(takeReads(), 1) << "the poll at its moment";
}

TEST_F(PellamPermissionWatcherEdgeCases, OfTwoAnnouncementsTheFirstEndsTheQuietPeriodAndBothReadAgain) {
    makeWatcherNow();
    desktop.advance(Seconds(0.25));
    announce();
    desktop.advance(Seconds(1));
    announce();
    takeReads();
    desktop.advance(Seconds(0.49));
    EXPECT_EQ(takeReads(), 0);
    desktop.advance(Seconds(0.02));
    EXPECT_EQ(takeReads(), 1) << "1.5 s after the first";
    permission = true;
    desktop.advance(Seconds(0.25));
    EXPECT_EQ(takeReads(), 1) << "the poll 2 s after the start";
    EXPECT_TRUE(watcher->isGranted()) << "although the second announcement is not 1.5 s old";
    desktop.advance(Seconds(0.7));
    EXPECT_EQ(takeReads(), 0);
    desktop.advance(Seconds(0.05));
    EXPECT_EQ(takeReads(), 1) << "1.5 s after the second";
}

TEST_F(PellamPermissionWatcherEdgeCases, ScreenRecordingAndEventPostingAreNeverQuiet) {
    desktop.screenCapture().setAccess(false);
    desktop.eventAccess().set(false, true);
    const auto screenRecording = PellamPermissionWatcher::screenRecording();
    const auto postEvent = PellamPermissionWatcher::postEvent();
    announce();
    desktop.screenCapture().setAccess(true);
    desktop.eventAccess().set(true, true);
    desktop.advance(Seconds(1));
    EXPECT_TRUE(screenRecording->isGranted());
    EXPECT_TRUE(postEvent->isGranted());
    EXPECT_EQ(desktop.journal().take({"distributedNotificationCenter."}), Lines{});
}

TEST_F(PellamPermissionWatcherEdgeCases, AWatcherDestroyedBeforeItReadsAgainReadsNoMore) {
    makeWatcherNow();
    announce();
    watcher.reset();
    takeReads();
    announce();
    reactivate();
    desktop.advance(Seconds(10));
    EXPECT_EQ(takeReads(), 0);
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), 0U);
}

TEST_F(PellamPermissionWatcherEdgeCases, RevokingIsPickedUpLikeGranting) {
    permission = true;
    makeWatcherNow();
    permission = false;
    desktop.advance(Seconds(1));
    EXPECT_FALSE(watcher->isGranted());
    permission = true;
    reactivate();
    EXPECT_TRUE(watcher->isGranted());
    announce();
    permission = false;
    desktop.advance(Seconds(1.5));
    EXPECT_FALSE(watcher->isGranted());
}

TEST_F(PellamPermissionWatcherTest, ANewWatcherReadsOnceAndThenListens) {
    permission = true;
    desktop.journal().clear();
    makeWatcherNow();
    EXPECT_TRUE(watcher->isGranted());
    EXPECT_EQ(takeReads(), 1);
    EXPECT_EQ(desktop.journal().take(), (Lines{
                                            "distributedNotificationCenter.addObserver com.apple.accessibility.api",
                                            "notificationCenter.addObserver NSApplicationDidBecomeActiveNotification",
                                            "scheduler.scheduleRepeatingTimer 1",
                                        }));
}

TEST_F(PellamPermissionWatcherTest, OtherDistributedNotificationsDoNotMakeItQuiet) {
    makeWatcherNow();
    desktop.distributedNotificationCenter().postFromOutside("com.apple.altro");
    permission = true;
    desktop.advance(Seconds(1));
    EXPECT_TRUE(watcher->isGranted());
}

TEST_F(PellamPermissionWatcherTest, ChangesAreToldBeforeTheyAreMadeAndOnlyChanges) {
    makeWatcherNow();
    std::vector<bool> before;
    watcher->willChange = [&] { before.push_back(watcher->isGranted()); };
    desktop.advance(Seconds(5));
    EXPECT_EQ(before, std::vector<bool>{});
    permission = true;
    desktop.advance(Seconds(5));
    EXPECT_EQ(before, std::vector{false});
    permission = false;
    desktop.advance(Seconds(5));
    EXPECT_EQ(before, (std::vector{false, true}));
    EXPECT_EQ(takeReads(), 16);
}

TEST_F(PellamPermissionWatcherTest, AnOwnerCanForceARead) {
    makeWatcherNow();
    permission = true;
    watcher->reread();
    EXPECT_TRUE(watcher->isGranted());
    announce();
    permission = false;
    watcher->reread();
    EXPECT_TRUE(watcher->isGranted()) << "not in a quiet period";
}

TEST_F(PellamPermissionWatcherTest, AClockThatIsSetBackDoesNotMakeItQuietForLonger) {
    makeWatcherNow();
    announce();
    desktop.clock().setBack(std::chrono::hours(1));
    permission = true;
    desktop.advance(Seconds(1.5));
    EXPECT_TRUE(watcher->isGranted());
}

TEST_F(PellamPermissionWatcherTest, AccessibilityIsTheTrustInTheProcessAndIsAnnounced) {
    desktop.accessibility().setTrusted(false);
    const auto accessibility = PellamPermissionWatcher::accessibility();
    EXPECT_FALSE(accessibility->isGranted());
    desktop.accessibility().setTrusted(true);
    announce();
    desktop.advance(Seconds(1.4));
    EXPECT_FALSE(accessibility->isGranted());
    desktop.advance(Seconds(0.1));
    EXPECT_TRUE(accessibility->isGranted());
}

TEST_F(PellamPermissionWatcherTest, WatchersAskTheUserForNothing) {
    desktop.accessibility().setTrusted(false);
    desktop.screenCapture().setAccess(false);
    desktop.eventAccess().set(false, false);
    const auto accessibility = PellamPermissionWatcher::accessibility();
    const auto screenRecording = PellamPermissionWatcher::screenRecording();
    const auto postEvent = PellamPermissionWatcher::postEvent();
    desktop.advance(Seconds(3));
    EXPECT_FALSE(accessibility->isGranted());
    EXPECT_FALSE(screenRecording->isGranted());
    EXPECT_FALSE(postEvent->isGranted());
    EXPECT_EQ(desktop.journal().take({"accessibility.", "screenCapture.", "eventAccess.", "workspace.openURL"}),
              Lines{});
}

TEST_F(PellamPermissionWatcherTest, ThePromptsSayWhetherThePermissionIsGrantedNow) {
    desktop.accessibility().setTrusted(false);
    EXPECT_FALSE(PellamPermissionWatcher::promptForAccessibility());
    desktop.accessibility().setTrusted(true);
    EXPECT_TRUE(PellamPermissionWatcher::promptForAccessibility());
    desktop.eventAccess().set(false, true);
    EXPECT_FALSE(PellamPermissionWatcher::promptForPostEvent());
    desktop.eventAccess().grantPostOnRequest();
    EXPECT_TRUE(PellamPermissionWatcher::promptForPostEvent());
    EXPECT_EQ(desktop.journal().take({"accessibility.", "eventAccess."}),
              (Lines{"accessibility.promptForTrust", "accessibility.promptForTrust",
                     "eventAccess.requestPostEventAccess", "eventAccess.requestPostEventAccess"}));
}

TEST_F(PellamPermissionWatcherTest, EachPageOfSystemSettingsOpensByItsAddress) {
    const std::string page = "x-apple.systempreferences:com.apple.preference.security?Privacy_";
    for (const auto& [pane, name] : {std::pair{Pane::accessibility, "Accessibility"},
                                     {Pane::screenRecording, "ScreenCapture"},
                                     {Pane::inputMonitoring, "ListenEvent"},
                                     {Pane::camera, "Camera"},
                                     {Pane::microphone, "Microphone"}}) {
        PellamPermissionWatcher::openSettings(pane);
        EXPECT_EQ(desktop.journal().take({"workspace."}), Lines{"workspace.openURL " + page + name});
    }
}

TEST_F(PellamPermissionWatcherDeathTest, AWatcherNeedsACheckAndAPageAName) {
    EXPECT_DEATH(PellamPermissionWatcher(std::nullopt, nullptr), "programming error: a permission watcher without a");
    EXPECT_DEATH(PellamPermissionWatcher::openSettings(static_cast<Pane>(99)), "programming error: an unknown pane");
}

} // namespace
} // namespace quillon
