#include "CaptureTest.h"

#include "Platform/ScreenCapture.h"

#include <mutex>

namespace quillon::contract {
namespace {

constexpr DisplayRect here{{100, 120}, {400, 300}};

using Outcome = std::optional<CaptureError>;

class ScreenCaptureContract : public CaptureTest {
protected:
    /// A stream of the window whose frames are counted.
    void makeStream(const std::shared_ptr<CaptureWindow>& window, const StreamConfiguration& settings) {
        stream = capture().makeStream(capture().makeFilter(window), settings,
                                      [this](const auto& stoppedStream, const CaptureError&) {
                                          const std::lock_guard lock(mutex);
                                          stoppedIsOurs = stoppedStream == stream;
                                          ++stops;
                                      });
        const auto error = stream->addStreamOutput(
            [this](const SampleBuffer& sample, StreamOutputType type) {
                const std::lock_guard lock(mutex);
                if (type == StreamOutputType::screen && sample.attachments && !sample.attachments->empty() &&
                    sample.attachments->front().status == static_cast<std::int64_t>(FrameStatus::complete)) {
                    ++frames;
                    latest = sample.imageBuffer;
                }
            },
            StreamOutputType::screen, queue);
        ASSERT_FALSE(error);
    }

    bool start() {
        started.clear();
        stream->startCapture([this](const Outcome& error) { started(error); });
        EXPECT_TRUE(eventually([&] { return started.get().has_value(); }));
        return !started.get().value();
    }

    bool stop() {
        Answer<Outcome> answer;
        stream->stopCapture([&](const Outcome& error) { answer(error); });
        EXPECT_FALSE(answer.get());
        EXPECT_TRUE(eventually([&] { return answer.get().has_value(); }));
        return !answer.get().value();
    }

    int frameCount() {
        const std::lock_guard lock(mutex);
        return frames;
    }
    std::shared_ptr<PixelBuffer> latestFrame() {
        const std::lock_guard lock(mutex);
        return latest;
    }
    int stopCount() {
        const std::lock_guard lock(mutex);
        return stops;
    }

    std::shared_ptr<SerialQueue> queue = desktop().scheduler().makeSerialQueue("contract.frames");
    std::shared_ptr<CaptureStream> stream;
    Answer<Outcome> started;

private:
    std::mutex mutex;
    int frames = 0;
    int stops = 0;
    std::shared_ptr<PixelBuffer> latest;

protected:
    bool stoppedIsOurs = false;
};

TEST_F(ScreenCaptureContract, AnOpenWindowCanBeSharedUnderItsNumberAndTitle) {
    const auto window = world->openWindow("Primo titolo", here);
    std::shared_ptr<CaptureWindow> found;
    ASSERT_TRUE(eventually([&] { return (found = record(window)) != nullptr; }));
    EXPECT_EQ(found->title(), "Primo titolo");
}

TEST_F(ScreenCaptureContract, AFilterKnowsItsScale) {
    const auto window = world->openWindow("Primo", here);
    EXPECT_GE(capture().makeFilter(record(window))->pointPixelScale(), 1);
}

TEST_F(ScreenCaptureContract, AStreamDeliversACompleteFrameOfTheConfiguredSizeAtOnce) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    ASSERT_TRUE(eventually([&] { return frameCount() > 0; }));
    EXPECT_EQ(latestFrame()->width(), 400U);
    EXPECT_EQ(latestFrame()->height(), 300U);
    EXPECT_NE(latestFrame()->surface(), nullptr);
    EXPECT_TRUE(stop());
}

TEST_F(ScreenCaptureContract, AFrameFollowsEveryChangeAndNoneAStillPicture) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    ASSERT_TRUE(eventually([&] { return frameCount() > 0; }));
    pass(quietTime);
    const int before = frameCount();
    EXPECT_TRUE(stays([&] { return frameCount() == before; }));
    world->draw(window);
    EXPECT_TRUE(eventually([&] { return frameCount() > before; }));
    EXPECT_TRUE(stop());
}

TEST_F(ScreenCaptureContract, FramesKeepTheirMinimumInterval) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.5));
    ASSERT_TRUE(start());
    ASSERT_TRUE(eventually([&] { return frameCount() > 0; }));
    const int before = frameCount();
    for (int change = 0; change < 20; ++change) {
        world->draw(window);
        pass(Seconds(0.05));
    }
    EXPECT_GE(frameCount() - before, 1);
    EXPECT_LE(frameCount() - before, 4);
    EXPECT_TRUE(stop());
}

TEST_F(ScreenCaptureContract, AStoppedStreamDeliversNothingMore) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    ASSERT_TRUE(eventually([&] { return frameCount() > 0; }));
    ASSERT_TRUE(stop());
    const int before = frameCount();
    world->draw(window);
    EXPECT_TRUE(stays([&] { return frameCount() == before; }));
    EXPECT_EQ(stopCount(), 0);
}

TEST_F(ScreenCaptureContract, AStreamMayBeLetGoOfRightAfterItsStopWasAskedFor) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    Answer<Outcome> answer;
    stream->stopCapture([&](const Outcome& error) { answer(error); });
    stream.reset();
    EXPECT_TRUE(eventually([&] { return answer.get().has_value(); }));
}

TEST_F(ScreenCaptureContract, ANewConfigurationChangesTheFramesSize) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    Answer<Outcome> answer;
    stream->updateConfiguration(configuration(200, 150, 0.02), [&](const Outcome& error) { answer(error); });
    EXPECT_FALSE(answer.get());
    ASSERT_TRUE(eventually([&] { return answer.get().has_value(); }));
    EXPECT_FALSE(answer.get().value());
    world->draw(window);
    EXPECT_TRUE(eventually([&] { return latestFrame() && latestFrame()->width() == 200; }));
    EXPECT_EQ(latestFrame()->height(), 150U);
    EXPECT_TRUE(stop());
}

TEST_F(ScreenCaptureContract, AWindowThatClosesStopsItsStream) {
    const auto window = world->openWindow("Primo", here);
    makeStream(record(window), configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    world->close(window);
    EXPECT_TRUE(eventually([&] { return stopCount() == 1; }));
    EXPECT_TRUE(stoppedIsOurs);
    EXPECT_TRUE(stays([&] { return stopCount() == 1; }));
}

TEST_F(ScreenCaptureContract, AStreamOfAClosedWindowDoesNotStart) {
    const auto window = world->openWindow("Primo", here);
    const auto closed = record(window);
    world->close(window);
    ASSERT_TRUE(eventually([&] { return record(window) == nullptr; }));
    makeStream(closed, configuration(400, 300, 0.02));
    EXPECT_FALSE(start());
}

TEST_F(ScreenCaptureContract, ASecondStreamOfTheSameWindowWorksWhileTheFirstStops) {
    const auto window = world->openWindow("Primo", here);
    const auto shared = record(window);
    makeStream(shared, configuration(400, 300, 0.02));
    ASSERT_TRUE(start());
    ASSERT_TRUE(eventually([&] { return frameCount() > 0; }));
    const auto first = stream;
    first->stopCapture([](const Outcome&) {});
    const int before = frameCount();
    makeStream(shared, configuration(400, 300, 0.02));
    EXPECT_TRUE(start());
    EXPECT_TRUE(eventually([&] { return frameCount() > before; }));
    EXPECT_TRUE(stop());
}

TEST_F(ScreenCaptureContract, AScreenshotOfAWindowIsASurface) {
    const auto window = world->openWindow("Primo", here);
    const auto result = screenshot(capture().makeFilter(record(window)));
    const auto* surface = std::get_if<std::shared_ptr<Surface>>(&result);
    ASSERT_NE(surface, nullptr);
    EXPECT_NE(*surface, nullptr);
}

TEST_F(ScreenCaptureContract, AScreenshotOfAClosedWindowIsAnError) {
    const auto window = world->openWindow("Primo", here);
    const auto filter = capture().makeFilter(record(window));
    world->close(window);
    ASSERT_TRUE(eventually([&] { return record(window) == nullptr; }));
    EXPECT_TRUE(std::holds_alternative<CaptureError>(screenshot(filter)));
}

} // namespace
} // namespace quillon::contract
