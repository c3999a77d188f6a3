// The simulated desktop itself: that it does what a desktop does, and that it stops a test that misuses it.

#include "UnitTest.h"

#include <limits>

namespace quillon {
namespace {

using simulated::CaptureOperation;
using simulated::Desktop;

constexpr DisplayRect here{{100, 50}, {800, 600}};
constexpr ScreenRect place{{200, 300}, {400, 300}};

struct Delegate : PanelDelegate, ViewDelegate {
    void sendEvent(const PanelEvent& event) override { onEvent(event); }
    void mouseDown(const PanelEvent& event) override { presses.push_back(event); }

    std::function<void(const PanelEvent&)> onEvent = [](const PanelEvent&) {};
    std::vector<PanelEvent> presses;
};

class SimulatedDesktopTest : public UnitTest {
protected:
    /// Runs the task on a serial queue.
    void onQueue(Task task) {
        const auto queue = desktop.scheduler().makeSerialQueue("worker");
        queue->async(std::move(task));
        desktop.runUntilIdle();
    }
    std::shared_ptr<CaptureWindow> record() {
        std::shared_ptr<CaptureWindow> result;
        desktop.screenCapture().getShareableContent(
            false, false, [&](const auto& content) { result = std::get<ShareableContent>(content).windows.front(); });
        desktop.runUntilIdle();
        return result;
    }
    std::shared_ptr<CaptureStream> makeStream() {
        auto& capture = desktop.screenCapture();
        return capture.makeStream(capture.makeFilter(record()), configuration, [](const auto&, const auto&) {});
    }
    std::shared_ptr<CaptureStream> makeStreamWithOutput() {
        auto stream = makeStream();
        EXPECT_FALSE(stream->addStreamOutput([this](const auto&, auto) { ++samples; }, StreamOutputType::screen,
                                             desktop.scheduler().makeSerialQueue("frames")));
        return stream;
    }
    std::unique_ptr<Panel> makePanel() { return desktop.panels().makePanel(place, delegate); }

    static void ignore(const std::optional<CaptureError>&) {}

    Delegate delegate;
    StreamConfiguration configuration;
    int samples = 0;
    ProcessID notes = desktop.launch("Note");
    WindowID window = desktop.openWindow(notes, "Spesa", here);
};

using SimulatedDesktopDeathTest = SimulatedDesktopTest;

// Time and queues

TEST_F(SimulatedDesktopTest, TasksRunInTheOrderOfTheirSubmissionAcrossQueues) {
    std::vector<std::string> order;
    const auto queue = desktop.scheduler().makeSerialQueue("worker");
    const auto note = [&] { order.push_back(desktop.scheduler().currentQueue()); };
    desktop.scheduler().mainAsync(note);
    queue->async(note);
    desktop.scheduler().mainAsync(note);
    EXPECT_TRUE(order.empty());
    desktop.runUntilIdle();
    EXPECT_EQ(order, (Lines{"main", "worker", "main"}));
}

TEST_F(SimulatedDesktopTest, TimersRunAtTheirMoments) {
    std::vector<double> moments;
    const auto note = [&] { moments.push_back(Seconds(desktop.scheduler().now()).count()); };
    auto token = desktop.scheduler().scheduleRepeatingTimer(Seconds(0.5), note);
    desktop.scheduler().mainAfter(Seconds(0.7), note);
    desktop.advance(Seconds(1.2));
    EXPECT_EQ(moments, (std::vector{0.5, 0.7, 1.0}));
    token.reset();
    desktop.advance(Seconds(5));
    EXPECT_EQ(moments.size(), 3U);
}

TEST_F(SimulatedDesktopTest, RunningUntilAConditionStopsAtItOrAtTheBound) {
    bool done = false;
    desktop.scheduler().mainAfter(Seconds(1), [&] { done = true; });
    EXPECT_TRUE(desktop.runUntil([&] { return done; }, Seconds(10)));
    EXPECT_NEAR(Seconds(desktop.scheduler().now()).count(), 1, 0.011);
    EXPECT_FALSE(desktop.runUntil([] { return false; }, Seconds(1)));
}

TEST_F(SimulatedDesktopTest, ASleepingQueueWaitsWhileEverythingElseGoesOn) {
    std::vector<std::string> order;
    const auto note = [&](const std::string& what) {
        order.push_back(fmt::format("{} {:.1f} {}", what, Seconds(desktop.scheduler().now()).count(),
                                    desktop.scheduler().currentQueue()));
    };
    const auto worker = desktop.scheduler().makeSerialQueue("worker");
    const auto other = desktop.scheduler().makeSerialQueue("other");
    const auto timer = desktop.scheduler().scheduleRepeatingTimer(Seconds(0.1), [&] { note("tick"); });
    worker->async([&] {
        note("before");
        worker->async([&] { note("later"); });
        other->async([&] { note("meanwhile"); });
        desktop.scheduler().sleep(Seconds(0.2));
        note("after");
    });
    desktop.runUntilIdle();
    EXPECT_EQ(order, (Lines{"before 0.0 worker", "meanwhile 0.0 other", "tick 0.1 main", "tick 0.2 main",
                            "after 0.2 worker", "later 0.2 worker"}));
}

TEST_F(SimulatedDesktopTest, TicksThatABlockedMainThreadMissesAreNotMadeUpFor) {
    int ticks = 0;
    const auto timer = desktop.scheduler().scheduleRepeatingTimer(Seconds(0.1), [&] { ++ticks; });
    desktop.scheduler().block(Seconds(0.95));
    EXPECT_EQ(ticks, 0);
    desktop.advance(Seconds(0.1));
    EXPECT_EQ(ticks, 2) << "the late one and the one at its moment";
}

TEST_F(SimulatedDesktopDeathTest, OnlyTasksOfAQueueSleepAndOneQueueAtATime) {
    EXPECT_DEATH(desktop.scheduler().sleep(Seconds(1)), "Scheduler::sleep on the main thread");
    const auto other = desktop.scheduler().makeSerialQueue("other");
    const auto sleep = [&] { desktop.scheduler().sleep(Seconds(1)); };
    other->async(sleep);
    EXPECT_DEATH(onQueue(sleep), "the queue worker has to wait while the queue other waits");
    desktop.runUntilIdle();
}

TEST_F(SimulatedDesktopDeathTest, VirtualTimeIsNotAdvancedFromATask) {
    desktop.scheduler().mainAsync([&] { desktop.advance(Seconds(1)); });
    EXPECT_DEATH(desktop.runUntilIdle(), "misuse: advance from within a task");
}

TEST_F(SimulatedDesktopDeathTest, ATaskThatResubmitsItselfForEverIsStopped) {
    std::function<void()> again = [&] { desktop.scheduler().mainAsync(again); };
    again();
    EXPECT_DEATH(desktop.runUntilIdle(), "the queue main never becomes idle");
}

TEST_F(SimulatedDesktopDeathTest, ImpossibleDurationsAndMissingTasks) {
    auto& scheduler = desktop.scheduler();
    EXPECT_DEATH(scheduler.mainAfter(Seconds(-1), [] {}), "a delayed task with a duration of -1 s");
    EXPECT_DEATH(static_cast<void>(scheduler.scheduleRepeatingTimer(Seconds(0), [] {})), "an interval of 0 s");
    EXPECT_DEATH(scheduler.mainAsync(nullptr), "Scheduler::mainAsync without a task");
    EXPECT_DEATH(static_cast<void>(scheduler.makeSerialQueue("main")), "with the main queue's label");
}

TEST_F(SimulatedDesktopDeathTest, ATimerEndsOnTheMainThread) {
    auto token = desktop.scheduler().scheduleRepeatingTimer(Seconds(1), [] {});
    EXPECT_DEATH(onQueue([&] { token.reset(); }), "ending a repeating timer on the queue worker: main thread only");
}

TEST_F(SimulatedDesktopDeathTest, ADatePatternHasKnownFieldsOnly) {
    const auto formatter = desktop.clock().makeDateFormatter("yyyy QQQ");
    EXPECT_DEATH(static_cast<void>(formatter->string(desktop.clock().now())), "unknown field \"QQQ\"");
}

// The main thread

TEST_F(SimulatedDesktopDeathTest, PortsOfTheMainThreadStopATaskOfAQueue) {
    const auto panel = makePanel();
    const auto layer = desktop.views().makeLayer();
    const auto stream = makeStreamWithOutput();
    const auto titledWindow = desktop.titledWindows().makeWindow("", Column());
    const std::vector<std::pair<Task, std::string>> calls{
        {[&] { static_cast<void>(desktop.workspace().runningApplication(notes)); }, "Workspace::runningApplication"},
        {[&] { desktop.workspace().activateApplication(notes); }, "Workspace::activateApplication"},
        {[&] { static_cast<void>(desktop.screens().screens()); }, "Screens::screens"},
        {[&] { desktop.accessibility().promptForTrust(); }, "Accessibility::promptForTrust"},
        {[&] { static_cast<void>(desktop.syntheticEvents().makeEventSource(EventSourceState::combinedSession)); },
         "SyntheticEvents::makeEventSource"},
        {[&] { static_cast<void>(desktop.eventAccess().preflightPostEventAccess()); },
         "EventAccess::preflightPostEventAccess"},
        {[&] { desktop.notificationCenter().post("name"); }, "NotificationCenter::post"},
        {[&] { static_cast<void>(desktop.scheduler().scheduleRepeatingTimer(Seconds(1), [] {})); },
         "Scheduler::scheduleRepeatingTimer"},
        {[&] { panel->setLevel(3); }, "Panel::setLevel"},
        {[&] { static_cast<void>(panel->frame()); }, "Panel::frame"},
        {[&] { static_cast<void>(makePanel()); }, "Panels::makePanel"},
        {[&] { static_cast<void>(desktop.views().makeLayer()); }, "Views::makeLayer"},
        {[&] { layer->setContents(nullptr); }, "Layer::setContents"},
        {[&] { stream->startCapture(ignore); }, "CaptureStream::startCapture"},
        {[&] { desktop.screenCapture().getShareableContent(false, false, {}); }, "ScreenCapture::getShareableContent"},
        {[&] { static_cast<void>(desktop.eventTaps().create({}, {}, {}, 0, nullptr)); }, "EventTaps::create"},
        {[&] { desktop.sharedApplication()->setActivationPolicy(ActivationPolicy::regular); },
         "Application::setActivationPolicy"},
        {[&] { desktop.sharedApplication()->activateIgnoringOtherApps(); }, "Application::activateIgnoringOtherApps"},
        {[&] { desktop.workspace().openURL("https://example.org"); }, "Workspace::openURL"},
        {[&] { static_cast<void>(desktop.screens().mouseLocation()); }, "Screens::mouseLocation"},
        {[&] { desktop.eventAccess().requestPostEventAccess(); }, "EventAccess::requestPostEventAccess"},
        {[&] { static_cast<void>(desktop.screenCapture().preflightAccess()); }, "ScreenCapture::preflightAccess"},
        {[&] { desktop.screenCapture().requestAccess(); }, "ScreenCapture::requestAccess"},
        {[&] { static_cast<void>(desktop.userDefaults().observe("key", [] {})); }, "UserDefaults::observe"},
        {[&] { static_cast<void>(desktop.loginItem().isEnabled()); }, "LoginItem::isEnabled"},
        {[&] { desktop.loginItem().registerItem(); }, "LoginItem::registerItem"},
        {[&] { static_cast<void>(desktop.keyMonitors().addLocalMonitor({})); }, "KeyMonitors::addLocalMonitor"},
        {[&] { static_cast<void>(desktop.distributedNotificationCenter().addObserver("name", [] {})); },
         "DistributedNotificationCenter::addObserver"},
        {[&] { static_cast<void>(desktop.titledWindows().makeWindow("", Column())); }, "TitledWindows::makeWindow"},
        {[&] { static_cast<void>(desktop.titledWindows().keyWindow()); }, "TitledWindows::keyWindow"},
        {[&] { static_cast<void>(titledWindow->frame()); }, "TitledWindow::frame"},
        {[&] { titledWindow->makeKeyAndOrderFront(); }, "TitledWindow::makeKeyAndOrderFront"},
        {[&] { titledWindow->setContent(Column()); }, "TitledWindow::setContent"},
    };
    for (const auto& [call, name] : calls) {
        EXPECT_DEATH(onQueue(call), "misuse: " + name + " on the queue worker: main thread only");
    }
}

TEST_F(SimulatedDesktopTest, PortsOfAnyThreadServeATaskOfAQueue) {
    onQueue([&] {
        desktop.userDefaults().set("key", true);
        static_cast<void>(desktop.clock().now());
        static_cast<void>(desktop.processInfo().processIdentifier());
        static_cast<void>(desktop.windowServer().copyWindowInfo(windowListExcludeDesktopElements, nullWindowID));
        static_cast<void>(desktop.workspace().frontmostApplication());
        static_cast<void>(desktop.accessibility().isProcessTrusted());
        static_cast<void>(desktop.accessibility().applicationElement(notes)->copyAttributeValue("AXWindows"));
        desktop.scheduler().mainAsync([&] { desktop.notificationCenter().post("hop"); });
    });
    EXPECT_EQ(desktop.journal().take({"notificationCenter.post"}), Lines{"notificationCenter.post hop"});
}

TEST_F(SimulatedDesktopDeathTest, CaptureCompletionsAreNotOnTheMainThread) {
    desktop.screenCapture().getShareableContent(false, false,
                                                [&](const auto&) { static_cast<void>(desktop.screens().screens()); });
    EXPECT_DEATH(desktop.runUntilIdle(), "Screens::screens on the queue screen capture");
}

// Panels, views and layers

TEST_F(SimulatedDesktopTest, PanelsStackByLevelAndThenByOrder) {
    const auto back = makePanel();
    const auto front = makePanel();
    const auto floating = makePanel();
    floating->setLevel(floatingWindowLevel);
    for (auto* panel : {floating.get(), back.get(), front.get()}) {
        panel->orderFront();
    }
    const auto& all = desktop.panels().all();
    EXPECT_EQ(desktop.panels().stack(), (std::vector{all[2], all[1], all[0]}));
    front->orderBack();
    EXPECT_EQ(desktop.panels().stack(), (std::vector{all[2], all[0], all[1]}));
    floating->orderOut();
    EXPECT_EQ(desktop.panels().stack(), (std::vector{all[0], all[1]}));
}

TEST_F(SimulatedDesktopTest, AClickGoesToThePanelInFrontElseToTheWindow) {
    const auto panel = makePanel();
    std::vector<EventType> events;
    delegate.onEvent = [&](const PanelEvent& event) {
        events.push_back(event.type);
        panel->sendEventToSuper(event);
    };
    panel->orderFront();
    desktop.click({250, 350});
    EXPECT_EQ(events, (std::vector{EventType::leftMouseDown, EventType::leftMouseUp}));
    ASSERT_EQ(delegate.presses.size(), 1U);
    EXPECT_EQ(delegate.presses.front().locationInWindow, (WindowPoint{50, 50}));
    EXPECT_FALSE(desktop.workspace().frontmostApplication());

    panel->setLevel(normalWindowLevel - 1);
    desktop.click({250, 350});
    EXPECT_EQ(events.size(), 2U) << "the window covers the panel";
    EXPECT_EQ(desktop.workspace().frontmostApplication()->processIdentifier, notes);
    desktop.click({1400, 10});
}

TEST_F(SimulatedDesktopTest, ASubviewThatFollowsItsContainerGrowsWithIt) {
    const auto flexible = desktop.views().makeView({{10, 10}, {50, 50}}, delegate);
    const auto fixed = desktop.views().makeView({{10, 10}, {50, 50}}, delegate);
    const auto container = desktop.views().makeView({{0, 0}, {100, 100}}, delegate);
    flexible->setResizesWithContainer();
    container->addSubview(*flexible);
    container->addSubview(*fixed);
    container->setFrame({{5, 5}, {120, 90}});
    EXPECT_EQ(flexible->bounds().size, (Size{70, 40}));
    EXPECT_EQ(fixed->bounds().size, (Size{50, 50}));
}

TEST_F(SimulatedDesktopDeathTest, AViewOutlivesThePanelThatShowsIt) {
    auto view = desktop.views().makeView({}, delegate);
    const auto panel = makePanel();
    panel->setContentView(*view);
    EXPECT_DEATH(view.reset(), "destroying a view, which a panel still shows");
}

TEST_F(SimulatedDesktopDeathTest, ASubviewAndALayerOutliveTheViewThatShowsThem) {
    auto layer = desktop.views().makeLayer();
    auto child = desktop.views().makeView({}, delegate);
    const auto view = desktop.views().makeView({}, delegate);
    view->addSublayer(*layer);
    view->addSubview(*child);
    EXPECT_DEATH(child.reset(), "destroying a view, which a view still shows");
    EXPECT_DEATH(layer.reset(), "a layer was destroyed before the view that shows it");
    EXPECT_DEATH(view->addSubview(*child), "View::addSubview, which a view still shows");
    EXPECT_DEATH(view->addSublayer(*layer), "a layer that a view shows already");
}

TEST_F(SimulatedDesktopDeathTest, HandlesOfAnotherDesktopOrDeadOnesAreRefused) {
    Desktop other;
    const auto foreign = other.views().makeView({}, delegate);
    const auto foreignLayer = other.views().makeLayer();
    const auto view = desktop.views().makeView({}, delegate);
    const auto panel = makePanel();
    EXPECT_DEATH(panel->setContentView(*foreign), "Panel::setContentView with a view that is not a living one");
    EXPECT_DEATH(view->addSubview(*foreign), "View::addSubview with a view that is not a living one");
    EXPECT_DEATH(view->addSublayer(*foreignLayer), "View::addSublayer with a layer that is not a living one");
}

TEST_F(SimulatedDesktopDeathTest, APictureIsShownOnlyWhileItsFrameIsHeld) {
    const auto layer = desktop.views().makeLayer();
    const auto surface = desktop.screenCapture().makePixelBuffer(16, 16)->surface();
    EXPECT_DEATH(layer->setContents(surface), "the picture of a frame that was let go of");
    EXPECT_DEATH(layer->setContents(nullptr), "without a picture of this desktop");
}

TEST_F(SimulatedDesktopDeathTest, TheInheritedDispatchIsForTheEventBeingDispatched) {
    const auto panel = makePanel();
    panel->orderFront();
    EXPECT_DEATH(panel->sendEventToSuper(PanelEvent()), "another event than the one being dispatched");
    delegate.onEvent = [&](const PanelEvent& event) {
        const auto copy = event;
        panel->sendEventToSuper(copy);
    };
    EXPECT_DEATH(desktop.panels().all().front()->inject(PanelEvent()), "another event than the one being dispatched");
}

TEST_F(SimulatedDesktopDeathTest, APanelIsNotDestroyedByTheEventThatItDispatches) {
    auto panel = makePanel();
    panel->orderFront();
    delegate.onEvent = [&](const PanelEvent&) { panel.reset(); };
    EXPECT_DEATH(desktop.panels().all().front()->inject(PanelEvent()), "destroyed while it dispatched an event");
}

TEST_F(SimulatedDesktopDeathTest, InputNeedsAPanelOnScreenThatIsNotBusy) {
    const auto panel = makePanel();
    auto& simulatedPanel = *desktop.panels().all().front();
    EXPECT_DEATH(simulatedPanel.inject(PanelEvent()), "input on a panel that is not on screen");
    panel->orderFront();
    delegate.onEvent = [&](const PanelEvent& event) { simulatedPanel.inject(event); };
    EXPECT_DEATH(simulatedPanel.inject(PanelEvent()), "input while the panel dispatches an event");
}

TEST_F(SimulatedDesktopDeathTest, FramesAndOpacitiesThatCannotBe) {
    const auto panel = makePanel();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DEATH(panel->setFrame({{0, 0}, {nan, 1}}, false), "Panel::setFrame with a frame that is no rectangle");
    EXPECT_DEATH(panel->setAlphaValue(1.5), "Panel::setAlphaValue with the opacity 1.5");
    EXPECT_DEATH(panel->animateAlphaValue(-1, Seconds(1)), "Panel::animateAlphaValue with the opacity -1");
}

TEST_F(SimulatedDesktopDeathTest, NothingOutlivesTheDesktop) {
    const auto leavePanel = [&] {
        auto shortLived = std::make_unique<Desktop>();
        const auto panel = shortLived->panels().makePanel(place, delegate);
        shortLived.reset();
    };
    EXPECT_DEATH(leavePanel(), "1 panels and 0 views or layers outlive the desktop");
    const auto leaveFile = [] {
        Desktop shortLived;
        EXPECT_GE(shortLived.fileSystem().openForAppending("/Users/anna/Library/file", 0600), 0);
    };
    EXPECT_DEATH(leaveFile(), "1 files were not closed");
}

// Screen capture

TEST_F(SimulatedDesktopTest, AStreamDeliversAPictureAtOnceAndForEveryChangeAtItsInterval) {
    configuration.minimumFrameInterval = {0.5, 600};
    const auto stream = makeStreamWithOutput();
    stream->startCapture(ignore);
    desktop.runUntilIdle();
    EXPECT_EQ(samples, 1);
    for (int change = 0; change < 10; ++change) {
        desktop.draw(window);
        desktop.advance(Seconds(0.1));
    }
    EXPECT_EQ(samples, 3);
    stream->stopCapture(ignore);
    desktop.draw(window);
    desktop.advance(Seconds(5));
    EXPECT_EQ(samples, 3);
}

TEST_F(SimulatedDesktopTest, AStreamOfAClosedWindowDoesNotStart) {
    const auto stream = makeStreamWithOutput();
    desktop.close(window);
    std::optional<CaptureError> failure;
    stream->startCapture([&](const auto& error) { failure = error; });
    EXPECT_FALSE(failure) << "never inside the call";
    desktop.runUntilIdle();
    EXPECT_TRUE(failure);
}

TEST_F(SimulatedDesktopTest, HeldCompletionsArriveInTheOrderThatTheTestChooses) {
    auto& capture = desktop.screenCapture();
    capture.hold(CaptureOperation::shareableContent);
    std::vector<int> order;
    for (const int request : {0, 1, 2}) {
        capture.getShareableContent(false, false, [&order, request](const auto&) { order.push_back(request); });
    }
    desktop.runUntilIdle();
    EXPECT_TRUE(order.empty());
    capture.complete(CaptureOperation::shareableContent, 2);
    desktop.runUntilIdle();
    capture.release(CaptureOperation::shareableContent);
    desktop.runUntilIdle();
    EXPECT_EQ(order, (std::vector{2, 0, 1}));
}

TEST_F(SimulatedDesktopDeathTest, StreamsKeepTheOrderOfTheirCalls) {
    const auto bare = makeStream();
    EXPECT_DEATH(bare->startCapture(ignore), "CaptureStream::startCapture without an output");
    EXPECT_DEATH(bare->stopCapture(ignore), "CaptureStream::stopCapture of a stream that does not run");
    EXPECT_DEATH(bare->updateConfiguration(configuration, ignore), "CaptureStream::updateConfiguration of a stream");
    const auto stream = makeStreamWithOutput();
    stream->startCapture(ignore);
    EXPECT_DEATH(stream->startCapture(ignore), "of a stream that was started already");
    desktop.runUntilIdle();
    stream->stopCapture(ignore);
    EXPECT_DEATH(stream->stopCapture(ignore), "CaptureStream::stopCapture of a stream that does not run");
    EXPECT_DEATH(stream->startCapture(ignore), "of a stream that was started already");
    EXPECT_DEATH(stream->updateConfiguration(configuration, ignore), "of a stream that does not run");
}

TEST_F(SimulatedDesktopDeathTest, ImpossibleCaptureArguments) {
    auto& capture = desktop.screenCapture();
    EXPECT_DEATH(static_cast<void>(capture.makeFilter(nullptr)), "ScreenCapture::makeFilter without a window");
    EXPECT_DEATH(capture.captureImage(nullptr, configuration, {}), "ScreenCapture::captureImage without a filter");
    configuration.width = 0;
    EXPECT_DEATH(makeStream(), "ScreenCapture::makeStream with a configuration of 0x1 pixels");
    configuration.width = 1;
    configuration.queueDepth = 9;
    EXPECT_DEATH(makeStream(), "ScreenCapture::makeStream with a configuration of 1x1 pixels, 9 frames");
    EXPECT_DEATH(capture.complete(CaptureOperation::screenshot), "completion 0 of 0 that are held");
}

// Event taps

constexpr KeyPress controlP{35, eventFlagMaskControl};

class EventTapTest : public SimulatedDesktopTest {
protected:
    /// A tap that counts what it sees and swallows it.
    std::unique_ptr<EventTap> makeTap(EventTapOptions options = EventTapOptions::defaultTap,
                                      EventTapPlacement placement = EventTapPlacement::tailAppend,
                                      EventMask mask = eventMaskBit(SystemEventType::keyDown)) {
        return desktop.eventTaps().create(EventTapLocation::session, placement, options, mask,
                                          [this](SystemEventType, const SystemEvent&) {
                                              ++seen;
                                              onEvent();
                                              return TappedEvent::swallowed;
                                          });
    }
    std::unique_ptr<EventTap> makeRunningTap(EventTapOptions options = EventTapOptions::defaultTap) {
        auto tap = makeTap(options);
        tap->addToMainRunLoop();
        tap->setEnabled(true);
        return tap;
    }
    TappedEvent press() { return desktop.pressKey(controlP.keyCode, controlP.modifiers); }

    int seen = 0;
    std::function<void()> onEvent = [] {};
};

using EventTapDeathTest = EventTapTest;

TEST_F(EventTapTest, ATapSeesKeysWhileItIsInTheRunLoopEnabledAndTrusted) {
    const auto tap = makeTap();
    EXPECT_EQ(press(), TappedEvent::passes);
    tap->setEnabled(true);
    EXPECT_EQ(press(), TappedEvent::passes);
    tap->addToMainRunLoop();
    EXPECT_EQ(press(), TappedEvent::swallowed);
    EXPECT_EQ(seen, 1);
    desktop.accessibility().setTrusted(false);
    EXPECT_EQ(press(), TappedEvent::passes);
    desktop.accessibility().setTrusted(true);
    tap->setEnabled(false);
    EXPECT_EQ(press(), TappedEvent::passes);
    EXPECT_EQ(seen, 1);
}

TEST_F(EventTapTest, NoTapIsMadeWithoutTrustOrWhenTheSystemRefuses) {
    desktop.eventTaps().refuse(true);
    EXPECT_EQ(makeTap(), nullptr);
    desktop.eventTaps().refuse(false);
    desktop.accessibility().setTrusted(false);
    EXPECT_EQ(makeTap(), nullptr);
}

TEST_F(EventTapTest, ATapSeesOnlyTheKindsOfItsMaskAndAListenerSwallowsNothing) {
    const auto deaf = makeTap(EventTapOptions::defaultTap, EventTapPlacement::tailAppend, EventMask{1} << 11);
    deaf->addToMainRunLoop();
    deaf->setEnabled(true);
    EXPECT_EQ(press(), TappedEvent::passes);
    EXPECT_EQ(seen, 0);
    const auto listener = makeRunningTap(EventTapOptions::listenOnly);
    EXPECT_EQ(press(), TappedEvent::passes);
    EXPECT_EQ(seen, 1);
}

TEST_F(EventTapTest, TheFirstTapThatSwallowsAPressIsTheLastToSeeIt) {
    const auto tap = makeRunningTap();
    const auto first = makeTap(EventTapOptions::defaultTap, EventTapPlacement::headInsert);
    first->addToMainRunLoop();
    first->setEnabled(true);
    press();
    EXPECT_EQ(seen, 1);
    first->setEnabled(false);
    press();
    EXPECT_EQ(seen, 2);
}

TEST_F(EventTapTest, WhereOnlyTheExpectedPressIsShownNoOtherArrives) {
    desktop.eventTaps().showOnlyWhatIsExpected();
    const auto tap = makeRunningTap();
    EXPECT_EQ(press(), TappedEvent::passes);
    tap->expect(controlP);
    EXPECT_EQ(press(), TappedEvent::swallowed);
    EXPECT_EQ(desktop.pressKey(controlP.keyCode, eventFlagMaskShift), TappedEvent::passes);
    tap->expect(std::nullopt);
    EXPECT_EQ(press(), TappedEvent::passes);
}

TEST_F(EventTapTest, ChangesOfTheReachAreAnnouncedLaterAndOnlyToLivingTaps) {
    int changes = 0;
    auto tap = makeRunningTap();
    tap->setOnReachChange([&] { ++changes; });
    desktop.eventTaps().setReach(controlP, KeyPressReach::heldByAnotherProgram);
    EXPECT_EQ(tap->reach(), KeyPressReach::reaches) << "nothing is expected yet";
    tap->expect(controlP);
    EXPECT_EQ(tap->reach(), KeyPressReach::heldByAnotherProgram);
    EXPECT_EQ(changes, 0);
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(press(), TappedEvent::passes);

    desktop.eventTaps().setReach(controlP, KeyPressReach::heldByAnotherProgram);
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 1);
    desktop.eventTaps().setReach(controlP, KeyPressReach::reaches);
    tap.reset();
    desktop.runUntilIdle();
    EXPECT_EQ(changes, 1);
}

TEST_F(EventTapTest, ATapThatNobodyListensToAnnouncesNothing) {
    const auto tap = makeRunningTap();
    desktop.eventTaps().setReach(controlP, KeyPressReach::missingOnKeyboard);
    tap->expect(controlP);
    desktop.runUntilIdle();
    EXPECT_EQ(tap->reach(), KeyPressReach::missingOnKeyboard);
}

TEST_F(EventTapDeathTest, TapsAreUsedInTheirOrderAndWithValuesThatCanBe) {
    const auto tap = makeTap();
    auto& simulatedTap = *desktop.eventTaps().all().front();
    EXPECT_DEATH(static_cast<void>(desktop.eventTaps().create({}, {}, {}, 0, nullptr)), "create without a callback");
    EXPECT_DEATH(tap->expect(KeyPress{35, 0x10000}), "EventTap::expect with the modifiers 0x10000");
    EXPECT_DEATH(simulatedTap.disableBySystem(SystemEventType::tapDisabledByTimeout),
                 "an event tap that is off is switched off");
    tap->addToMainRunLoop();
    EXPECT_DEATH(tap->addToMainRunLoop(), "EventTap::addToMainRunLoop for the second time");
    EXPECT_DEATH(simulatedTap.disableBySystem(SystemEventType::keyDown), "a kind of event that does not say so");
    desktop.eventTaps().setReach(controlP, KeyPressReach::missingOnKeyboard);
    EXPECT_DEATH(press(), "pressing keyCode=35 modifiers=0x40000, which the keyboard does not have");
}

TEST_F(EventTapDeathTest, ACallbackIsNotInterruptedAndDestroysNoTap) {
    auto tap = makeRunningTap();
    onEvent = [&] { press(); };
    EXPECT_DEATH(press(), "an event during the callback of an event tap");
    onEvent = [&] { tap.reset(); };
    EXPECT_DEATH(press(), "an event tap was destroyed by the callback of one");
}

TEST_F(EventTapDeathTest, ATapDoesNotOutliveTheDesktop) {
    const auto leaveTap = [] {
        auto shortLived = std::make_unique<Desktop>();
        const auto tap = shortLived->eventTaps().create(
            {}, {}, {}, 0, [](SystemEventType, const SystemEvent&) { return TappedEvent::passes; });
        shortLived.reset();
    };
    EXPECT_DEATH(leaveTap(), "1 event taps outlive the desktop");
}

// Files, settings, windows, the application

TEST_F(SimulatedDesktopDeathTest, FilesAreUsedWhileTheyAreOpen) {
    auto& files = desktop.fileSystem();
    const int descriptor = files.openForAppending("/Users/anna/Library/file", 0600);
    files.close(descriptor);
    EXPECT_DEATH(files.write(descriptor, "text"), "FileSystem::write to the descriptor 3, which is not open");
    EXPECT_DEATH(files.close(descriptor), "FileSystem::close of the descriptor 3, which is not open");
    EXPECT_DEATH(files.createDirectory("relative", 0700), "\"relative\", which is not absolute");
}

TEST_F(SimulatedDesktopDeathTest, TheWindowListHasKnownOptionsThatFitTogether) {
    auto& server = desktop.windowServer();
    EXPECT_DEATH(static_cast<void>(server.copyWindowInfo(4, nullWindowID)), "with the unknown options 4");
    EXPECT_DEATH(static_cast<void>(server.copyWindowInfo(windowListIncludingWindow, nullWindowID)), "options 8");
    EXPECT_DEATH(static_cast<void>(server.copyWindowInfo(windowListOnScreenOnly, window)), "options 1");
}

TEST_F(SimulatedDesktopDeathTest, ScenariosAreAboutWhatExists) {
    EXPECT_DEATH(desktop.activate(99), "no application with the process identifier 99 runs");
    EXPECT_DEATH(desktop.close(99), "no window 99 is open");
}

TEST_F(SimulatedDesktopDeathTest, SettingsHaveKeys) {
    EXPECT_DEATH(desktop.userDefaults().set("", true), "UserDefaults::set with an empty key");
}

TEST_F(SimulatedDesktopDeathTest, AnObservationOfASettingEndsOnTheMainThread) {
    auto token = desktop.userDefaults().observe("key", [] {});
    EXPECT_DEATH(onQueue([&] { token.reset(); }), "ending an observation of a setting on the queue worker");
}

TEST_F(SimulatedDesktopTest, ChangesOfASettingAreToldWhoeverMakesThem) {
    auto& defaults = desktop.userDefaults();
    int changes = 0;
    auto token = defaults.observe("key", [&] { ++changes; });
    defaults.set("key", true);
    EXPECT_EQ(changes, 1) << "before the call returns";
    defaults.set("key", true);
    defaults.set("other", true);
    defaults.remove("absent");
    EXPECT_EQ(changes, 1);
    defaults.store("key", std::int64_t{1});
    EXPECT_EQ(changes, 2) << "by hand, and of another type";
    defaults.remove("key");
    EXPECT_EQ(changes, 3);
    onQueue([&] {
        defaults.set("key", false);
        EXPECT_EQ(changes, 3) << "not on another thread";
    });
    EXPECT_EQ(changes, 4);
    token.reset();
    defaults.set("key", true);
    EXPECT_EQ(changes, 4);
    EXPECT_EQ(desktop.journal().take({"userDefaults.observe", "userDefaults.endObserving"}),
              (Lines{"userDefaults.observe key", "userDefaults.endObserving key"}));
}

TEST_F(SimulatedDesktopTest, AnObserverOfASettingMaySetIt) {
    auto& defaults = desktop.userDefaults();
    const auto token = defaults.observe("key", [&] { defaults.set("key", false); });
    defaults.set("key", true);
    EXPECT_EQ(defaults.object("key"), std::optional<PropertyValue>(false));
}

TEST_F(SimulatedDesktopTest, TheProgramIsToldWhenItBecomesActive) {
    int activations = 0;
    const auto token =
        desktop.notificationCenter().addObserver(applicationDidBecomeActiveNotification, [&] { ++activations; });
    auto& application = *desktop.sharedApplication();
    application.activateIgnoringOtherApps();
    EXPECT_TRUE(desktop.workspace().isProgramActive());
    EXPECT_EQ(activations, 0) << "announcements wait on the main queue";
    application.activateIgnoringOtherApps();
    desktop.runUntilIdle();
    EXPECT_EQ(activations, 1) << "it was active already";
    desktop.activate(notes);
    EXPECT_FALSE(desktop.workspace().isProgramActive());
    desktop.workspace().activateApplication(Desktop::ownPID());
    desktop.runUntilIdle();
    EXPECT_EQ(activations, 2);
}

TEST_F(SimulatedDesktopTest, RequestsForAccessAreGrantedWhenTheUserDoesSo) {
    auto& capture = desktop.screenCapture();
    EXPECT_TRUE(capture.requestAccess());
    capture.setAccess(false);
    EXPECT_FALSE(capture.requestAccess());
    capture.grantAccessOnRequest();
    EXPECT_FALSE(capture.preflightAccess());
    EXPECT_TRUE(capture.requestAccess());
    EXPECT_TRUE(capture.preflightAccess());
    desktop.eventAccess().set(false, true);
    EXPECT_FALSE(desktop.eventAccess().requestPostEventAccess());
    desktop.eventAccess().grantPostOnRequest();
    EXPECT_FALSE(desktop.eventAccess().preflightPostEventAccess());
    EXPECT_TRUE(desktop.eventAccess().requestPostEventAccess());
    EXPECT_TRUE(desktop.eventAccess().preflightPostEventAccess());
}

TEST_F(SimulatedDesktopTest, TheLoginItemChangesUnlessTheSystemRefuses) {
    auto& item = desktop.loginItem();
    EXPECT_FALSE(item.isEnabled());
    EXPECT_TRUE(item.registerItem());
    EXPECT_TRUE(item.isEnabled());
    item.refuse(true);
    EXPECT_FALSE(item.unregisterItem());
    EXPECT_TRUE(item.isEnabled());
    item.refuse(false);
    EXPECT_TRUE(item.unregisterItem());
    EXPECT_FALSE(item.isEnabled());
    item.setEnabled(true);
    EXPECT_TRUE(item.isEnabled());
}

TEST_F(SimulatedDesktopTest, DistributedNotificationsComeFromOtherProcesses) {
    int received = 0;
    auto token = desktop.distributedNotificationCenter().addObserver("name", [&] { ++received; });
    desktop.distributedNotificationCenter().postFromOutside("name");
    desktop.distributedNotificationCenter().postFromOutside("other");
    desktop.notificationCenter().post("name");
    EXPECT_EQ(received, 0);
    desktop.runUntilIdle();
    EXPECT_EQ(received, 1);
    desktop.distributedNotificationCenter().postFromOutside("name");
    token.reset();
    desktop.runUntilIdle();
    EXPECT_EQ(received, 1);
}

TEST_F(SimulatedDesktopTest, OnAScreenWithoutAVisibleFrameNothingTakesRoomAway) {
    EXPECT_EQ(desktop.screens().mainScreen()->visibleFrame, (ScreenRect{{0, 0}, {1440, 875}}));
    const Screen bare{{{0, 0}, {800, 600}}, 1};
    const Screen withBar{{{800, 0}, {800, 600}}, 1, {{800, 0}, {800, 570}}};
    desktop.screens().set({bare, withBar}, withBar);
    EXPECT_EQ(desktop.screens().screens().front().visibleFrame, bare.frame);
    EXPECT_EQ(desktop.screens().screens().back().visibleFrame, withBar.visibleFrame);
    EXPECT_EQ(desktop.screens().mainScreen()->visibleFrame, withBar.visibleFrame);
    desktop.screens().setMouseLocation({900, 10});
    EXPECT_EQ(desktop.screens().mouseLocation(), (ScreenPoint{900, 10}));
}

TEST_F(SimulatedDesktopDeathTest, TheApplicationRunsOnceWithADelegateAndEnds) {
    auto& application = *desktop.sharedApplication();
    EXPECT_DEATH(application.run(), "Application::run without a living delegate");
    struct ApplicationRecorder : ApplicationDelegate {
        void applicationDidFinishLaunching() override {}
        void applicationWillTerminate() override {}
        bool applicationShouldHandleReopen(bool) override { return true; }
        ScriptReply performScriptCommand(const ScriptCommand&) override { return {}; }
    };
    const auto applicationDelegate = std::make_shared<ApplicationRecorder>();
    application.setDelegate(applicationDelegate);
    EXPECT_DEATH(application.run(), "Application::run would never end");
    application.whileRunning([&] { application.terminate(); });
    application.run();
    EXPECT_DEATH(application.run(), "Application::run for the second time");
}

TEST_F(SimulatedDesktopTest, AccessibilityNeedsTrustAndALivingApplication) {
    const auto element = desktop.accessibility().applicationElement(notes);
    EXPECT_EQ(element->copyAttributeValue("AXFocusedWindow").error, AccessibilityError::success);
    EXPECT_EQ(element->copyAttributeValue("AXUnknown").error, AccessibilityError::attributeUnsupported);
    const auto focused = desktop.accessibility().window(window);
    EXPECT_EQ(focused->copyAttributeValue("AXUnknown").error, AccessibilityError::attributeUnsupported);
    desktop.accessibility().setTrusted(false);
    focused->setAttribute("AXTitle", std::string("gesetzt"));
    EXPECT_EQ(element->copyAttributeValue("AXFocusedWindow").error, AccessibilityError::apiDisabled);
    EXPECT_EQ(focused->copyAttributeValue("AXTitle").error, AccessibilityError::apiDisabled);
    desktop.accessibility().setTrusted(true);
    desktop.terminate(notes);
    EXPECT_EQ(element->copyAttributeValue("AXFocusedWindow").error, AccessibilityError::invalidUIElement);
    EXPECT_EQ(focused->copyAttributeValue("AXSize").error, AccessibilityError::invalidUIElement);
    const auto windowless = desktop.launch("Musica");
    EXPECT_EQ(desktop.accessibility().applicationElement(windowless)->copyAttributeValue("AXFocusedWindow").error,
              AccessibilityError::noValue);
}

TEST_F(SimulatedDesktopTest, SwitchingAnnouncesOncePerChangeOfTheApplication) {
    std::vector<ProcessID> activated;
    const auto token = desktop.workspace().observeDidActivateApplication(
        [&](const auto& application) { activated.push_back(application->processIdentifier); });
    const auto mail = desktop.launch("Mail");
    const auto second = desktop.openWindow(notes, "Viaggio", here);
    desktop.activateWindow(window);
    desktop.activateWindow(second);
    desktop.activate(mail);
    EXPECT_TRUE(activated.empty()) << "announcements wait on the main queue";
    desktop.runUntilIdle();
    EXPECT_EQ(activated, (std::vector{notes, mail}));
}

TEST_F(SimulatedDesktopTest, RaisingStaysWithinTheApplicationAndActivatingComesToTheFront) {
    const auto second = desktop.openWindow(notes, "Viaggio", here);
    const auto mail = desktop.launch("Mail");
    const auto inbox = desktop.openWindow(mail, "Posta", here);
    const auto order = [&] {
        std::vector<WindowID> numbers;
        for (const auto& entry : desktop.model().windows) {
            numbers.push_back(entry.windowID);
        }
        return numbers;
    };
    EXPECT_EQ(desktop.accessibility().window(window)->performAction("AXRaise"), AccessibilityError::success);
    EXPECT_EQ(order(), (std::vector{inbox, window, second}));
    desktop.workspace().activateApplication(notes);
    EXPECT_EQ(order(), (std::vector{window, inbox, second})) << "only the window in front of the others comes along";
    EXPECT_EQ(desktop.workspace().frontmostApplication()->processIdentifier, notes);
    desktop.workspace().activateApplication(9999);
    EXPECT_EQ(desktop.workspace().frontmostApplication()->processIdentifier, notes);
    EXPECT_EQ(desktop.accessibility().window(window)->performAction("AXShow"),
              AccessibilityError::attributeUnsupported);
}

TEST_F(SimulatedDesktopTest, AnAttributeThatIsNotAnsweredCostsTheMessagingTimeout) {
    const auto element = desktop.accessibility().window(window);
    element->stopAnswering("AXTitle");
    EXPECT_EQ(element->copyAttributeValue("AXTitle").error, AccessibilityError::cannotComplete);
    EXPECT_EQ(desktop.scheduler().now(), std::chrono::seconds(6));
    element->setMessagingTimeout(Seconds(0.25));
    EXPECT_EQ(element->isAttributeSettable("AXTitle").error, AccessibilityError::cannotComplete);
    EXPECT_EQ(element->setAttributeValue("AXTitle", std::string("x")), AccessibilityError::cannotComplete);
    EXPECT_EQ(desktop.scheduler().now(), std::chrono::milliseconds(6500));
    EXPECT_EQ(element->copyAttributeValue("AXRole").error, AccessibilityError::success);
    EXPECT_EQ(desktop.scheduler().now(), std::chrono::milliseconds(6500));
}

TEST_F(SimulatedDesktopTest, WhatATestAddsToAWindowGoesWithIt) {
    auto& area = desktop.accessibility().window(window)->addScrollArea(here);
    auto& bar = area.addVerticalScrollBar(0.5);
    EXPECT_EQ(bar.setAttributeValue("AXValue", 0.75), AccessibilityError::success);
    EXPECT_EQ(bar.number("AXValue"), 0.75);
    EXPECT_EQ(bar.setAttributeValue("AXMaxValue", 2.0), AccessibilityError::attributeUnsupported);
    EXPECT_EQ(area.performAction("AXRaise"), AccessibilityError::attributeUnsupported);
    EXPECT_EQ(
        desktop.journal().take({"accessibility."}).front(),
        fmt::format("accessibility.setAttributeValue window {} > AXScrollArea 0 > AXScrollBar 0 AXValue 0.75", window));
    area.disappear();
    EXPECT_EQ(bar.copyAttributeValue("AXValue").error, AccessibilityError::invalidUIElement);
    desktop.close(window);
    EXPECT_EQ(area.isAttributeSettable("AXValue").error, AccessibilityError::invalidUIElement);
    EXPECT_EQ(bar.setAttributeValue("AXValue", 1.0), AccessibilityError::invalidUIElement);
}

TEST_F(SimulatedDesktopDeathTest, AccessibilityAndSyntheticEventsAreStrict) {
    const auto element = desktop.accessibility().window(window);
    EXPECT_DEATH(element->setMessagingTimeout(Seconds(0)), "setMessagingTimeout of 0 s");
    EXPECT_DEATH(static_cast<void>(element->number("AXValue")), "AXValue of window .* is no number");
    auto& events = desktop.syntheticEvents();
    const EventSource foreign;
    EXPECT_DEATH(static_cast<void>(events.makeScrollWheelEvent(&foreign, ScrollEventUnit::line, 1, 0)),
                 "an event was made with a source that is gone");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_DEATH(
        static_cast<void>(events.makeMouseEvent(nullptr, SystemEventType::leftMouseDown, {nan, 0}, MouseButton::left)),
        "SyntheticEvents::makeMouseEvent with a location that is no point");
    const auto event = events.makeScrollWheelEvent(nullptr, ScrollEventUnit::line, 1, 0);
    EXPECT_DEATH(event->setLocation({0, nan}), "SyntheticEvent::setLocation with a location that is no point");
    EXPECT_DEATH(onQueue([&] { event->postToPid(notes); }), "SyntheticEvent::postToPid on the queue worker");
}

} // namespace
} // namespace quillon
