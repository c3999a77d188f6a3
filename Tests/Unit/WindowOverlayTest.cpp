#include "WindowOverlay.h"

#include "OverlayTest.h"

#include <algorithm>

namespace quillon {
namespace {

using simulated::CaptureOperation;

const std::string scrollQueue = "local.quillon.floating.axprobe";

class WindowOverlayTest : public OverlayTest {
protected:
    static constexpr WindowPoint middle{400, 300};
    /// On the edge of the 28 points in which a press resizes.
    static constexpr WindowPoint corner{772, 28};

    void setMacOS(int major) { desktop.processInfo().setOperatingSystemVersion({major, 0, 0}); }
    void setForwarding(bool on) { desktop.userDefaults().store("forwardEvents", on); }

    void send(EventType type, WindowPoint location = middle, ModifierFlags flags = 0, double deltaY = 0) {
        panel().inject({.type = type, .locationInWindow = location, .modifierFlags = flags, .scrollingDeltaY = deltaY});
    }
    /// The grip follows the pointer by that many points; screen coordinates, y upwards.
    void dragGrip(double dx, double dy) {
        const auto start = panel().frame();
        const auto at = [&](double x, double y) {
            const auto now = panel().frame();
            return WindowPoint{start.minX() + corner.x + x - now.minX(), start.minY() + corner.y + y - now.minY()};
        };
        send(EventType::leftMouseDown, corner);
        send(EventType::leftMouseDragged, at(dx, dy));
        send(EventType::leftMouseUp, at(dx, dy));
    }
    std::size_t postedEvents() { return desktop.syntheticEvents().posted().size(); }
    const simulated::PostedEvent& lastPosted() { return desktop.syntheticEvents().posted().back(); }
    /// What the scroller asks of other programs.
    Lines takeAccessibilityCalls() {
        desktop.runUntilIdle();
        return desktop.accessibility().takeCalls();
    }
    std::size_t reconfigurations() { return desktop.journal().take({"stream.updateConfiguration"}).size(); }
    std::size_t switches() {
        const auto lines = takeLog();
        return static_cast<std::size_t>(
            std::count(lines.begin(), lines.end(), "overlay: switching to real window wid=" + number));
    }
};

using WindowOverlayEdgeCases = WindowOverlayTest;
using WindowOverlayDeathTest = WindowOverlayTest;

TEST_F(WindowOverlayEdgeCases, WithForwardingNeverStoredClicksAreForwardedBelow27AndSwitchFrom27On) {
    turnLoggingOn();
    setMacOS(26);
    show();
    takeLog();
    send(EventType::leftMouseDown);
    EXPECT_EQ(lastPosted().type, SystemEventType::leftMouseDown);
    EXPECT_EQ(lastPosted().location, (DisplayPoint{500, 350}));
    EXPECT_EQ(lastPosted().pid, app);
    send(EventType::leftMouseUp);
    EXPECT_EQ(lastPosted().type, SystemEventType::leftMouseUp);
    EXPECT_EQ(postedEvents(), 2U);
    EXPECT_EQ(switches(), 0U);
    EXPECT_TRUE(overlay->isPinVisible());
    EXPECT_TRUE(panel().inheritedEvents().empty());
    EXPECT_EQ(desktop.model().frontmost, std::nullopt) << "nothing was activated";

    setMacOS(27);
    send(EventType::leftMouseDown);
    EXPECT_EQ(switches(), 1U);
    EXPECT_FALSE(overlay->isPinVisible());
    EXPECT_EQ(desktop.model().frontmost, app);
    EXPECT_EQ(postedEvents(), 2U);
}

TEST_F(WindowOverlayEdgeCases, ADragResizesOnlyWhenItStartsInTheCornerAndThenIsNeverForwarded) {
    setForwarding(false);
    show();
    for (const WindowPoint outside : {WindowPoint{771.9, 10}, WindowPoint{790, 28.1}, WindowPoint{10, 10}}) {
        send(EventType::leftMouseDragged, outside);
        send(EventType::leftMouseUp, outside);
        EXPECT_EQ(panel().frame(), realFrame);
    }
    EXPECT_EQ(panel().inheritedEvents().size(), 6U);

    dragGrip(40, -30);
    EXPECT_EQ(panel().frame(), (ScreenRect{{100, 220}, {840, 630}}));
    EXPECT_EQ(panel().inheritedEvents().size(), 6U) << "neither forwarded nor inherited";

    send(EventType::leftMouseDown, {700, 300});
    EXPECT_EQ(panel().inheritedEvents().size(), 7U);

    setForwarding(true);
    overlay->bringToFront();
    const auto before = panel().frame();
    for (const auto type : {EventType::leftMouseDown, EventType::leftMouseDragged, EventType::leftMouseUp}) {
        send(type, {700, 300});
        EXPECT_EQ(panel().frame(), before);
    }
    EXPECT_EQ(postedEvents(), 3U) << "outside the corner a drag is forwarded";
    send(EventType::leftMouseDown, {812, 28});
    send(EventType::leftMouseDragged, {822, 28});
    send(EventType::leftMouseUp, {822, 28});
    EXPECT_EQ(panel().frame().size, (Size{850, 630}));
    EXPECT_EQ(postedEvents(), 3U) << "inside it never";
}

TEST_F(WindowOverlayEdgeCases, ShrinkingStopsAt320By220AndTheTopLeftCornerStaysPut) {
    show();
    dragGrip(-1000, 1000);
    EXPECT_EQ(panel().frame(), (ScreenRect{{100, 630}, {320, 220}}));
    dragGrip(-1, 1);
    EXPECT_EQ(panel().frame().minX(), realFrame.minX());
    EXPECT_EQ(panel().frame().maxY(), realFrame.maxY());
}

TEST_F(WindowOverlayEdgeCases, AfterAGripResizeTheOverlayFollowsTheTopLeftCornerAndKeepsItsSize) {
    show();
    dragGrip(-200, 100);
    desktop.move(windowID, {{300, 150}, {1000, 700}});
    desktop.advance(Seconds(0.5));
    EXPECT_EQ(panel().frame(), (ScreenRect{{300, 250}, {600, 500}}));
    EXPECT_EQ(panel().frame().maxY(), 900 - 150);
}

TEST_F(WindowOverlayEdgeCases, ASizeChangeOfOnePointLeavesTheStreamAloneAndOneAndAHalfDoesNot) {
    show();
    desktop.journal().clear();
    const auto resize = [&](double width, double height) {
        desktop.move(windowID, {realBounds.origin, {800 + width, 600 + height}});
        desktop.advance(Seconds(0.5));
        return reconfigurations();
    };
    EXPECT_EQ(resize(1, 0), 0U);
    EXPECT_EQ(resize(0, -1), 0U);
    EXPECT_EQ(resize(1.5, 0), 1U);
    EXPECT_EQ(resize(1.5, 0), 0U) << "the new size is remembered";
    EXPECT_EQ(resize(1.5, 1.5), 1U);
    EXPECT_EQ(resize(0, 0), 1U);
    EXPECT_EQ(resize(0, 0), 0U);
}

TEST_F(WindowOverlayEdgeCases, BringingToFrontTwiceShowsOnceAndSendingBehindOneThatIsNotInFrontDoesNothing) {
    turnLoggingOn();
    createReady();
    takeLog();
    desktop.journal().clear();
    overlay->sendBehind();
    EXPECT_EQ(desktop.journal().take({"panel.", "stream."}), Lines{});
    EXPECT_EQ(takeLog(), Lines{});

    overlay->bringToFront();
    overlay->bringToFront();
    const auto log = takeLog();
    ASSERT_GE(log.size(), 2U);
    EXPECT_EQ(log[0], "overlay: bringToFront wid=" + number);
    EXPECT_EQ(log[1], "overlay: bringToFront skipped (already front) wid=" + number);
    EXPECT_EQ(desktop.journal().take({"panel.orderFront"}).size(), 1U);
}

TEST_F(WindowOverlayEdgeCases, AScrollWithoutVerticalDeltaDoesNotReachTheScroller) {
    setMacOS(27);
    setForwarding(true);
    show();
    takeAccessibilityCalls();
    const auto before = desktop.scheduler().waitingTasks(scrollQueue);
    send(EventType::scrollWheel);
    EXPECT_EQ(desktop.scheduler().waitingTasks(scrollQueue), before);
    EXPECT_EQ(takeAccessibilityCalls(), Lines{});
    EXPECT_TRUE(panel().inheritedEvents().empty());
    EXPECT_EQ(postedEvents(), 0U);
}

// Geometry

TEST_F(WindowOverlayTest, AWindowsBoundsAreThoseOfTheWindowServer) {
    EXPECT_EQ(WindowOverlay::windowBounds(windowID), realBounds);
    EXPECT_EQ(WindowOverlay::getWindowFrame(windowID), realFrame);
}

TEST_F(WindowOverlayTest, MissingNumbersOfTheBoundsCountAsZero) {
    window().alterDescription = [](auto& entry) {
        entry.bounds = WindowBoundsEntry{.x = std::nullopt, .y = 50, .width = std::nullopt, .height = 600};
    };
    EXPECT_EQ(WindowOverlay::windowBounds(windowID), (DisplayRect{{0, 50}, {0, 600}}));
    EXPECT_EQ(WindowOverlay::getWindowFrame(windowID), (ScreenRect{{0, 250}, {0, 600}}));
}

TEST_F(WindowOverlayTest, AWindowThatCannotBeDescribedHasNoBounds) {
    const auto expectNone = [&](const char* reason) {
        EXPECT_EQ(WindowOverlay::windowBounds(windowID), std::nullopt) << reason;
        EXPECT_EQ(WindowOverlay::getWindowFrame(windowID), std::nullopt) << reason;
    };
    window().alterDescription = [](auto& entry) { entry.bounds.reset(); };
    expectNone("no bounds");
    desktop.windowServer().setFailing(true);
    expectNone("no answer");
    desktop.windowServer().setFailing(false);
    desktop.close(windowID);
    expectNone("no window");
}

TEST_F(WindowOverlayTest, TheFrameIsFlippedAgainstThePrimaryScreenWhereverTheWindowLies) {
    desktop.screens().set({{{{0, 0}, {1000, 500}}, 1}, {{{1000, 0}, {2000, 2000}}, 2}});
    desktop.move(windowID, {{1500, -700}, {800, 600}});
    EXPECT_EQ(WindowOverlay::getWindowFrame(windowID), (ScreenRect{{1500, 600}, {800, 600}}));
}

TEST_F(WindowOverlayDeathTest, WithoutAPrimaryScreenThereIsNoPlaceForAWindow) {
    desktop.screens().set({});
    EXPECT_DEATH(static_cast<void>(WindowOverlay::getWindowFrame(windowID)),
                 "there is no primary screen to place a window on");
}

// Creation

TEST_F(WindowOverlayTest, ANewOverlayIsAHiddenFloatingPanelOverTheRealWindow) {
    create();
    EXPECT_EQ(overlay->targetWindowID(), windowID);
    EXPECT_EQ(overlay->targetPID(), app);
    EXPECT_EQ(overlay->frame(), realFrame);
    EXPECT_EQ(overlay->framesReceived(), 0);
    EXPECT_FALSE(overlay->isPinVisible());
    EXPECT_FALSE(panel().isVisible());
    EXPECT_EQ(panel().level(), floatingWindowLevel);
    EXPECT_EQ(panel().collectionBehavior(),
              (CollectionBehavior{.canJoinAllSpaces = false, .fullScreenAuxiliary = true}));
    EXPECT_TRUE(panel().contentView()->resizesWithContainer());
    EXPECT_EQ(panel().contentView()->frame(), (WindowRect{{0, 0}, {800, 600}}));
    EXPECT_EQ(layer().frame(), (WindowRect{{0, 0}, {800, 600}}));
    EXPECT_EQ(layer().contents(), nullptr);
}

TEST_F(WindowOverlayTest, CreationKeepsItsOrder) {
    desktop.journal().clear();
    create();
    EXPECT_EQ(desktop.journal().take(),
              (Lines{"panels.makePanel 100,250 800x600", "panel.setLevel 3",
                     "panel.setCollectionBehavior canJoinAllSpaces=false fullScreenAuxiliary=true"}));
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.journal().take(), Lines{"screenCapture.getShareableContent false false"});
}

TEST_F(WindowOverlayTest, WithoutADescriptionOfTheWindowTheFallbackFrameIsUsed) {
    desktop.windowServer().setFailing(true);
    create();
    EXPECT_EQ(overlay->frame(), (ScreenRect{{100, 100}, {800, 600}}));
}

TEST_F(WindowOverlayTest, TheSettingForAllSpacesIsReadAtCreationOnly) {
    desktop.userDefaults().store("pinToAllSpaces", true);
    create();
    const CollectionBehavior everywhere{.canJoinAllSpaces = true, .fullScreenAuxiliary = true};
    EXPECT_EQ(panel().collectionBehavior(), everywhere);
    desktop.userDefaults().store("pinToAllSpaces", false);
    overlay->bringToFront();
    desktop.advance(Seconds(1));
    EXPECT_EQ(panel().collectionBehavior(), everywhere);
}

// Showing

TEST_F(WindowOverlayTest, WithoutACaptureRecordTheOverlayFadesInEmpty) {
    window().canBeShared = false;
    turnLoggingOn();
    createReady();
    takeLog();
    desktop.journal().clear();
    overlay->bringToFront();
    EXPECT_TRUE(overlay->isPinVisible());
    EXPECT_EQ(desktop.journal().take({"panel.", "scheduler."}),
              (Lines{"panel.setLevel 3", "panel.setAlphaValue 0", "panel.orderFront",
                     "panel.animateAlphaValue 1 over 0.15", "scheduler.scheduleRepeatingTimer 0.5"}));
    EXPECT_EQ(layer().contents(), nullptr);
    EXPECT_EQ(takeLog().front(), "overlay: bringToFront wid=" + number);
}

TEST_F(WindowOverlayTest, FadingInTakesFifteenHundredthsOfASecond) {
    window().canBeShared = false;
    createReady().bringToFront();
    EXPECT_EQ(panel().alphaValue(), 0);
    desktop.advance(Seconds(0.075));
    EXPECT_NEAR(panel().alphaValue(), 0.5, 1e-6);
    desktop.advance(Seconds(0.075));
    EXPECT_EQ(panel().alphaValue(), 1);
}

TEST_F(WindowOverlayTest, WithACaptureRecordTheOverlayIsShownWithAFirstPicture) {
    capture().hold(CaptureOperation::screenshot);
    capture().hold(CaptureOperation::startCapture);
    createReady().bringToFront();
    desktop.runUntilIdle();
    EXPECT_FALSE(panel().isVisible());
    EXPECT_EQ(layer().contents(), nullptr);
    desktop.journal().clear();

    capture().complete(CaptureOperation::screenshot);
    desktop.runUntilIdle();
    EXPECT_EQ(
        desktop.journal().take({"layer.", "panel.", "stream.startCapture", "scheduler."}),
        (Lines{"layer.setContents 1", "panel.setLevel 3", "panel.setAlphaValue 0", "panel.orderFront",
               "panel.animateAlphaValue 1 over 0.15", "stream.startCapture", "scheduler.scheduleRepeatingTimer 0.5"}));
}

TEST_F(WindowOverlayTest, TheFirstPictureHasTheFiltersScale) {
    capture().setFilterScale(1.5);
    createReady().bringToFront();
    desktop.runUntilIdle();
    ASSERT_TRUE(capture().lastScreenshot());
    EXPECT_EQ(capture().lastScreenshot()->width, 1200);
    EXPECT_EQ(capture().lastScreenshot()->height, 900);
}

TEST_F(WindowOverlayTest, AFailedFirstPictureIsLoggedAndTheOverlayShownAllTheSame) {
    turnLoggingOn();
    capture().hold(CaptureOperation::startCapture);
    capture().failNext(CaptureOperation::screenshot, {7, "no permission"});
    createReady();
    takeLog();
    overlay->bringToFront();
    EXPECT_EQ(takeLog().at(1), "overlay: pre-show capture failed wid=" + number + ": no permission");
    EXPECT_TRUE(panel().isVisible());
    EXPECT_EQ(layer().contents(), nullptr);
    capture().release(CaptureOperation::startCapture);
    desktop.runUntilIdle();
    EXPECT_NE(layer().contents(), nullptr);
}

TEST_F(WindowOverlayTest, AFirstPictureThatComesTooLateChangesNothing) {
    capture().hold(CaptureOperation::screenshot);
    createReady().bringToFront();
    desktop.runUntilIdle();
    overlay->sendBehind();
    desktop.journal().clear();
    capture().complete(CaptureOperation::screenshot);
    desktop.advance(Seconds(1));
    EXPECT_EQ(desktop.journal().take({"panel.", "stream.", "layer.", "scheduler."}), Lines{});

    overlay->hideOverlay();
    overlay->bringToFront();
    desktop.runUntilIdle();
    overlay->hideOverlay();
    capture().complete(CaptureOperation::screenshot);
    desktop.runUntilIdle();
    EXPECT_FALSE(panel().isVisible());

    overlay->bringToFront();
    desktop.runUntilIdle();
    overlay->sendBehind();
    overlay->bringToFront();
    desktop.runUntilIdle();
    desktop.journal().clear();
    capture().complete(CaptureOperation::screenshot);
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.journal().take({"panel.", "stream.", "layer."}), Lines{}) << "shown already by another way";
}

TEST_F(WindowOverlayTest, AnOverlayThatIsReleasedBeforeItsFirstPictureIsNotShown) {
    capture().hold(CaptureOperation::screenshot);
    createReady().bringToFront();
    desktop.runUntilIdle();
    overlay->hideOverlay();
    overlay.reset();
    capture().complete(CaptureOperation::screenshot);
    desktop.advance(Seconds(1));
    EXPECT_TRUE(desktop.panels().all().empty());
}

TEST_F(WindowOverlayTest, AnOverlayThatIsReleasedBeforeItAsksForItsFirstPictureAsksForNone) {
    createReady().bringToFront();
    overlay.reset();
    desktop.runUntilIdle();
    EXPECT_EQ(capture().lastScreenshot(), std::nullopt);
}

TEST_F(WindowOverlayTest, AnOverlayBehindComesToTheFrontWithoutFading) {
    show().sendBehind();
    desktop.runUntilIdle();
    desktop.journal().clear();
    overlay->bringToFront();
    EXPECT_EQ(
        desktop.journal().take({"panel.", "stream.startCapture", "scheduler.", "screenCapture.captureImage"}),
        (Lines{"panel.setLevel 3", "panel.orderFront", "stream.startCapture", "scheduler.scheduleRepeatingTimer 0.5"}));
    EXPECT_EQ(panel().alphaValue(), 1);
}

TEST_F(WindowOverlayTest, ComingToTheFrontTheOverlayTakesTheRealWindowsFrame) {
    createReady();
    desktop.move(windowID, {{10, 20}, {500, 400}});
    overlay->bringToFront();
    EXPECT_EQ(panel().frame(), (ScreenRect{{10, 480}, {500, 400}}));
}

// Sending behind and hiding

TEST_F(WindowOverlayTest, SendingBehindStopsTheStreamAndTheFrameSyncBeforeThePanelGoesBack) {
    turnLoggingOn();
    show();
    takeLog();
    const auto picture = layer().contents();
    desktop.journal().clear();
    overlay->sendBehind();
    EXPECT_EQ(desktop.journal().take(), (Lines{"queue.async local.quillon.floating.log", "stream.stopCapture",
                                               "scheduler.endRepeatingTimer", "panel.setLevel -1", "panel.orderBack"}));
    EXPECT_EQ(takeLog(), Lines{"overlay: sendBehind wid=" + number});
    EXPECT_FALSE(overlay->isPinVisible());
    EXPECT_TRUE(panel().isVisible());
    EXPECT_EQ(layer().contents(), picture);
    desktop.move(windowID, {{0, 0}, {400, 300}});
    desktop.advance(Seconds(2));
    EXPECT_EQ(panel().frame(), realFrame);
}

TEST_F(WindowOverlayTest, HidingStopsEverythingBeforeThePanelIsOrderedOut) {
    turnLoggingOn();
    show();
    takeLog();
    desktop.journal().clear();
    overlay->hideOverlay();
    EXPECT_EQ(desktop.journal().take({"queue.async local.quillon.floating.log", "stream.", "scheduler.", "panel."}),
              (Lines{"queue.async local.quillon.floating.log", "stream.stopCapture", "scheduler.endRepeatingTimer",
                     "panel.orderOut"}));
    EXPECT_EQ(takeLog(), Lines{"overlay: hideOverlay wid=" + number});
    EXPECT_FALSE(overlay->isPinVisible());
    EXPECT_FALSE(panel().isVisible());
}

TEST_F(WindowOverlayTest, HidingWorksFromAnyState) {
    turnLoggingOn();
    createReady().hideOverlay();
    EXPECT_FALSE(panel().isVisible());
    overlay->bringToFront();
    desktop.runUntilIdle();
    overlay->sendBehind();
    overlay->hideOverlay();
    EXPECT_FALSE(panel().isVisible());
    overlay->bringToFront();
    desktop.runUntilIdle();
    EXPECT_TRUE(panel().isVisible());
    EXPECT_EQ(panel().level(), floatingWindowLevel);
}

TEST_F(WindowOverlayTest, SwitchingToTheRealWindowSendsTheOverlayBehind) {
    turnLoggingOn();
    show();
    takeLog();
    desktop.journal().clear();
    overlay->activateRealWindow();
    EXPECT_EQ(takeLog(), (Lines{"overlay: switching to real window wid=" + number, "overlay: sendBehind wid=" + number,
                                fmt::format("raiseWindow: AXRaise wid={} pid={} result=0", number, app),
                                "raiseWindow: activated app 'Note'"}));
    EXPECT_EQ(panel().level(), normalWindowLevel - 1);
    EXPECT_EQ(desktop.journal().take({"panel.orderBack", "accessibility.", "workspace.activate"}),
              (Lines{"panel.orderBack", "accessibility.performAction window " + number + " AXRaise",
                     fmt::format("workspace.activateApplication {}", app)}));
}

TEST_F(WindowOverlayTest, SwitchingShowsTheWindowThatWasPinnedAboveTheOthersOfItsApplication) {
    show();
    desktop.openWindow(app, "Viaggio", {{300, 200}, {500, 400}});
    const auto mail = desktop.launch("Mail");
    desktop.openWindow(mail, "Posta", {{0, 0}, {900, 900}});
    desktop.activate(mail);
    overlay->activateRealWindow();
    EXPECT_EQ(desktop.model().frontmost, app);
    EXPECT_EQ(desktop.model().windows.front().windowID, windowID);
}

TEST_F(WindowOverlayTest, SwitchingToAWindowThatHasClosedOnlySendsTheOverlayBehind) {
    turnLoggingOn();
    show();
    desktop.close(windowID);
    takeLog();
    overlay->activateRealWindow();
    EXPECT_EQ(takeLog().back(),
              fmt::format("raiseWindow: no AX window matched wid={} pid={}; doing nothing", number, app));
    EXPECT_FALSE(overlay->isPinVisible());
    EXPECT_EQ(desktop.model().frontmost, std::nullopt);
}

TEST_F(WindowOverlayTest, AReleasedOverlayLeavesNothingBehind) {
    show();
    overlay.reset();
    EXPECT_TRUE(desktop.panels().all().empty());
    EXPECT_EQ(desktop.views().living(), 0U);
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), 0U);
    EXPECT_TRUE(capture().streams().empty());
}

// Frame sync

TEST_F(WindowOverlayTest, TheOverlayFollowsTheRealWindowEveryHalfSecondWithoutRedisplay) {
    show();
    desktop.advance(Seconds(0.3));
    desktop.journal().clear();
    desktop.move(windowID, {{200, 60}, {800, 600}});
    desktop.advance(Seconds(0.5));
    EXPECT_EQ(desktop.journal().take({"panel."}), Lines{"panel.setFrame 200,240 800x600 display=false"});
    desktop.advance(Seconds(5));
    EXPECT_EQ(desktop.journal().take({"panel."}), Lines{}) << "an unchanged frame is not set";
}

TEST_F(WindowOverlayTest, OnlyOneTimerFollowsTheWindow) {
    show().sendBehind();
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), 0U);
    overlay->bringToFront();
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.scheduler().repeatingTimers(), 1U);
}

TEST_F(WindowOverlayTest, AWindowThatIsGoneLeavesTheOverlayWhereItIs) {
    show();
    window().alterDescription = [](auto& entry) { entry.bounds.reset(); };
    desktop.journal().clear();
    desktop.advance(Seconds(2));
    EXPECT_EQ(panel().frame(), realFrame);
    EXPECT_EQ(desktop.journal().take({"panel.", "stream."}), Lines{});
}

TEST_F(WindowOverlayTest, WithoutAStreamASizeChangeReconfiguresNothing) {
    window().canBeShared = false;
    createReady().bringToFront();
    desktop.move(windowID, {{100, 50}, {400, 300}});
    desktop.advance(Seconds(0.5));
    EXPECT_EQ(panel().frame().size, (Size{400, 300}));
    EXPECT_EQ(reconfigurations(), 0U);
}

TEST_F(WindowOverlayTest, AResizedOverlayReconfiguresItsStreamForItsOwnSize) {
    show();
    desktop.journal().clear();
    dragGrip(-200, 100);
    EXPECT_EQ(reconfigurations(), 0U) << "not before the next frame sync";
    desktop.advance(Seconds(0.5));
    EXPECT_EQ(desktop.journal().take({"stream.updateConfiguration"}), Lines{"stream.updateConfiguration 1200x1000"});
}

// The grip

TEST_F(WindowOverlayTest, EveryStepOfADragResizesAndRedisplays) {
    show();
    send(EventType::leftMouseDown, {780, 20});
    desktop.journal().clear();
    send(EventType::leftMouseDragged, {790, 10});
    EXPECT_EQ(desktop.journal().take({"panel.setFrame"}), Lines{"panel.setFrame 100,240 810x610 display=true"});
    // The panel's bottom left has moved down by 10 since, so the same place on screen is 10 higher in the window.
    send(EventType::leftMouseDragged, {790, 20});
    EXPECT_EQ(panel().frame(), (ScreenRect{{100, 240}, {810, 610}}));
    send(EventType::leftMouseUp, {800, 10});
    EXPECT_EQ(panel().frame(), (ScreenRect{{100, 230}, {820, 620}}));
    send(EventType::leftMouseDragged, {400, 300});
    EXPECT_EQ(panel().frame(), (ScreenRect{{100, 230}, {820, 620}})) << "the drag has ended";
}

TEST_F(WindowOverlayTest, TheCornerIsThatOfTheResizedPanel) {
    setForwarding(false);
    show();
    dragGrip(100, 0);
    send(EventType::leftMouseDown, {871.9, 10});
    EXPECT_EQ(panel().inheritedEvents().size(), 1U);
    EXPECT_FALSE(overlay->isPinVisible()) << "a press outside the corner switches";
}

TEST_F(WindowOverlayTest, APressInTheCornerAloneMakesTheSizeTheOverlaysOwn) {
    show();
    send(EventType::leftMouseDown, corner);
    send(EventType::leftMouseUp, corner);
    EXPECT_EQ(panel().frame(), realFrame);
    desktop.move(windowID, {{100, 50}, {500, 400}});
    desktop.advance(Seconds(0.5));
    EXPECT_EQ(panel().frame(), realFrame);
}

TEST_F(WindowOverlayTest, OtherButtonsInTheCornerDoNotResize) {
    setForwarding(false);
    show();
    for (const auto type : {EventType::rightMouseDown, EventType::rightMouseDragged, EventType::rightMouseUp,
                            EventType::otherMouseDown, EventType::scrollWheel}) {
        send(type, corner);
    }
    EXPECT_EQ(panel().inheritedEvents().size(), 5U);
    EXPECT_EQ(panel().frame(), realFrame);
}

TEST_F(WindowOverlayTest, DuringAGripDragOtherEventsTakeTheirUsualWay) {
    setForwarding(false);
    show();
    send(EventType::leftMouseDown, corner);
    send(EventType::mouseMoved, middle);
    EXPECT_EQ(panel().inheritedEvents().size(), 1U);
    send(EventType::leftMouseUp, corner);
    EXPECT_EQ(panel().inheritedEvents().size(), 1U);
}

TEST_F(WindowOverlayTest, BehindTheCornerDoesNotResize) {
    show().sendBehind();
    send(EventType::leftMouseDown, corner);
    send(EventType::leftMouseDragged, {790, 10});
    EXPECT_EQ(panel().frame(), realFrame);
    EXPECT_EQ(panel().inheritedEvents().size(), 2U);
}

TEST_F(WindowOverlayTest, TheGripWorksFrom27OnToo) {
    setMacOS(27);
    show();
    dragGrip(-100, 0);
    EXPECT_EQ(panel().frame().size, (Size{700, 600}));
    EXPECT_TRUE(overlay->isPinVisible());
}

// Forwarding

TEST_F(WindowOverlayTest, ForwardingIsWhatIsStoredAsATruthElseOnBelow27) {
    struct Case {
        std::optional<PropertyValue> stored;
        bool below27, from27;
    };
    const Case cases[] = {
        {std::nullopt, true, false},      {true, true, true}, {false, false, false}, {std::int64_t{0}, true, false},
        {std::string("NO"), true, false},
    };
    for (const auto& [stored, below27, from27] : cases) {
        if (stored) {
            desktop.userDefaults().store("forwardEvents", *stored);
        }
        desktop.processInfo().setOperatingSystemVersion({26, 9, 9});
        EXPECT_EQ(WindowOverlay::forwardEvents(), below27);
        for (const OperatingSystemVersion version : {OperatingSystemVersion{27, 0, 0}, {27, 0, 1}, {28, 0, 0}}) {
            desktop.processInfo().setOperatingSystemVersion(version);
            EXPECT_EQ(WindowOverlay::forwardEvents(), from27);
        }
    }
}

/// Where an event goes.
enum class Way { forwarded, scrolled, swallowed, switched, inherited, inheritedAndSwitched };

struct RoutingCase {
    EventType type;
    Way below27Forwarding;
    Way below27;
    Way from27Forwarding;
    Way from27;
};

constexpr RoutingCase routingCases[] = {
    {EventType::leftMouseDown, Way::forwarded, Way::inheritedAndSwitched, Way::switched, Way::switched},
    {EventType::leftMouseUp, Way::forwarded, Way::inherited, Way::swallowed, Way::swallowed},
    {EventType::leftMouseDragged, Way::forwarded, Way::inherited, Way::swallowed, Way::swallowed},
    {EventType::rightMouseDown, Way::forwarded, Way::inherited, Way::switched, Way::switched},
    {EventType::rightMouseUp, Way::forwarded, Way::inherited, Way::swallowed, Way::swallowed},
    {EventType::rightMouseDragged, Way::forwarded, Way::inherited, Way::swallowed, Way::swallowed},
    {EventType::otherMouseDown, Way::forwarded, Way::inherited, Way::switched, Way::switched},
    {EventType::otherMouseUp, Way::forwarded, Way::inherited, Way::swallowed, Way::swallowed},
    {EventType::otherMouseDragged, Way::forwarded, Way::inherited, Way::swallowed, Way::swallowed},
    {EventType::scrollWheel, Way::forwarded, Way::inherited, Way::scrolled, Way::inherited},
    {EventType::mouseMoved, Way::inherited, Way::inherited, Way::inherited, Way::inherited},
    {EventType::mouseEntered, Way::inherited, Way::inherited, Way::inherited, Way::inherited},
    {EventType::mouseExited, Way::inherited, Way::inherited, Way::inherited, Way::inherited},
};

class WindowOverlayRouting : public WindowOverlayTest, public testing::WithParamInterface<RoutingCase> {
protected:
    /// Fails when the event takes more than one way.
    Way wayOf(EventType type) {
        const auto inheritedBefore = panel().inheritedEvents().size();
        const auto postedBefore = postedEvents();
        const bool inFrontBefore = overlay->isPinVisible();
        send(type, middle, 0, 3);
        const bool isScrolled = desktop.scheduler().waitingTasks(scrollQueue) > 0;
        const bool isInherited = panel().inheritedEvents().size() > inheritedBefore;
        const bool isForwarded = postedEvents() > postedBefore;
        const bool hasSwitched = inFrontBefore && !overlay->isPinVisible();
        EXPECT_LE(isScrolled + isForwarded + (isInherited || hasSwitched), 1);
        if (isScrolled) {
            return Way::scrolled;
        }
        if (isForwarded) {
            EXPECT_EQ(static_cast<int>(lastPosted().type), static_cast<int>(type));
            return Way::forwarded;
        }
        if (isInherited) {
            return hasSwitched ? Way::inheritedAndSwitched : Way::inherited;
        }
        return hasSwitched ? Way::switched : Way::swallowed;
    }
};

INSTANTIATE_TEST_SUITE_P(EveryEvent, WindowOverlayRouting, testing::ValuesIn(routingCases), [](const auto& instance) {
    return "OfType" + std::to_string(static_cast<int>(instance.param.type));
});

TEST_P(WindowOverlayRouting, InFrontBelow27WithForwarding) {
    setForwarding(true);
    show();
    EXPECT_EQ(wayOf(GetParam().type), GetParam().below27Forwarding);
}

TEST_P(WindowOverlayRouting, InFrontBelow27WithoutForwarding) {
    setForwarding(false);
    show();
    EXPECT_EQ(wayOf(GetParam().type), GetParam().below27);
}

TEST_P(WindowOverlayRouting, InFrontFrom27OnWithForwarding) {
    setMacOS(27);
    setForwarding(true);
    show();
    EXPECT_EQ(wayOf(GetParam().type), GetParam().from27Forwarding);
}

TEST_P(WindowOverlayRouting, InFrontFrom27OnWithoutForwarding) {
    setMacOS(27);
    setForwarding(false);
    show();
    EXPECT_EQ(wayOf(GetParam().type), GetParam().from27);
}

TEST_P(WindowOverlayRouting, BehindEverythingIsInherited) {
    show().sendBehind();
    for (const int version : {26, 27}) {
        setMacOS(version);
        for (const bool forwarding : {true, false}) {
            setForwarding(forwarding);
            EXPECT_EQ(wayOf(GetParam().type), Way::inherited);
        }
    }
}

TEST_F(WindowOverlayTest, ACommandClickSwitchesWhileForwarding) {
    setForwarding(true);
    show();
    send(EventType::leftMouseDown, middle, modifierFlagShift | modifierFlagOption | modifierFlagControl);
    send(EventType::rightMouseDown, middle, modifierFlagCommand);
    send(EventType::leftMouseUp, middle, modifierFlagCommand);
    EXPECT_TRUE(overlay->isPinVisible());
    EXPECT_EQ(postedEvents(), 3U);
    send(EventType::leftMouseDown, middle, modifierFlagShift | modifierFlagCommand);
    EXPECT_FALSE(overlay->isPinVisible());
    EXPECT_EQ(postedEvents(), 3U);
    EXPECT_EQ(desktop.model().frontmost, app);
    EXPECT_TRUE(panel().inheritedEvents().empty());
}

TEST_F(WindowOverlayTest, ALeftClickOnAPanelBehindSwitchesAndRightOnesDoNot) {
    turnLoggingOn();
    show().sendBehind();
    takeLog();
    send(EventType::rightMouseDown);
    EXPECT_EQ(switches(), 0U);
    send(EventType::leftMouseDown);
    EXPECT_EQ(switches(), 1U);
}

// Scrolling through Accessibility

TEST_F(WindowOverlayTest, From27OnAForwardedScrollGoesToTheScrollersQueue) {
    setMacOS(27);
    setForwarding(true);
    show();
    desktop.runUntilIdle();
    send(EventType::scrollWheel, middle, 0, -4);
    EXPECT_EQ(desktop.scheduler().waitingTasks(scrollQueue), 1U);
    desktop.runUntilIdle();
}

TEST_F(WindowOverlayTest, AScrollMovesTheBarUnderThePointerWhateverThePanelsSize) {
    setMacOS(27);
    setForwarding(true);
    show();
    auto& window = *desktop.accessibility().window(windowID);
    auto& left = window.addScrollArea({{100, 50}, {400, 600}}).addVerticalScrollBar(0.5);
    auto& right = window.addScrollArea({{500, 50}, {400, 600}}).addVerticalScrollBar(0.5);
    dragGrip(-400, 300);
    ASSERT_EQ(panel().frame().size, (Size{400, 300}));
    send(EventType::scrollWheel, {199, 150}, 0, 100);
    send(EventType::scrollWheel, {200, 150}, 0, -100);
    desktop.runUntilIdle();
    EXPECT_EQ(left.number("AXValue"), 0.35);
    EXPECT_EQ(right.number("AXValue"), 0.65);
}

TEST_F(WindowOverlayTest, HidingDropsTheScrollAreas) {
    setMacOS(27);
    setForwarding(true);
    show();
    desktop.accessibility().window(windowID)->addScrollArea(realBounds).addVerticalScrollBar(0.5);
    const auto walk = fmt::format("window {} setMessagingTimeout 0.25", windowID);
    const auto scrollAndCountWalks = [&] {
        send(EventType::scrollWheel, middle, 0, 1);
        const auto calls = takeAccessibilityCalls();
        return std::count(calls.begin(), calls.end(), walk);
    };
    EXPECT_EQ(scrollAndCountWalks(), 1);
    EXPECT_EQ(scrollAndCountWalks(), 0);
    overlay->hideOverlay();
    overlay->bringToFront();
    desktop.runUntilIdle();
    EXPECT_EQ(scrollAndCountWalks(), 1);
}

TEST_F(WindowOverlayTest, TheFirstFrameOfAStreamProbesTheScrollBarsWhenThatIsSwitchedOn) {
    desktop.userDefaults().store("axScrollProbe", true);
    auto& bar = desktop.accessibility().window(windowID)->addScrollArea(realBounds).addVerticalScrollBar(0.5);
    show();
    EXPECT_EQ(bar.number("AXValue"), 0.6);
    desktop.draw(windowID);
    desktop.advance(Seconds(1));
    EXPECT_EQ(bar.number("AXValue"), 0.6) << "only the first";
    overlay->sendBehind();
    overlay->bringToFront();
    desktop.advance(Seconds(1));
    EXPECT_EQ(bar.number("AXValue"), 0.7) << "once for each stream";
}

TEST_F(WindowOverlayTest, Below27AScrollDoesNotGoToTheScrollersQueue) {
    setMacOS(26);
    setForwarding(true);
    show();
    send(EventType::scrollWheel, middle, 0, -4);
    EXPECT_EQ(desktop.scheduler().waitingTasks(scrollQueue), 0U);
}

TEST_F(WindowOverlayTest, AScrollOverAWindowThatIsGoneOrAnEmptyPanelIsSwallowed) {
    setMacOS(27);
    setForwarding(true);
    show();
    window().alterDescription = [](auto& entry) { entry.bounds.reset(); };
    send(EventType::scrollWheel, middle, 0, -4);
    window().alterDescription = nullptr;
    for (const Size size : {Size{0, 600}, Size{800, 0}}) {
        desktop.move(windowID, {realBounds.origin, size});
        overlay->syncFrameWithTarget();
        send(EventType::scrollWheel, {0, 0}, 0, -4);
    }
    EXPECT_EQ(desktop.scheduler().waitingTasks(scrollQueue), 0U);
    EXPECT_TRUE(panel().inheritedEvents().empty());
}

} // namespace
} // namespace quillon
