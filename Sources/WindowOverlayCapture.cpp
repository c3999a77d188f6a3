// The live capture of WindowOverlay: finding the window's capture record, the stream's life and its frames.

#include "AXScroller.h"
#include "Defaults.h"
#include "DiagnosticLog.h"
#include "Platform/Platform.h"
#include "Platform/Screens.h"
#include "ProgrammingError.h"
#include "Text.h"
#include "WindowOverlay.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillon {

namespace {

constexpr Seconds resolveRetryDelay{1.0};
/// Frames per second when the user has not chosen.
constexpr double defaultCaptureRate = 30.0;
/// The slowest rate that is captured at: one frame every ten seconds.
constexpr double slowestCaptureRate = 0.1;
constexpr std::int32_t frameIntervalTimescale = 600;
constexpr int streamQueueDepth = 5;
/// Pixels per point when there is no screen to ask.
constexpr double fallbackScale = 2.0;

std::int64_t pixels(double points, double pixelScale) {
    const double product = std::trunc(points * pixelScale);
    // 2^63, the first whole number that a 64-bit integer cannot hold.
    if (!(std::abs(product) < 0x1p63)) {
        programmingError(fmt::format("an overlay of {} points at scale {} has no size in pixels", points, pixelScale));
    }
    return std::max<std::int64_t>(static_cast<std::int64_t>(product), 1);
}

/// The surface of a sample that carries a complete picture, else null.
std::shared_ptr<Surface> completePicture(const SampleBuffer& sample) {
    if (!sample.attachments || sample.attachments->empty() ||
        sample.attachments->front().status != static_cast<std::int64_t>(FrameStatus::complete) || !sample.imageBuffer) {
        return nullptr;
    }
    return sample.imageBuffer->surface();
}

/// A completion that does nothing but log an error after the text.
CaptureStream::Completion loggingErrors(std::string text) {
    return [text = std::move(text)](const std::optional<CaptureError>& error) {
        if (error) {
            wplog([&] { return text + error->description; });
        }
    };
}

} // namespace

double WindowOverlay::captureRate() {
    const double stored = Defaults::doubleForKey(Defaults::captureRate);
    return stored > 0 ? stored : defaultCaptureRate;
}

void WindowOverlay::resolveSCWindow(bool thenStartStream) {
    auto arrived = weakly([thenStartStream](WindowOverlay& self, const auto& result) {
        self.shareableContentArrived(result, thenStartStream);
    });
    platform().screenCapture().getShareableContent(false, false, [arrived](const auto& result) {
        platform().scheduler().mainAsync([arrived, result] { arrived(result); });
    });
}

void WindowOverlay::shareableContentArrived(const std::variant<ShareableContent, CaptureError>& result,
                                            bool thenStartStream) {
    if (const auto* error = std::get_if<CaptureError>(&result)) {
        wplog([&] { return "overlay: SCShareableContent error: " + error->description; });
        scheduleResolveRetry(thenStartStream);
        return;
    }
    const auto& windows = std::get<ShareableContent>(result).windows;
    const auto found = std::find_if(windows.begin(), windows.end(),
                                    [&](const auto& window) { return window->windowID() == windowID; });
    if (found == windows.end()) {
        wplog([&] {
            return fmt::format("overlay: SCWindow NOT FOUND for wid={} (checked {} windows)", windowID, windows.size());
        });
        scheduleResolveRetry(thenStartStream);
        return;
    }
    scWindow = *found;
    wplog([&] {
        return fmt::format("overlay: resolved SCWindow for wid={} title='{}'", windowID,
                           scWindow->title().value_or(""));
    });
    if (thenStartStream && pinVisible) {
        startStream();
    }
}

void WindowOverlay::scheduleResolveRetry(bool thenStartStream) {
    if (!thenStartStream) {
        return; // the lookup made at creation is tried once
    }
    platform().scheduler().mainAfter(resolveRetryDelay, weakly([](WindowOverlay& self) {
                                         if (self.pinVisible && !self.stream) {
                                             self.resolveSCWindow(true);
                                         }
                                     }));
}

double WindowOverlay::displayScale() const {
    if (const auto scale = panel->screenBackingScaleFactor()) {
        return *scale;
    }
    for (const auto& screen : platform().screens().screens()) {
        if (screen.frame.intersects(frame())) {
            return screen.backingScaleFactor;
        }
    }
    const auto mainScreen = platform().screens().mainScreen();
    return mainScreen ? mainScreen->backingScaleFactor : fallbackScale;
}

StreamConfiguration WindowOverlay::makeStreamConfig(double pixelScale) const {
    const auto size = frame().size;
    StreamConfiguration configuration;
    configuration.width = pixels(size.width, pixelScale);
    configuration.height = pixels(size.height, pixelScale);
    configuration.captureResolution = CaptureResolution::best;
    configuration.scalesToFit = true;
    configuration.showsCursor = false;
    configuration.pixelFormat = pixelFormat32BGRA;
    configuration.queueDepth = streamQueueDepth;
    configuration.minimumFrameInterval = {1.0 / std::max(captureRate(), slowestCaptureRate), frameIntervalTimescale};
    return configuration;
}

void WindowOverlay::startStream() {
    if (stream) {
        return;
    }
    if (!scWindow) {
        platform().scheduler().mainAsync(weakly([](WindowOverlay& self) { self.resolveSCWindow(true); }));
        return;
    }
    auto& capture = platform().screenCapture();
    const auto filter = capture.makeFilter(scWindow);
    const double filterScale = filter->pointPixelScale();
    streamPixelScale = filterScale >= 1.0 ? filterScale : displayScale();
    const auto configuration = makeStreamConfig(streamPixelScale);
    lastStreamSize = frame().size;
    didLogFirstFrame = false;

    auto recover = weakly([](WindowOverlay& self, const auto& stopped) { self.streamStopped(stopped); });
    auto started = capture.makeStream(
        filter, configuration,
        [wid = windowID, recover](const std::shared_ptr<CaptureStream>& stopped, const CaptureError& error) {
            wplog([&] { return fmt::format("overlay: stream stopped wid={}: {}", wid, error.description); });
            platform().scheduler().mainAsync([recover, stopped] { recover(stopped); });
        });
    if (const auto error = started->addStreamOutput(makeStreamOutput(), StreamOutputType::screen, sampleQueue)) {
        wplog([&] { return fmt::format("overlay: addStreamOutput failed wid={}: {}", windowID, error->description); });
        return;
    }
    stream = std::move(started);

    auto clearSlot = weakly([failed = std::weak_ptr(stream)](WindowOverlay& self) {
        if (self.stream == failed.lock()) {
            self.stream.reset();
        }
    });
    stream->startCapture([wid = windowID, clearSlot](const std::optional<CaptureError>& error) {
        if (error) {
            wplog([&] { return fmt::format("overlay: startCapture failed wid={}: {}", wid, error->description); });
            platform().scheduler().mainAsync(clearSlot);
        }
    });
    wplog([&] { return fmt::format("overlay: stream starting wid={} maxFPS={}", windowID, describe(captureRate())); });
}

void WindowOverlay::stopStream() {
    if (const auto stopping = std::exchange(stream, nullptr)) {
        stopping->stopCapture(loggingErrors("overlay: stopCapture error: "));
    }
}

void WindowOverlay::applyCaptureRate() {
    if (stream) {
        updateRunningStream();
    }
}

void WindowOverlay::updateRunningStream() {
    stream->updateConfiguration(makeStreamConfig(streamPixelScale),
                                loggingErrors("overlay: updateConfiguration (rate) error: "));
}

/// Runs on `sampleQueue`, where it only looks at the sample; the rest happens on the main thread.
CaptureStream::Output WindowOverlay::makeStreamOutput() {
    auto showFrame =
        weakly([](WindowOverlay& self, const auto& frame, const auto& surface) { self.show(frame, surface); });
    return [showFrame](const SampleBuffer& sample, StreamOutputType type) {
        if (type != StreamOutputType::screen) {
            return;
        }
        auto surface = completePicture(sample);
        if (!surface) {
            return;
        }
        platform().scheduler().mainAsync(
            [showFrame, frame = sample.imageBuffer, surface = std::move(surface)] { showFrame(frame, surface); });
    };
}

void WindowOverlay::show(const std::shared_ptr<PixelBuffer>& frame, const std::shared_ptr<Surface>& surface) {
    ++frameCount;
    if (!didLogFirstFrame) {
        didLogFirstFrame = true;
        wplog([&] {
            const auto size = this->frame().size;
            return fmt::format("overlay: first frame {}x{}px for {}x{}pt @{}x wid={}", frame->width(), frame->height(),
                               describe(size.width), describe(size.height), describe(streamPixelScale), windowID);
        });
        AXScroller::probe(pid, windowID);
    }
    displayedFrame = frame;
    contentLayer->setContents(surface);
}

void WindowOverlay::streamStopped(const std::shared_ptr<CaptureStream>& stopped) {
    if (stream == stopped) {
        stream.reset();
    }
    if (pinVisible) {
        resolveSCWindow(true);
    }
}

} // namespace quillon
