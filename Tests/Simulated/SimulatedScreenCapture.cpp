#include "Simulated/SimulatedScreenCapture.h"

#include "Simulated/Misuse.h"

namespace quillon::simulated {

namespace {

constexpr std::string_view captureThread = "screen capture";
/// More than the system accepts, or fewer, is an error of the program.
constexpr int leastQueueDepth = 3;
constexpr int mostQueueDepth = 8;

const CaptureError windowIsGone{1, "the window is gone"};
const CaptureError streamHasEnded{2, "the stream has ended"};

class SharedWindow final : public CaptureWindow {
public:
    SharedWindow(WindowID number, std::optional<std::string> text) : number(number), text(std::move(text)) {}

    [[nodiscard]] WindowID windowID() const override { return number; }
    [[nodiscard]] std::optional<std::string> title() const override { return text; }

private:
    WindowID number;
    std::optional<std::string> text;
};

class WindowFilter final : public ContentFilter {
public:
    WindowFilter(WindowID windowID, double scale) : windowID(windowID), scale(scale) {}

    [[nodiscard]] double pointPixelScale() const override { return scale; }

    const WindowID windowID;

private:
    double scale;
};

const WindowFilter& requireFilter(const std::shared_ptr<ContentFilter>& filter, std::string_view operation) {
    const auto* found = dynamic_cast<const WindowFilter*>(filter.get());
    if (found == nullptr) {
        misuse(fmt::format("{} without a filter of this desktop", operation));
    }
    return *found;
}

} // namespace

SimulatedCaptureStream::SimulatedCaptureStream(
    SimulatedScreenCapture& capture, WindowID windowID, const StreamConfiguration& configuration,
    std::function<void(std::shared_ptr<CaptureStream>, const CaptureError&)> stoppedCallback)
    : capture(capture), target(windowID), currentConfiguration(configuration),
      stoppedCallback(std::move(stoppedCallback)) {}

SimulatedCaptureStream::~SimulatedCaptureStream() = default;

std::optional<CaptureError> SimulatedCaptureStream::addStreamOutput(Output output, StreamOutputType type,
                                                                    std::shared_ptr<SerialQueue> queue) {
    capture.scheduler.requireMain("CaptureStream::addStreamOutput");
    if (!output || !queue) {
        misuse("CaptureStream::addStreamOutput without an output or without a queue");
    }
    capture.journal.record("stream.addStreamOutput");
    if (auto error = std::exchange(capture.outputError, std::nullopt)) {
        return error;
    }
    outputs.push_back({std::move(output), type, std::move(queue)});
    return std::nullopt;
}

void SimulatedCaptureStream::startCapture(Completion completion) {
    capture.scheduler.requireMain("CaptureStream::startCapture");
    if (currentState != State::made) {
        misuse("CaptureStream::startCapture of a stream that was started already");
    }
    if (outputs.empty()) {
        misuse("CaptureStream::startCapture without an output");
    }
    capture.journal.record("stream.startCapture");
    currentState = State::starting;
    capture.begin(CaptureOperation::startCapture, [self = shared_from_this(), completion = std::move(completion)](
                                                      const std::optional<CaptureError>& planned) {
        const bool isGone = self->capture.model.findWindow(self->target) == nullptr;
        const auto error = !planned && isGone ? std::optional(windowIsGone) : planned;
        if (self->currentState == State::starting) {
            self->currentState = error ? State::failed : State::running;
        }
        completion(error);
        self->windowChanged();
    });
}

void SimulatedCaptureStream::stopCapture(Completion completion) {
    capture.scheduler.requireMain("CaptureStream::stopCapture");
    if (currentState == State::made || currentState == State::stopped) {
        misuse("CaptureStream::stopCapture of a stream that does not run");
    }
    capture.journal.record("stream.stopCapture");
    const bool hasEnded = currentState == State::failed || currentState == State::stoppedBySystem;
    currentState = State::stopped;
    capture.begin(CaptureOperation::stopCapture,
                  [self = shared_from_this(), hasEnded,
                   completion = std::move(completion)](const std::optional<CaptureError>& planned) {
                      completion(!planned && hasEnded ? std::optional(streamHasEnded) : planned);
                  });
}

void SimulatedCaptureStream::updateConfiguration(const StreamConfiguration& configuration, Completion completion) {
    capture.scheduler.requireMain("CaptureStream::updateConfiguration");
    if (currentState == State::made || currentState == State::stopped) {
        misuse("CaptureStream::updateConfiguration of a stream that does not run");
    }
    capture.checkConfiguration(configuration, "CaptureStream::updateConfiguration");
    capture.journal.record("stream.updateConfiguration {}x{}", configuration.width, configuration.height);
    capture.begin(CaptureOperation::updateConfiguration,
                  [self = shared_from_this(), configuration,
                   completion = std::move(completion)](const std::optional<CaptureError>& error) {
                      if (!error) {
                          self->currentConfiguration = configuration;
                          self->windowChanged();
                      }
                      completion(error);
                  });
}

void SimulatedCaptureStream::deliver(const SampleBuffer& sample, StreamOutputType type) {
    if (currentState != State::running) {
        misuse("a sample of a stream that does not run");
    }
    for (const auto& output : outputs) {
        output.queue->async([callback = output.callback, sample, type] { callback(sample, type); });
    }
}

void SimulatedCaptureStream::stopBySystem(const CaptureError& error) {
    if (currentState != State::running && currentState != State::stopped) {
        misuse("the system stops a stream that did not start");
    }
    if (currentState == State::running) {
        currentState = State::stoppedBySystem;
    }
    capture.scheduler.submit(std::string(captureThread),
                             [self = shared_from_this(), error] { self->stoppedCallback(self, error); });
}

/// A picture now, or as soon as the minimum interval allows it.
void SimulatedCaptureStream::windowChanged() {
    if (currentState != State::running || isPicturePlanned) {
        return;
    }
    const auto interval = Seconds(currentConfiguration.minimumFrameInterval.seconds);
    const auto passed = Seconds(capture.scheduler.now() - lastPicture.value_or(capture.scheduler.now()));
    if (!lastPicture || passed >= interval) {
        deliverPicture();
        return;
    }
    isPicturePlanned = true;
    capture.scheduler.submitAfter(interval - passed, std::string(captureThread), [weak = weak_from_this()] {
        if (const auto self = weak.lock(); self && self->currentState == State::running) {
            self->isPicturePlanned = false;
            self->deliverPicture();
        }
    });
}

void SimulatedCaptureStream::deliverPicture() {
    lastPicture = capture.scheduler.now();
    deliver(capture.makeSample(FrameStatus::complete, currentConfiguration.width, currentConfiguration.height));
}

void SimulatedScreenCapture::getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                                 ContentCompletion completion) {
    scheduler.requireMain("ScreenCapture::getShareableContent");
    journal.record("screenCapture.getShareableContent {} {}", excludingDesktopWindows, onScreenWindowsOnly);
    begin(CaptureOperation::shareableContent,
          [this, excludingDesktopWindows, onScreenWindowsOnly,
           completion = std::move(completion)](const std::optional<CaptureError>& error) {
              if (error) {
                  completion(*error);
                  return;
              }
              ShareableContent content;
              for (const auto& window : model.windows) {
                  if (window.canBeShared && !(excludingDesktopWindows && window.isDesktopElement) &&
                      !(onScreenWindowsOnly && !model.isOnScreen(window))) {
                      content.windows.push_back(std::make_shared<SharedWindow>(window.windowID, window.title));
                  }
              }
              completion(content);
          });
}

std::shared_ptr<ContentFilter>
SimulatedScreenCapture::makeFilter(const std::shared_ptr<CaptureWindow>& desktopIndependentWindow) {
    scheduler.requireMain("ScreenCapture::makeFilter");
    if (!desktopIndependentWindow) {
        misuse("ScreenCapture::makeFilter without a window");
    }
    const auto screen = screens.mainScreen();
    return std::make_shared<WindowFilter>(desktopIndependentWindow->windowID(),
                                          filterScale.value_or(screen ? screen->backingScaleFactor : 0));
}

std::shared_ptr<CaptureStream> SimulatedScreenCapture::makeStream(const std::shared_ptr<ContentFilter>& filter,
                                                                  const StreamConfiguration& configuration,
                                                                  StoppedCallback stopped) {
    scheduler.requireMain("ScreenCapture::makeStream");
    checkConfiguration(configuration, "ScreenCapture::makeStream");
    const auto windowID = requireFilter(filter, "ScreenCapture::makeStream").windowID;
    journal.record("screenCapture.makeStream {}x{}", configuration.width, configuration.height);
    auto stream = std::make_shared<SimulatedCaptureStream>(*this, windowID, configuration, std::move(stopped));
    madeStreams.push_back(stream);
    return stream;
}

void SimulatedScreenCapture::captureImage(const std::shared_ptr<ContentFilter>& filter,
                                          const StreamConfiguration& configuration, ImageCompletion completion) {
    scheduler.requireMain("ScreenCapture::captureImage");
    checkConfiguration(configuration, "ScreenCapture::captureImage");
    const auto windowID = requireFilter(filter, "ScreenCapture::captureImage").windowID;
    journal.record("screenCapture.captureImage {}x{}", configuration.width, configuration.height);
    screenshotConfiguration = configuration;
    begin(CaptureOperation::screenshot,
          [this, windowID, completion = std::move(completion)](const std::optional<CaptureError>& error) {
              if (error || model.findWindow(windowID) == nullptr) {
                  completion(error.value_or(windowIsGone));
              } else {
                  completion(std::shared_ptr<Surface>(makeSurface()));
              }
          });
}

bool SimulatedScreenCapture::preflightAccess() const {
    scheduler.requireMain("ScreenCapture::preflightAccess");
    return hasAccess;
}

bool SimulatedScreenCapture::requestAccess() {
    scheduler.requireMain("ScreenCapture::requestAccess");
    journal.record("screenCapture.requestAccess");
    hasAccess = hasAccess || grantsAccess;
    return hasAccess;
}

void SimulatedScreenCapture::failNext(CaptureOperation operation, CaptureError error) {
    plannedErrors[operation].push_back(std::move(error));
}

void SimulatedScreenCapture::release(CaptureOperation operation) {
    isHeld[operation] = false;
    while (held(operation) > 0) {
        complete(operation);
    }
}

void SimulatedScreenCapture::complete(CaptureOperation operation, std::size_t index,
                                      std::optional<CaptureError> error) {
    auto& completions = heldCompletions[operation];
    if (index >= completions.size()) {
        misuse(fmt::format("completion {} of {} that are held", index, completions.size()));
    }
    const auto position = completions.begin() + static_cast<std::ptrdiff_t>(index);
    auto finish = std::move(*position);
    completions.erase(position);
    post(std::move(finish), error ? std::move(error) : takeError(operation));
}

std::vector<std::shared_ptr<SimulatedCaptureStream>> SimulatedScreenCapture::streams() const {
    std::vector<std::shared_ptr<SimulatedCaptureStream>> result;
    for (const auto& made : madeStreams) {
        if (auto stream = made.lock()) {
            result.push_back(std::move(stream));
        }
    }
    return result;
}

std::vector<std::shared_ptr<SimulatedCaptureStream>> SimulatedScreenCapture::runningStreams() const {
    auto result = streams();
    std::erase_if(result, [](const auto& stream) { return stream->state() != SimulatedCaptureStream::State::running; });
    return result;
}

std::shared_ptr<SimulatedCaptureStream> SimulatedScreenCapture::latestStream() const {
    const auto all = streams();
    return all.empty() ? nullptr : all.back();
}

std::shared_ptr<SimulatedPixelBuffer> SimulatedScreenCapture::makePixelBuffer(std::int64_t width, std::int64_t height) {
    auto buffer =
        std::make_shared<SimulatedPixelBuffer>(static_cast<std::size_t>(width), static_cast<std::size_t>(height));
    buffer->picture = makeSurface();
    buffer->picture->belongsToFrame = true;
    buffer->picture->frame = buffer;
    return buffer;
}

SampleBuffer SimulatedScreenCapture::makeSample(FrameStatus status, std::int64_t width, std::int64_t height) {
    return {.attachments = {{{.status = static_cast<std::int64_t>(status)}}},
            .imageBuffer = makePixelBuffer(width, height)};
}

void SimulatedScreenCapture::windowChanged(WindowID windowID) {
    for (const auto& stream : runningStreams()) {
        if (stream->windowID() == windowID) {
            stream->windowChanged();
        }
    }
}

void SimulatedScreenCapture::windowClosed(WindowID windowID) {
    for (const auto& stream : runningStreams()) {
        if (stream->windowID() == windowID) {
            stream->stopBySystem(windowIsGone);
        }
    }
}

void SimulatedScreenCapture::discard() {
    heldCompletions.clear();
}

void SimulatedScreenCapture::begin(CaptureOperation operation, Finish finish) {
    if (isHeld[operation]) {
        heldCompletions[operation].push_back(std::move(finish));
    } else {
        post(std::move(finish), takeError(operation));
    }
}

void SimulatedScreenCapture::post(Finish finish, std::optional<CaptureError> error) {
    scheduler.submit(std::string(captureThread),
                     [finish = std::move(finish), error = std::move(error)] { finish(error); });
}

void SimulatedScreenCapture::checkConfiguration(const StreamConfiguration& configuration,
                                                std::string_view operation) const {
    if (configuration.width < 1 || configuration.height < 1 || configuration.queueDepth < leastQueueDepth ||
        configuration.queueDepth > mostQueueDepth || !(configuration.minimumFrameInterval.seconds >= 0) ||
        configuration.minimumFrameInterval.preferredTimescale < 1) {
        misuse(fmt::format("{} with a configuration of {}x{} pixels, {} frames, {} s", operation, configuration.width,
                           configuration.height, configuration.queueDepth, configuration.minimumFrameInterval.seconds));
    }
}

std::optional<CaptureError> SimulatedScreenCapture::takeError(CaptureOperation operation) {
    auto& errors = plannedErrors[operation];
    if (errors.empty()) {
        return std::nullopt;
    }
    auto error = std::move(errors.front());
    errors.erase(errors.begin());
    return error;
}

std::shared_ptr<SimulatedSurface> SimulatedScreenCapture::makeSurface() {
    return std::make_shared<SimulatedSurface>(nextSurface++);
}

} // namespace quillon::simulated
