#pragma once

#include "Platform/ScreenCapture.h"
#include "Simulated/DesktopModel.h"
#include "Simulated/SimulatedScreens.h"
#include "Simulated/SimulatedViews.h"

#include <map>
#include <vector>

namespace quillon::simulated {

class SimulatedScreenCapture;

/// The operations whose completions a test can hold back or let fail.
enum class CaptureOperation { shareableContent, screenshot, startCapture, stopCapture, updateConfiguration };

class SimulatedPixelBuffer final : public PixelBuffer {
public:
    SimulatedPixelBuffer(std::size_t width, std::size_t height) : pixelWidth(width), pixelHeight(height) {}

    [[nodiscard]] std::size_t width() const override { return pixelWidth; }
    [[nodiscard]] std::size_t height() const override { return pixelHeight; }
    [[nodiscard]] std::shared_ptr<Surface> surface() const override { return picture; }

    /// Null for a buffer that no surface backs.
    std::shared_ptr<SimulatedSurface> picture;

private:
    std::size_t pixelWidth;
    std::size_t pixelHeight;
};

/// A stream of one window. It delivers a complete frame when it starts and one for every change of the window, at
/// most one in its minimum frame interval; a test may deliver others.
class SimulatedCaptureStream final : public CaptureStream, public std::enable_shared_from_this<SimulatedCaptureStream> {
public:
    enum class State { made, starting, running, failed, stoppedBySystem, stopped };

    SimulatedCaptureStream(SimulatedScreenCapture& capture, WindowID windowID, const StreamConfiguration& configuration,
                           std::function<void(std::shared_ptr<CaptureStream>, const CaptureError&)> stoppedCallback);
    ~SimulatedCaptureStream() override;

    [[nodiscard]] std::optional<CaptureError> addStreamOutput(Output output, StreamOutputType type,
                                                              std::shared_ptr<SerialQueue> queue) override;
    void startCapture(Completion completion) override;
    void stopCapture(Completion completion) override;
    void updateConfiguration(const StreamConfiguration& configuration, Completion completion) override;

    [[nodiscard]] WindowID windowID() const { return target; }
    [[nodiscard]] State state() const { return currentState; }
    [[nodiscard]] const StreamConfiguration& configuration() const { return currentConfiguration; }

    /// A sample of a running stream.
    void deliver(const SampleBuffer& sample, StreamOutputType type = StreamOutputType::screen);
    /// The system ends the stream, whatever the program thinks of it.
    void stopBySystem(const CaptureError& error);

private:
    friend SimulatedScreenCapture;

    struct RegisteredOutput {
        Output callback;
        StreamOutputType type;
        std::shared_ptr<SerialQueue> queue;
    };

    void windowChanged();
    void deliverPicture();

    SimulatedScreenCapture& capture;
    WindowID target;
    StreamConfiguration currentConfiguration;
    std::function<void(std::shared_ptr<CaptureStream>, const CaptureError&)> stoppedCallback;
    std::vector<RegisteredOutput> outputs;
    State currentState = State::made;
    std::optional<std::chrono::nanoseconds> lastPicture;
    bool isPicturePlanned = false;
};

/// Completions and callbacks arrive on a platform thread that is not the main one.
class SimulatedScreenCapture final : public ScreenCapture {
public:
    SimulatedScreenCapture(const DesktopModel& model, const SimulatedScreens& screens, SimulatedScheduler& scheduler,
                           Journal& journal)
        : model(model), screens(screens), scheduler(scheduler), journal(journal) {}

    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ContentCompletion completion) override;
    [[nodiscard]] std::shared_ptr<ContentFilter>
    makeFilter(const std::shared_ptr<CaptureWindow>& desktopIndependentWindow) override;
    [[nodiscard]] std::shared_ptr<CaptureStream> makeStream(const std::shared_ptr<ContentFilter>& filter,
                                                            const StreamConfiguration& configuration,
                                                            StoppedCallback stopped) override;
    void captureImage(const std::shared_ptr<ContentFilter>& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override;
    [[nodiscard]] bool preflightAccess() const override;
    bool requestAccess() override;

    void setAccess(bool granted) { hasAccess = granted; }
    /// From now on the user grants what the program requests.
    void grantAccessOnRequest() { grantsAccess = true; }
    /// The next operation of that kind that completes fails.
    void failNext(CaptureOperation operation, CaptureError error);
    void failNextAddStreamOutput(CaptureError error) { outputError = std::move(error); }
    /// From now on completions of that kind wait for `complete`.
    void hold(CaptureOperation operation) { isHeld[operation] = true; }
    /// Ends the holding; what is held arrives.
    void release(CaptureOperation operation);
    [[nodiscard]] std::size_t held(CaptureOperation operation) { return heldCompletions[operation].size(); }
    /// Lets one held completion arrive, with an error if one is given. 0 is the oldest.
    void complete(CaptureOperation operation, std::size_t index = 0, std::optional<CaptureError> error = std::nullopt);
    /// What every filter says its scale is; without it, the scale of the main screen.
    void setFilterScale(std::optional<double> scale) { filterScale = scale; }

    /// The streams that somebody still holds, oldest first.
    [[nodiscard]] std::vector<std::shared_ptr<SimulatedCaptureStream>> streams() const;
    [[nodiscard]] std::vector<std::shared_ptr<SimulatedCaptureStream>> runningStreams() const;
    /// Null when there is none.
    [[nodiscard]] std::shared_ptr<SimulatedCaptureStream> latestStream() const;
    /// The configuration of the last screenshot that was asked for.
    [[nodiscard]] const std::optional<StreamConfiguration>& lastScreenshot() const { return screenshotConfiguration; }

    [[nodiscard]] std::shared_ptr<SimulatedPixelBuffer> makePixelBuffer(std::int64_t width, std::int64_t height);
    /// A sample with one dictionary of attachments and a picture.
    [[nodiscard]] SampleBuffer makeSample(FrameStatus status, std::int64_t width = 16, std::int64_t height = 16);

    // What happens to the windows; the desktop tells.
    void windowChanged(WindowID windowID);
    void windowClosed(WindowID windowID);
    /// Drops the completions that are held.
    void discard();

private:
    friend SimulatedCaptureStream;

    using Finish = std::function<void(const std::optional<CaptureError>&)>;

    /// Plans the completion of an operation that has been asked for.
    void begin(CaptureOperation operation, Finish finish);
    /// The same for one that fails for a reason of its own.
    void post(Finish finish, std::optional<CaptureError> error);
    void checkConfiguration(const StreamConfiguration& configuration, std::string_view operation) const;
    [[nodiscard]] std::optional<CaptureError> takeError(CaptureOperation operation);
    [[nodiscard]] std::shared_ptr<SimulatedSurface> makeSurface();

    const DesktopModel& model;
    const SimulatedScreens& screens;
    SimulatedScheduler& scheduler;
    Journal& journal;
    std::map<CaptureOperation, std::vector<CaptureError>> plannedErrors;
    std::map<CaptureOperation, bool> isHeld;
    std::map<CaptureOperation, std::vector<Finish>> heldCompletions;
    std::optional<CaptureError> outputError;
    std::optional<double> filterScale;
    std::optional<StreamConfiguration> screenshotConfiguration;
    std::vector<std::weak_ptr<SimulatedCaptureStream>> madeStreams;
    bool hasAccess = true;
    bool grantsAccess = false;
    int nextSurface = 1;
};

} // namespace quillon::simulated
