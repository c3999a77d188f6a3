#include "OverlayTest.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace quillon {
namespace {

using simulated::CaptureOperation;
using State = simulated::SimulatedCaptureStream::State;

const CaptureError denied{7, "denied"};

class WindowOverlayCaptureTest : public OverlayTest {
protected:
    simulated::SimulatedCaptureStream& stream() { return *capture().latestStream(); }
    const StreamConfiguration& configuration() { return stream().configuration(); }
    Lines lookups() { return desktop.journal().take({"screenCapture.getShareableContent"}); }
    /// Sends the overlay behind and brings it back, which ends its stream and starts another one.
    void restart() {
        overlay->sendBehind();
        overlay->bringToFront();
    }
    void deliver(const SampleBuffer& sample, StreamOutputType type = StreamOutputType::screen) {
        stream().deliver(sample, type);
        desktop.runUntilIdle();
    }
    /// Whether the overlay has a stream that it would hand a new rate to.
    bool holdsStream() {
        desktop.journal().clear();
        overlay->applyCaptureRate();
        return !desktop.journal().take({"stream.updateConfiguration"}).empty();
    }
    std::string found() const { return "overlay: resolved SCWindow for wid=" + number + " title='Spesa'"; }
    std::string notFound(int windows) const {
        return "overlay: SCWindow NOT FOUND for wid=" + number + " (checked " + std::to_string(windows) + " windows)";
    }
    std::string starting(const std::string& rate = "30.0") const {
        return "overlay: stream starting wid=" + number + " maxFPS=" + rate;
    }
    std::string firstFrame() const { return "overlay: first frame 1600x1200px for 800.0x600.0pt @2.0x wid=" + number; }
};

using WindowOverlayCaptureEdgeCases = WindowOverlayCaptureTest;
using WindowOverlayCaptureDeathTest = WindowOverlayCaptureTest;

TEST_F(WindowOverlayCaptureEdgeCases, TheStoredRateSetsTheIntervalAndTheStartMessage) {
    turnLoggingOn();
    show();
    EXPECT_EQ(configuration().minimumFrameInterval, (MediaTime{1.0 / 30.0, 600}));
    EXPECT_TRUE(takeLog().at(2).ends_with(" maxFPS=30.0"));

    desktop.userDefaults().store("captureRate", 0.05);
    restart();
    EXPECT_EQ(configuration().minimumFrameInterval, (MediaTime{10, 600}));
    EXPECT_EQ(takeLog().at(2), starting("0.05"));
}

TEST_F(WindowOverlayCaptureEdgeCases, AWindowThatIsNotYetCapturableFadesInEmptyAndGetsItsStreamWithinASecond) {
    window().canBeShared = false;
    createReady().bringToFront();
    desktop.advance(Seconds(3.4));
    EXPECT_TRUE(panel().isVisible());
    EXPECT_EQ(layer().contents(), nullptr);
    EXPECT_EQ(capture().latestStream(), nullptr);

    window().canBeShared = true;
    desktop.advance(Seconds(1));
    EXPECT_EQ(runningStreams(), 1U);
    EXPECT_NE(layer().contents(), nullptr);
}

TEST_F(WindowOverlayCaptureEdgeCases, FramesThatAreNotCompleteLeaveThePreviousPicture) {
    show();
    const auto picture = layer().contents();
    const auto frames = overlay->framesReceived();
    for (const auto status :
         {FrameStatus::idle, FrameStatus::blank, FrameStatus::suspended, FrameStatus::started, FrameStatus::stopped}) {
        deliver(capture().makeSample(status));
        EXPECT_EQ(layer().contents(), picture) << static_cast<int>(status);
    }
    EXPECT_EQ(overlay->framesReceived(), frames);
    deliver(capture().makeSample(FrameStatus::complete));
    EXPECT_NE(layer().contents(), picture);
}

TEST_F(WindowOverlayCaptureEdgeCases, AFailedStartLeavesNoStreamAndTheNextShowingStartsANewOne) {
    turnLoggingOn();
    capture().failNext(CaptureOperation::startCapture, denied);
    show();
    EXPECT_EQ(takeLog().back(), "overlay: startCapture failed wid=" + number + ": denied");
    EXPECT_FALSE(holdsStream());
    desktop.advance(Seconds(5));
    EXPECT_EQ(runningStreams(), 0U) << "no retry by itself";

    restart();
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 1U);
    EXPECT_TRUE(holdsStream());
}

TEST_F(WindowOverlayCaptureEdgeCases, TwoOverlaysOnDifferentScreensUseTheirOwnScreensScales) {
    desktop.screens().set({{{{0, 0}, {1440, 900}}, 2}, {{{1440, 0}, {1440, 900}}, 1}});
    capture().setFilterScale(0);
    const auto otherID = desktop.openWindow(app, "Viaggio", {{1500, 50}, {400, 300}});
    WindowOverlay other(otherID, app);
    createReady().bringToFront();
    other.bringToFront();
    desktop.runUntilIdle();
    const auto streams = capture().runningStreams();
    ASSERT_EQ(streams.size(), 2U);
    EXPECT_EQ(streams[0]->configuration().width, 1600);
    EXPECT_EQ(streams[1]->configuration().width, 400);
    other.hideOverlay();
}

// Looking the window up

TEST_F(WindowOverlayCaptureTest, TheRecordIsLookedUpAtCreationWithoutAStream) {
    turnLoggingOn();
    create();
    EXPECT_EQ(lookups(), Lines{}) << "in a later turn";
    desktop.runUntilIdle();
    EXPECT_EQ(lookups(), Lines{"screenCapture.getShareableContent false false"});
    EXPECT_EQ(takeLog(), Lines{found()});
    EXPECT_EQ(capture().latestStream(), nullptr);
}

TEST_F(WindowOverlayCaptureTest, AWindowWithoutATitleIsResolvedWithAnEmptyOne) {
    turnLoggingOn();
    window().title = std::nullopt;
    createReady();
    EXPECT_EQ(takeLog(), Lines{"overlay: resolved SCWindow for wid=" + number + " title=''"});
}

TEST_F(WindowOverlayCaptureTest, TheLookupAtCreationIsTriedOnce) {
    turnLoggingOn();
    desktop.openWindow(app, "Altra", realBounds);
    window().canBeShared = false;
    createReady();
    capture().failNext(CaptureOperation::shareableContent, denied);
    WindowOverlay failing(windowID, app);
    desktop.advance(Seconds(10));
    EXPECT_EQ(lookups().size(), 2U);
    EXPECT_EQ(takeLog(), (Lines{notFound(1), "overlay: SCShareableContent error: denied"}));
}

TEST_F(WindowOverlayCaptureTest, InFrontAFailedLookupIsRepeatedEverySecondWithoutLimit) {
    turnLoggingOn();
    window().canBeShared = false;
    createReady();
    takeLog();
    overlay->bringToFront();
    desktop.runUntilIdle();
    lookups();
    desktop.advance(Seconds(0.99));
    EXPECT_EQ(lookups().size(), 0U);
    desktop.advance(Seconds(0.01));
    EXPECT_EQ(lookups().size(), 1U);
    capture().failNext(CaptureOperation::shareableContent, denied);
    desktop.advance(Seconds(1));
    EXPECT_EQ(takeLog(), (Lines{"overlay: bringToFront wid=" + number, notFound(0), notFound(0),
                                "overlay: SCShareableContent error: denied"}));
    lookups();
    desktop.advance(Seconds(100));
    EXPECT_EQ(lookups().size(), 100U);
}

TEST_F(WindowOverlayCaptureTest, BehindTheLookupIsNotRepeated) {
    window().canBeShared = false;
    createReady().bringToFront();
    desktop.runUntilIdle();
    overlay->sendBehind();
    lookups();
    desktop.advance(Seconds(5));
    EXPECT_EQ(lookups(), Lines{});
}

TEST_F(WindowOverlayCaptureTest, WithAStreamThePlannedLookupIsDropped) {
    window().canBeShared = false;
    createReady().bringToFront();
    desktop.advance(Seconds(0.5));
    window().canBeShared = true;
    restart();
    desktop.runUntilIdle();
    ASSERT_EQ(runningStreams(), 1U);
    lookups();
    desktop.advance(Seconds(5));
    EXPECT_EQ(lookups(), Lines{});
}

TEST_F(WindowOverlayCaptureTest, AReleasedOverlayLooksNoFurther) {
    window().canBeShared = false;
    createReady().bringToFront();
    desktop.runUntilIdle();
    overlay.reset();
    lookups();
    desktop.advance(Seconds(5));
    EXPECT_EQ(lookups(), Lines{});
}

TEST_F(WindowOverlayCaptureTest, AnAnswerAfterTheOverlaysEndIsDropped) {
    turnLoggingOn();
    capture().hold(CaptureOperation::shareableContent);
    createReady();
    overlay.reset();
    capture().release(CaptureOperation::shareableContent);
    EXPECT_EQ(takeLog(), Lines{});
}

TEST_F(WindowOverlayCaptureTest, AnAnswerAfterTheOverlayWentBehindStartsNoStream) {
    capture().hold(CaptureOperation::shareableContent);
    createReady().bringToFront();
    desktop.runUntilIdle();
    overlay->sendBehind();
    capture().release(CaptureOperation::shareableContent);
    desktop.runUntilIdle();
    EXPECT_EQ(capture().latestStream(), nullptr);
    overlay->bringToFront();
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 1U) << "the record is kept";
}

TEST_F(WindowOverlayCaptureTest, TheLookupAtCreationStartsNoStreamEvenWhenItIsAnsweredInFront) {
    capture().hold(CaptureOperation::shareableContent);
    createReady().bringToFront();
    desktop.runUntilIdle();
    capture().complete(CaptureOperation::shareableContent, 0);
    desktop.runUntilIdle();
    EXPECT_EQ(capture().latestStream(), nullptr);
    capture().complete(CaptureOperation::shareableContent, 0);
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 1U);
}

TEST_F(WindowOverlayCaptureTest, AnswersOutOfOrderStartOneStream) {
    capture().hold(CaptureOperation::shareableContent);
    createReady().bringToFront();
    desktop.runUntilIdle();
    ASSERT_EQ(capture().held(CaptureOperation::shareableContent), 2U);
    capture().complete(CaptureOperation::shareableContent, 1);
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 1U);
    capture().complete(CaptureOperation::shareableContent, 0);
    desktop.runUntilIdle();
    EXPECT_EQ(capture().streams().size(), 1U);
}

// Starting

TEST_F(WindowOverlayCaptureTest, AStreamGetsItsOutputBeforeItStarts) {
    turnLoggingOn();
    show().sendBehind();
    takeLog();
    desktop.journal().clear();
    overlay->bringToFront();
    EXPECT_EQ(desktop.journal().take({"screenCapture.", "stream.", "queue."}),
              (Lines{"queue.async local.quillon.floating.log", "screenCapture.makeStream 1600x1200",
                     "stream.addStreamOutput", "stream.startCapture", "queue.async local.quillon.floating.log"}));
    desktop.runUntilIdle();
    EXPECT_EQ(stream().windowID(), windowID);
    EXPECT_EQ(takeLog(), (Lines{"overlay: bringToFront wid=" + number, starting(), firstFrame()}));
}

TEST_F(WindowOverlayCaptureTest, AStreamIsConfiguredForTheOverlaysPixelsAndTheBestPicture) {
    show();
    EXPECT_EQ(configuration().width, 1600);
    EXPECT_EQ(configuration().height, 1200);
    EXPECT_EQ(configuration().captureResolution, CaptureResolution::best);
    EXPECT_TRUE(configuration().scalesToFit);
    EXPECT_FALSE(configuration().showsCursor);
    EXPECT_EQ(configuration().pixelFormat, pixelFormat32BGRA);
    EXPECT_EQ(configuration().queueDepth, 5);
}

TEST_F(WindowOverlayCaptureTest, PixelsAreTruncatedAndAtLeastOne) {
    struct Case {
        Size points;
        double scale;
        std::int64_t width, height;
    };
    for (const auto& [points, scale, width, height] : {
             Case{{800.7, 600.3}, 1.5, 1201, 900},
             Case{{333.4, 333.3}, 3, 1000, 999},
             Case{{0.4, 0}, 2, 1, 1},
             Case{{-50, 10}, 2, 1, 20},
         }) {
        capture().setFilterScale(scale);
        desktop.move(windowID, {{0, 0}, points});
        WindowOverlay sized(windowID, app);
        desktop.runUntilIdle();
        sized.bringToFront();
        desktop.runUntilIdle();
        EXPECT_EQ(configuration().width, width);
        EXPECT_EQ(configuration().height, height);
        sized.hideOverlay();
    }
}

TEST_F(WindowOverlayCaptureTest, RatesAreRaisedToOneFrameInTenSeconds) {
    struct Case {
        PropertyValue stored;
        double interval;
        std::string shown;
    };
    turnLoggingOn();
    show();
    takeLog();
    for (const auto& [stored, interval, shown] : {
             Case{60.0, 1.0 / 60, "60.0"},
             Case{std::int64_t{15}, 1.0 / 15, "15.0"},
             Case{std::string("24"), 1.0 / 24, "24.0"},
             Case{0.1, 10, "0.1"},
             Case{0.001, 10, "0.001"},
             Case{0.0, 1.0 / 30, "30.0"},
             Case{-5.0, 1.0 / 30, "30.0"},
             Case{std::nan(""), 1.0 / 30, "30.0"},
         }) {
        desktop.userDefaults().store("captureRate", stored);
        restart();
        EXPECT_EQ(configuration().minimumFrameInterval, (MediaTime{interval, 600})) << shown;
        const auto log = takeLog();
        EXPECT_EQ(std::count(log.begin(), log.end(), starting(shown)), 1) << shown;
    }
}

TEST_F(WindowOverlayCaptureDeathTest, ASizeThatNoIntegerHoldsStopsTheProcess) {
    for (const Size size : {Size{std::numeric_limits<double>::infinity(), 600}, Size{1e300, 600}, Size{800, 1e300}}) {
        desktop.move(windowID, {{0, 0}, size});
        window().alterDescription = [size](auto& entry) {
            // The height leaves a finite place for the panel.
            entry.bounds->y = -size.height;
        };
        EXPECT_DEATH(
            {
                WindowOverlay huge(windowID, app);
                desktop.runUntilIdle();
                huge.bringToFront();
                desktop.runUntilIdle();
            },
            "programming error: an overlay of .* points at scale 2 has no size in pixels");
    }
}

TEST_F(WindowOverlayCaptureTest, TheFiltersScaleCountsFromOneOn) {
    turnLoggingOn();
    for (const auto& [filterScale, width] :
         {std::pair{1.0, 800}, {1.25, 1000}, {3.0, 2400}, {0.99, 1600}, {0.0, 1600}}) {
        capture().setFilterScale(filterScale);
        WindowOverlay scaled(windowID, app);
        desktop.runUntilIdle();
        scaled.bringToFront();
        desktop.runUntilIdle();
        EXPECT_EQ(configuration().width, width) << filterScale;
        scaled.hideOverlay();
    }
}

TEST_F(WindowOverlayCaptureTest, WithoutAFiltersScaleThatOfThePanelsScreenThenOfTheFirstUnderItThenOfTheMainOne) {
    capture().setFilterScale(0);
    show();
    const auto widthOn = [&](std::vector<Screen> screens, std::optional<Screen> mainScreen, bool panelKnows) {
        desktop.panels().setScreensKnown(panelKnows);
        desktop.screens().set(std::move(screens), mainScreen);
        restart();
        desktop.runUntilIdle();
        return configuration().width;
    };
    const Screen empty{{{0, 0}, {0, 900}}, 9};
    const Screen under{{{0, 0}, {1440, 900}}, 3};
    const Screen alsoUnder{{{0, 0}, {1440, 900}}, 4};
    const Screen aside{{{5000, 0}, {1440, 900}}, 5};
    EXPECT_EQ(widthOn({under}, aside, true), 2400);
    EXPECT_EQ(widthOn({empty, under, alsoUnder}, aside, false), 2400);
    EXPECT_EQ(widthOn({empty, alsoUnder, under}, aside, false), 3200);
    EXPECT_EQ(widthOn({empty}, aside, false), 4000);
}

TEST_F(WindowOverlayCaptureTest, WithoutAnyScreenTheScaleIsTwo) {
    turnLoggingOn();
    capture().setFilterScale(0);
    show();
    takeLog();
    // Without a screen, the window has to be gone too: nothing can be placed any more.
    desktop.screens().set({});
    desktop.windowServer().setFailing(true);
    restart();
    EXPECT_EQ(configuration().width, 1600);
    EXPECT_EQ(takeLog().back(), firstFrame());
}

TEST_F(WindowOverlayCaptureTest, AnOutputThatCannotBeAddedLeavesNoStream) {
    turnLoggingOn();
    capture().failNextAddStreamOutput(denied);
    show();
    EXPECT_EQ(takeLog().back(), "overlay: addStreamOutput failed wid=" + number + ": denied");
    EXPECT_TRUE(capture().streams().empty());
    EXPECT_FALSE(holdsStream());
    restart();
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 1U);
}

TEST_F(WindowOverlayCaptureTest, ALateFailureOfAnOldStreamDoesNotClearANewerOne) {
    turnLoggingOn();
    capture().hold(CaptureOperation::startCapture);
    show();
    restart();
    ASSERT_EQ(capture().held(CaptureOperation::startCapture), 2U);
    capture().complete(CaptureOperation::startCapture, 1);
    desktop.runUntilIdle();
    takeLog();
    capture().complete(CaptureOperation::startCapture, 0, denied);
    EXPECT_EQ(takeLog(), Lines{"overlay: startCapture failed wid=" + number + ": denied"});
    EXPECT_TRUE(holdsStream());
}

TEST_F(WindowOverlayCaptureTest, ALateFailureWhileNoStreamIsHeldChangesNothing) {
    capture().hold(CaptureOperation::startCapture);
    show().sendBehind();
    capture().complete(CaptureOperation::startCapture, 0, denied);
    desktop.runUntilIdle();
    EXPECT_FALSE(holdsStream());
}

TEST_F(WindowOverlayCaptureTest, CompletionsAfterTheOverlaysEndOnlyLog) {
    turnLoggingOn();
    for (const auto operation : {CaptureOperation::startCapture, CaptureOperation::stopCapture}) {
        capture().hold(operation);
    }
    show().hideOverlay();
    overlay.reset();
    takeLog();
    capture().complete(CaptureOperation::startCapture, 0, denied);
    capture().complete(CaptureOperation::stopCapture, 0, denied);
    EXPECT_EQ(takeLog(),
              (Lines{"overlay: startCapture failed wid=" + number + ": denied", "overlay: stopCapture error: denied"}));
}

// Frames

TEST_F(WindowOverlayCaptureTest, ACompleteFrameBecomesThePictureAndIsHeldUntilTheNext) {
    show();
    const auto first = layer().contents();
    ASSERT_NE(first, nullptr);
    EXPECT_TRUE(first->belongsToFrame);
    EXPECT_TRUE(first->isValid());
    const auto frames = overlay->framesReceived();

    desktop.draw(windowID);
    desktop.advance(Seconds(0.1));
    EXPECT_EQ(overlay->framesReceived(), frames + 1);
    EXPECT_NE(layer().contents(), first);
    EXPECT_TRUE(layer().contents()->isValid());
    EXPECT_FALSE(first->isValid()) << "the earlier frame is let go of";
}

TEST_F(WindowOverlayCaptureTest, FramesArriveOnTheOverlaysQueueAndAreShownOnTheMainThread) {
    show();
    const auto before = layer().contents();
    stream().deliver(capture().makeSample(FrameStatus::complete));
    EXPECT_EQ(desktop.scheduler().waitingTasks("local.quillon.floating.frames"), 1U);
    EXPECT_EQ(layer().contents(), before);
    desktop.runUntilIdle();
    EXPECT_NE(layer().contents(), before);
}

TEST_F(WindowOverlayCaptureTest, SamplesWithoutAPictureOrAStatusAreDropped) {
    show();
    const auto picture = layer().contents();
    const auto frames = overlay->framesReceived();
    const auto complete = capture().makeSample(FrameStatus::complete);

    auto sample = complete;
    sample.attachments.reset();
    deliver(sample);
    sample.attachments.emplace();
    deliver(sample);
    sample.attachments->push_back({.status = std::nullopt});
    deliver(sample);
    sample.attachments = {{{.status = 99}, {.status = 0}}};
    deliver(sample);
    sample = complete;
    sample.imageBuffer = nullptr;
    deliver(sample);
    const auto withoutSurface = capture().makePixelBuffer(16, 16);
    withoutSurface->picture = nullptr;
    sample.imageBuffer = withoutSurface;
    deliver(sample);
    deliver(complete, StreamOutputType::audio);

    EXPECT_EQ(layer().contents(), picture);
    EXPECT_EQ(overlay->framesReceived(), frames);
}

TEST_F(WindowOverlayCaptureTest, TheFirstFrameOfEveryStartIsLoggedAndNoOther) {
    turnLoggingOn();
    show();
    EXPECT_EQ(takeLog().back(), firstFrame());
    desktop.draw(windowID);
    desktop.advance(Seconds(0.1));
    EXPECT_EQ(takeLog(), Lines{});
    restart();
    EXPECT_EQ(takeLog().back(), firstFrame());
}

TEST_F(WindowOverlayCaptureTest, TheFirstFramesMessageTellsTheFramesPixelsTheOverlaysPointsAndTheScale) {
    turnLoggingOn();
    capture().setFilterScale(1.5);
    desktop.move(windowID, {{0, 0}, {333.5, 200}});
    show();
    EXPECT_EQ(takeLog().back(), "overlay: first frame 500x300px for 333.5x200.0pt @1.5x wid=" + number);
}

TEST_F(WindowOverlayCaptureTest, AFrameThatIsUnderWayWhenTheStreamStopsIsStillShown) {
    show();
    const auto before = layer().contents();
    stream().deliver(capture().makeSample(FrameStatus::complete));
    overlay->sendBehind();
    desktop.runUntilIdle();
    EXPECT_NE(layer().contents(), before);
}

TEST_F(WindowOverlayCaptureTest, AFrameAfterTheOverlaysEndIsDropped) {
    show();
    stream().deliver(capture().makeSample(FrameStatus::complete));
    overlay.reset();
    desktop.runUntilIdle();
    EXPECT_EQ(desktop.views().living(), 0U);
}

// Stopping

TEST_F(WindowOverlayCaptureTest, StoppingKeepsTheLastPicture) {
    show();
    const auto picture = layer().contents();
    overlay->sendBehind();
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 0U);
    EXPECT_EQ(layer().contents(), picture);
    EXPECT_TRUE(picture->isValid());
    EXPECT_FALSE(holdsStream());
}

TEST_F(WindowOverlayCaptureTest, AFailedStopIsLogged) {
    turnLoggingOn();
    show();
    takeLog();
    capture().failNext(CaptureOperation::stopCapture, denied);
    overlay->sendBehind();
    EXPECT_EQ(takeLog(), (Lines{"overlay: sendBehind wid=" + number, "overlay: stopCapture error: denied"}));
}

TEST_F(WindowOverlayCaptureTest, ASuccessfulStopAndUpdateAreNotLogged) {
    turnLoggingOn();
    show();
    takeLog();
    overlay->applyCaptureRate();
    overlay->hideOverlay();
    EXPECT_EQ(takeLog(), Lines{"overlay: hideOverlay wid=" + number});
}

// The capture rate

TEST_F(WindowOverlayCaptureTest, ANewRateIsHandedToTheRunningStreamAtItsScale) {
    capture().setFilterScale(1.5);
    show();
    desktop.userDefaults().store("captureRate", 5.0);
    overlay->applyCaptureRate();
    desktop.runUntilIdle();
    EXPECT_EQ(configuration().minimumFrameInterval, (MediaTime{0.2, 600}));
    EXPECT_EQ(configuration().width, 1200);
    EXPECT_EQ(capture().streams().size(), 1U);
}

TEST_F(WindowOverlayCaptureTest, WithoutARunningStreamANewRateIsSkipped) {
    createReady();
    EXPECT_FALSE(holdsStream());
}

TEST_F(WindowOverlayCaptureTest, AFailedUpdateIsLoggedWhateverItsReason) {
    turnLoggingOn();
    show();
    takeLog();
    capture().failNext(CaptureOperation::updateConfiguration, denied);
    overlay->applyCaptureRate();
    EXPECT_EQ(takeLog(), Lines{"overlay: updateConfiguration (rate) error: denied"});
    capture().failNext(CaptureOperation::updateConfiguration, denied);
    desktop.move(windowID, {realBounds.origin, {400, 300}});
    desktop.advance(Seconds(0.5));
    EXPECT_EQ(takeLog(), Lines{"overlay: updateConfiguration (rate) error: denied"});
}

// A stream that the system stops

TEST_F(WindowOverlayCaptureTest, AStreamThatTheSystemStopsIsStartedAnew) {
    turnLoggingOn();
    show();
    takeLog();
    stream().stopBySystem(denied);
    EXPECT_EQ(takeLog(),
              (Lines{"overlay: stream stopped wid=" + number + ": denied", found(), starting(), firstFrame()}));
    EXPECT_EQ(runningStreams(), 1U);
}

TEST_F(WindowOverlayCaptureTest, AStreamThatTheSystemStopsBehindIsNotStartedAnew) {
    turnLoggingOn();
    show();
    const auto old = capture().latestStream();
    overlay->sendBehind();
    takeLog();
    lookups();
    old->stopBySystem(denied);
    EXPECT_EQ(takeLog(), Lines{"overlay: stream stopped wid=" + number + ": denied"});
    EXPECT_EQ(lookups(), Lines{});
}

TEST_F(WindowOverlayCaptureTest, AStopThatTheOverlayLearnsOfBehindClearsTheStream) {
    show();
    stream().stopBySystem(denied);
    // The news is under way when the overlay goes behind, which asks the ended stream to stop.
    overlay->sendBehind();
    desktop.runUntilIdle();
    EXPECT_FALSE(holdsStream());
    overlay->bringToFront();
    desktop.runUntilIdle();
    EXPECT_EQ(runningStreams(), 1U);
}

TEST_F(WindowOverlayCaptureTest, ALateStopOfAnOldStreamDoesNotClearANewerOne) {
    show();
    const auto old = capture().latestStream();
    restart();
    desktop.runUntilIdle();
    const auto current = capture().latestStream();
    ASSERT_NE(old, current);
    old->stopBySystem(denied);
    desktop.runUntilIdle();
    EXPECT_TRUE(holdsStream());
    EXPECT_EQ(current->state(), State::running);
    EXPECT_EQ(capture().runningStreams().size(), 1U);
}

TEST_F(WindowOverlayCaptureTest, AWindowThatIsGoneIsLookedForUntilItComesBack) {
    turnLoggingOn();
    show();
    takeLog();
    const auto closed = window();
    desktop.close(windowID);
    desktop.advance(Seconds(2));
    EXPECT_EQ(takeLog(), (Lines{"overlay: stream stopped wid=" + number + ": the window is gone", notFound(0),
                                notFound(0), notFound(0)}));
    desktop.model().windows.push_back(closed);
    desktop.advance(Seconds(1));
    EXPECT_EQ(runningStreams(), 1U);
}

TEST_F(WindowOverlayCaptureTest, ASystemStopAfterTheOverlaysEndOnlyLogs) {
    turnLoggingOn();
    show();
    const auto old = capture().latestStream();
    overlay.reset();
    takeLog();
    old->stopBySystem(denied);
    EXPECT_EQ(takeLog(), Lines{"overlay: stream stopped wid=" + number + ": denied"});
}

} // namespace
} // namespace quillon
