#include "Platform/X11/WindowStream.h"

#include "Platform/X11/CaptureErrors.h"
#include "Platform/X11/Event.h"
#include "Platform/X11/Region.h"
#include "Platform/X11/Scheduler.h"

#include <utility>

namespace quillon::x11 {

namespace {

Seconds frameInterval(const StreamConfiguration& configuration) {
    return Seconds(configuration.minimumFrameInterval.seconds);
}

std::size_t pixelCount(std::int64_t side) {
    return side > 0 ? static_cast<std::size_t>(side) : 0;
}

} // namespace

WindowStream::WindowStream(Connection& connection, Scheduler& scheduler, const ServerPause& serverPause,
                           std::shared_ptr<SourceWindow> source, const StreamConfiguration& configuration,
                           ScreenCapture::StoppedCallback stopped)
    : connection(connection), scheduler(scheduler), serverPause(serverPause), source(std::move(source)),
      configuration(configuration), stopped(std::move(stopped)),
      pacer(scheduler, frameInterval(configuration), [this](Seconds sinceChange) { takeFrame(sinceChange); }) {}

WindowStream::~WindowStream() {
    release();
}

std::optional<CaptureError> WindowStream::addStreamOutput(Output output, StreamOutputType type,
                                                          std::shared_ptr<SerialQueue> queue) {
    if (type == StreamOutputType::screen) {
        outputs.push_back({std::move(output), std::move(queue)});
    }
    return std::nullopt; // a window makes no sound that could be captured here
}

void WindowStream::startCapture(Completion completion) {
    if (state != State::idle) {
        complete(std::move(completion), alreadyCapturing());
        return;
    }
    state = State::starting;
    // A turn later, so that a window whose end has been announced already is known to be gone.
    scheduler.mainAsync([self = shared_from_this(), completion = std::move(completion)] {
        self->source->whenKnown([self, completion] { self->sourceKnown(completion); });
    });
}

void WindowStream::sourceKnown(const Completion& completion) {
    if (source->state() == SourceWindow::State::gone) {
        state = State::ended;
        complete(completion, windowGone());
        return;
    }
    if (state == State::starting) {
        run();
    }
    complete(completion, std::nullopt);
}

void WindowStream::stopCapture(Completion completion) {
    if (state != State::starting && state != State::running) {
        complete(std::move(completion), notCapturing());
        return;
    }
    state = State::ended;
    release();
    complete(std::move(completion), std::nullopt);
}

void WindowStream::updateConfiguration(const StreamConfiguration& newConfiguration, Completion completion) {
    const bool sizeChanged =
        newConfiguration.width != configuration.width || newConfiguration.height != configuration.height;
    configuration = newConfiguration;
    pacer.setInterval(frameInterval(configuration));
    if (sizeChanged && state == State::running) {
        showPicture();
    }
    complete(std::move(completion), std::nullopt);
}

void WindowStream::complete(Completion completion, std::optional<CaptureError> error) {
    scheduler.mainAsync([completion = std::move(completion), error = std::move(error)] { completion(error); });
}

void WindowStream::run() {
    state = State::running;
    auto* const xcb = connection.xcb();
    feed->damage = makeRegion(connection);
    damage = Damage(connection);
    connection.mayFail(xcb_damage_create(xcb, damage.id(), source->id(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY));
    damageEvents = connection.observeDamage(damage.id(), [this](const auto& event) {
        changed = as<xcb_damage_notify_event_t>(event).timestamp;
        pacer.markDirty();
    });
    sourceEvents = source->observe({
        .pictureReplaced = [this] { showPicture(); },
        .gone = [this] { sourceGone(); },
    });
    showPicture();
}

/// Announces the source's picture as a whole, be it the first one or one of another size.
void WindowStream::showPicture() {
    if (!source->picture()) {
        return; // never mapped yet
    }
    feed->picture = source->picture();
    nextIsWhole = true;
    pacer.holdUntil(source->completeFrom());
    pacer.markDirty();
}

void WindowStream::sourceGone() {
    state = State::ended;
    release();
    scheduler.mainAsync([self = shared_from_this()] { self->stopped(self, windowGone()); });
}

/// Ends the capture. What is shown stays as it is; a window that has gone does not change its picture any more.
void WindowStream::release() {
    pacer.stop();
    damageEvents.reset();
    sourceEvents.reset();
    damage.reset();
    const bool isShown = feed.use_count() > 1;
    if (isShown && source->state() != SourceWindow::State::gone) {
        feed->freeze();
    }
    feed = std::make_shared<PictureFeed>();
}

/// Applications flush in the middle of their drawing: a moment after the first change keeps half-drawn frames off
/// the screen.
void WindowStream::settle(Seconds sinceChange) {
    // More than one, since the clock counts whole ones.
    constexpr xcb_timestamp_t settleTime = 2; // ms
    if (const auto time = std::exchange(changed, std::nullopt); time && sinceChange < std::chrono::milliseconds(1)) {
        serverPause.waitUntil(*time + settleTime);
    }
}

void WindowStream::takeFrame(Seconds sinceChange) {
    if (!feed->picture) {
        return; // the picture of a window that is just being mapped is on its way
    }
    settle(sinceChange);
    // In the same flush as the drawing, and before it: what the application draws meanwhile is announced again.
    connection.mayFail(xcb_damage_subtract(connection.xcb(), damage.id(), XCB_XFIXES_REGION_NONE, feed->damage.id()));
    ++feed->latestFrame;
    auto surface = std::make_shared<PictureSurface>(feed, feed->latestFrame, std::exchange(nextIsWhole, false));
    SampleBuffer sample;
    sample.attachments.emplace(1, SampleAttachments{.status = static_cast<std::int64_t>(FrameStatus::complete)});
    sample.imageBuffer = std::make_shared<PictureBuffer>(pixelCount(configuration.width),
                                                         pixelCount(configuration.height), std::move(surface));
    for (const auto& output : outputs) {
        runOn(*output.queue, [&] { output.deliver(sample, StreamOutputType::screen); });
    }
}

} // namespace quillon::x11
