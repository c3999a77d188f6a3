#include "DelegateTest.h"
#include "PellamKit/PellamStatusItemVisibility.h"

namespace quillon {
namespace {

const std::string promptFlag = "didPromptForAccessibilityStableIdentity";

class AppDelegateTest : public DelegateTest {
protected:
    ScriptReply script(const std::string& verb, std::vector<std::string> arguments = {}) {
        return delegate->performScriptCommand({verb, std::move(arguments)});
    }
    /// Presses the built-in shortcut, Control-Command-P.
    void toggle() {
        EXPECT_EQ(desktop.pressKey(35, 0x140000), TappedEvent::swallowed);
        desktop.runUntilIdle();
    }
    std::optional<WindowID> remembered() {
        const auto& window = delegate->rememberedWindow();
        return window ? std::optional(window->windowID) : std::nullopt;
    }
    std::size_t prompts() { return desktop.journal().take({"accessibility.promptForTrust"}).size(); }
};

using AppDelegateEdgeCases = AppDelegateTest;
using AppDelegateDeathTest = AppDelegateTest;

TEST_F(AppDelegateEdgeCases, AFirstLaunchWithoutTrustPromptsAndASecondDoesNot) {
    desktop.accessibility().setTrusted(false);
    launch();
    EXPECT_EQ(prompts(), 1U);
    EXPECT_EQ(desktop.userDefaults().object(promptFlag), std::optional<PropertyValue>(true));

    delegate = std::make_shared<AppDelegate>();
    launch();
    EXPECT_EQ(prompts(), 0U);
}

TEST_F(AppDelegateEdgeCases, ALaunchWithTrustDoesNotPromptAndWritesNoFlag) {
    launch();
    EXPECT_EQ(prompts(), 0U);
    EXPECT_EQ(desktop.userDefaults().object(promptFlag), std::nullopt);
}

TEST_F(AppDelegateEdgeCases, ActivatingThisApplicationLeavesTheRememberedWindow) {
    launch();
    activate(notes);
    ASSERT_EQ(remembered(), shopping);
    desktop.openWindow(simulated::Desktop::ownPID(), "Impostazioni", here);
    activate(simulated::Desktop::ownPID());
    EXPECT_EQ(remembered(), shopping);
}

TEST_F(AppDelegateEdgeCases, ActivatingAnApplicationWithoutAnEligibleWindowLeavesTheRememberedWindow) {
    launch();
    activate(notes);
    activate(desktop.launch("Musica"));
    EXPECT_EQ(remembered(), shopping);
}

TEST_F(AppDelegateEdgeCases, TheShortcutWithNoForeignWindowFrontmostPinsNothingEvenWithARememberedOne) {
    turnLoggingOn();
    launch();
    activate(notes);
    ASSERT_EQ(remembered(), shopping);
    activate(simulated::Desktop::ownPID());
    takeLog();
    toggle();
    EXPECT_EQ(takeLog(), Lines{"togglePin: No foreign window found"});
    EXPECT_EQ(script("list").text, "");
}

TEST_F(AppDelegateEdgeCases, AWindowWithoutATitleIsLoggedWithItsOwnersName) {
    turnLoggingOn();
    launch();
    desktop.model().window(shopping).title = "";
    activate(notes);
    takeLog();
    toggle();
    EXPECT_EQ(takeLog().at(1), "togglePin: Pinned 'Note' (wid=" + std::to_string(shopping) + ")");
}

TEST_F(AppDelegateEdgeCases, ReopeningBringsAHiddenStatusItemBackAndChangesNothingWhenItIsShown) {
    const std::vector<std::string> changes{"userDefaults.", "notificationCenter.post"};
    launch();
    PellamStatusItemVisibility::setVisible(false);
    desktop.journal().clear();

    EXPECT_TRUE(delegate->applicationShouldHandleReopen(false));
    EXPECT_EQ(desktop.journal().take({"notificationCenter.post"}),
              Lines{"notificationCenter.post kit.pellam.PellamKit.StatusItemVisibilityDidChange"});
    EXPECT_TRUE(PellamStatusItemVisibility::isVisible());

    EXPECT_TRUE(delegate->applicationShouldHandleReopen(true));
    EXPECT_EQ(desktop.journal().take(changes), Lines{});
}

TEST_F(AppDelegateEdgeCases, QuittingWithWindowsPinnedHidesEveryOverlay) {
    launch();
    activate(notes);
    toggle();
    activate(mail);
    toggle();
    activate(desktop.launch("Musica"));
    for (const auto* panel : desktop.panels().all()) {
        ASSERT_TRUE(panel->isVisible());
    }
    desktop.journal().clear();
    delegate->applicationWillTerminate();
    EXPECT_EQ(desktop.journal().take({"panel.orderOut"}).size(), 2U);
    EXPECT_TRUE(desktop.panels().all().empty());
    desktop.runUntilIdle();
    EXPECT_TRUE(desktop.screenCapture().runningStreams().empty());
}

TEST_F(AppDelegateTest, ANewDelegateHasTheBuiltInShortcutAndRemembersNothing) {
    EXPECT_EQ(delegate->shortcutKeyCode, 35);
    EXPECT_EQ(delegate->shortcutModifiers, 0x140000U);
    EXPECT_EQ(remembered(), std::nullopt);
    EXPECT_EQ(script("list").text, "");
}

TEST_F(AppDelegateTest, StartUpKeepsItsOrder) {
    desktop.accessibility().setTrusted(false);
    turnLoggingOn();
    desktop.journal().clear();
    delegate->applicationDidFinishLaunching();
    const std::string logged = "queue.async local.quillon.floating.log";
    EXPECT_EQ(
        desktop.journal().take({"application.", "accessibility.", "userDefaults.set " + promptFlag, logged,
                                "notificationCenter.addObserver", "workspace.",
                                "userDefaults.set PellamRegisteredHotkeys", "userDefaults.set didMigratePillColorV2",
                                "statusBar.", "eventTap", "scheduler.scheduleRepeatingTimer"}),
        (Lines{
            "application.setMainMenu",
            "application.setActivationPolicy accessory",
            logged,
            "userDefaults.set " + promptFlag + "=true",
            "accessibility.promptForTrust",
            logged,
            "userDefaults.set PellamRegisteredHotkeys=<104 bytes>",
            "userDefaults.set didMigratePillColorV2=true",
            "statusBar.makeStatusItem",
            "notificationCenter.addObserver kit.pellam.PellamKit.StatusItemVisibilityDidChange",
            "workspace.observeDidActivateApplication",
            "eventTaps.create location=2 placement=1 options=0 mask=0x400",
            logged,
            logged,
            "scheduler.scheduleRepeatingTimer 2",
            "notificationCenter.addObserver NSApplicationDidChangeScreenParametersNotification",
            logged,
        }));
}

TEST_F(AppDelegateTest, StartUpLogsTrustAndEventAccess) {
    turnLoggingOn();
    struct Case {
        bool trusted, post, listen;
        std::string trust, access;
    };
    for (const auto& [trusted, post, listen, trust, access] : {
             Case{true, true, true, "true", "PostEvent access: true  ListenEvent access: true"},
             Case{false, false, true, "false", "PostEvent access: false  ListenEvent access: true"},
             Case{true, true, false, "true", "PostEvent access: true  ListenEvent access: false"},
         }) {
        desktop.accessibility().setTrusted(trusted);
        desktop.eventAccess().set(post, listen);
        launch();
        const auto lines = takeLog();
        ASSERT_GE(lines.size(), 3U);
        EXPECT_EQ(lines[0], "Accessibility trusted: " + trust);
        EXPECT_EQ(lines[1], access);
        EXPECT_EQ(lines.back(), "Launched successfully");
    }
}

TEST_F(AppDelegateTest, WithTrustAPromptFlagOfAnEarlierLaunchStays) {
    desktop.userDefaults().store(promptFlag, true);
    launch();
    EXPECT_EQ(prompts(), 0U);
    EXPECT_EQ(desktop.userDefaults().object(promptFlag), std::optional<PropertyValue>(true));
}

TEST_F(AppDelegateTest, AWindowIsRememberedATenthOfASecondAfterItsApplicationsActivation) {
    launch();
    desktop.activate(notes);
    desktop.advance(Seconds(0.099));
    EXPECT_EQ(remembered(), std::nullopt);
    desktop.advance(Seconds(0.001));
    EXPECT_EQ(remembered(), shopping);
}

TEST_F(AppDelegateTest, TheWindowThatIsFrontmostAfterTheDelayIsRemembered) {
    launch();
    desktop.activate(notes);
    desktop.advance(Seconds(0.05));
    const auto journey = desktop.openWindow(notes, "Viaggio", here);
    desktop.advance(Seconds(0.05));
    EXPECT_EQ(remembered(), journey);
    activate(mail);
    EXPECT_EQ(remembered(), inbox);
}

TEST_F(AppDelegateTest, ARememberedWindowMayHaveClosed) {
    launch();
    activate(notes);
    desktop.close(shopping);
    desktop.advance(Seconds(5));
    EXPECT_EQ(remembered(), shopping);
}

TEST_F(AppDelegateTest, AnActivationWithoutAnApplicationIsIgnored) {
    launch();
    desktop.activate(notes);
    desktop.workspace().announceActivation(std::nullopt);
    desktop.runUntilIdle();
    desktop.advance(Seconds(1));
    EXPECT_EQ(remembered(), shopping);
}

TEST_F(AppDelegateTest, TheActivationOfThisProgramPlansNoLook) {
    launch();
    desktop.activate(simulated::Desktop::ownPID());
    desktop.runUntilIdle();
    desktop.model().frontmost = notes;
    desktop.advance(Seconds(1));
    EXPECT_EQ(remembered(), std::nullopt);
}

TEST_F(AppDelegateTest, BeforeTheLaunchNothingIsRemembered) {
    activate(notes);
    EXPECT_EQ(remembered(), std::nullopt);
}

TEST_F(AppDelegateTest, ThePlannedLookKeepsTheDelegateAliveAndTheObserversDoNot) {
    launch();
    desktop.activate(notes);
    desktop.runUntilIdle();
    const std::weak_ptr<AppDelegate> weak = delegate;
    delegate.reset();
    EXPECT_FALSE(weak.expired());
    desktop.advance(Seconds(0.1));
    EXPECT_TRUE(weak.expired());
    EXPECT_EQ(desktop.workspace().observers(), 0U);
    activate(mail);
}

TEST_F(AppDelegateTest, NotificationsAfterTheDelegatesEndReachNobody) {
    launch();
    desktop.activate(notes);
    delegate.reset();
    desktop.advance(Seconds(1));
    desktop.changeScreens({});
    PellamStatusItemVisibility::setVisible(false);
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.workspace().observers(), 0U);
}

TEST_F(AppDelegateTest, NotificationsDuringTheRunChangeNothingThatIsPinned) {
    launch();
    activate(notes);
    toggle();
    PellamStatusItemVisibility::setVisible(false);
    desktop.changeScreens({{{{0, 0}, {1920, 1080}}, 1}});
    desktop.runUntilIdle();
    EXPECT_EQ(script("list").text, std::to_string(shopping) + "\tNote — Spesa");
}

TEST_F(AppDelegateTest, LaunchingAgainReplacesTheActivationObserver) {
    launch();
    const auto before = desktop.workspace().observers();
    launch();
    EXPECT_EQ(desktop.workspace().observers(), before);
}

TEST_F(AppDelegateTest, TheShortcutPinsAndUnpinsTheFrontmostWindow) {
    turnLoggingOn();
    launch();
    activate(notes);
    takeLog();
    const auto number = std::to_string(shopping);

    toggle();
    const auto pinned = takeLog();
    ASSERT_GE(pinned.size(), 2U);
    EXPECT_EQ(pinned[0], "pin: overlay created for wid=" + number);
    EXPECT_EQ(pinned[1], "togglePin: Pinned 'Spesa' (wid=" + number + ")");

    toggle();
    EXPECT_EQ(takeLog(),
              (Lines{"overlay: hideOverlay wid=" + number, "togglePin: Unpinned 'Spesa' (wid=" + number + ")"}));
    EXPECT_EQ(script("list").text, "");
}

TEST_F(AppDelegateTest, TheShortcutShowsNoOverlayBeforeAnotherApplicationIsActivated) {
    launch();
    activate(notes);
    toggle();
    desktop.advance(Seconds(1));
    EXPECT_FALSE(desktop.panels().all().front()->isVisible());
}

TEST_F(AppDelegateTest, ShutdownEndsTheFocusObserverBeforeItUnpins) {
    launch();
    activate(notes);
    toggle();
    desktop.journal().clear();
    delegate->applicationWillTerminate();
    EXPECT_EQ(desktop.journal().take({"workspace.", "panel."}),
              (Lines{"workspace.endObservingActivations", "panel.orderOut", "panel.destroy"}));
    activate(mail);
    EXPECT_EQ(remembered(), shopping);
}

TEST_F(AppDelegateTest, ShuttingDownTwiceOrWithoutALaunchIsHarmless) {
    delegate->applicationWillTerminate();
    launch();
    script("unpin", {"all"});
    delegate->applicationWillTerminate();
    delegate->applicationWillTerminate();
    EXPECT_EQ(script("list").text, "");
}

TEST_F(AppDelegateTest, ScriptsSeeTheShortcutAndOpenTheMenu) {
    desktop.accessibility().setTrusted(false);
    launch();
    const auto status = script("status").text;
    EXPECT_EQ(status.substr(0, status.find('\n')), "Scorciatoia: ⌃⌘P, in attesa del permesso di Accessibilità");
    EXPECT_EQ(script("menu").exitStatus, 0);
    EXPECT_TRUE(desktop.statusBar().isMenuOpen());
    EXPECT_EQ(script("menu").exitStatus, 1) << "a menu is open already";
}

TEST_F(AppDelegateTest, ScriptsToggleWhatTheShortcutDoes) {
    launch();
    activate(notes);
    EXPECT_EQ(script("toggle").text, "Fissata: Note — Spesa (finestra " + std::to_string(shopping) + ")");
    toggle();
    EXPECT_EQ(script("list").text, "");
}

TEST_F(AppDelegateDeathTest, WithoutAnApplicationObjectTheLaunchStops) {
    desktop.removeApplicationObject();
    EXPECT_DEATH(delegate->applicationDidFinishLaunching(), "there is no shared application");
}

} // namespace
} // namespace quillon
