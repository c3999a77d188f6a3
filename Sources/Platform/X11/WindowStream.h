#pragma once

#include "Platform/ScreenCapture.h"
#include "Platform/X11/FramePacer.h"
#include "Platform/X11/ServerPause.h"
#include "Platform/X11/SourceWindow.h"

#include <memory>
#include <optional>
#include <vector>

namespace quillon::x11 {

/// The live capture of one window: it learns of changes through Damage, takes a frame when the pacer says so, and
/// does nothing at all while nothing changes. Main thread.
class WindowStream final : public CaptureStream, public std::enable_shared_from_this<WindowStream> {
public:
    WindowStream(Connection& connection, Scheduler& scheduler, const ServerPause& serverPause,
                 std::shared_ptr<SourceWindow> source, const StreamConfiguration& configuration,
                 ScreenCapture::StoppedCallback stopped);
    ~WindowStream() override;

    std::optional<CaptureError> addStreamOutput(Output output, StreamOutputType type,
                                                std::shared_ptr<SerialQueue> queue) override;
    void startCapture(Completion completion) override;
    void stopCapture(Completion completion) override;
    void updateConfiguration(const StreamConfiguration& newConfiguration, Completion completion) override;

private:
    enum class State { idle, starting, running, ended };
    struct ScreenOutput {
        Output deliver;
        std::shared_ptr<SerialQueue> queue;
    };

    void complete(Completion completion, std::optional<CaptureError> error);
    void sourceKnown(const Completion& completion);
    void run();
    void showPicture();
    void sourceGone();
    void release();
    void settle(Seconds sinceChange);
    void takeFrame(Seconds sinceChange);

    Connection& connection;
    Scheduler& scheduler;
    const ServerPause& serverPause;
    std::shared_ptr<SourceWindow> source;
    StreamConfiguration configuration;
    ScreenCapture::StoppedCallback stopped;
    std::vector<ScreenOutput> outputs;
    State state = State::idle;
    /// The next frame repaints everything.
    bool nextIsWhole = true;
    FramePacer pacer;
    Damage damage;
    /// The server's time of the first drawing of the next frame; none when the whole picture is another one.
    std::optional<xcb_timestamp_t> changed;
    std::shared_ptr<PictureFeed> feed = std::make_shared<PictureFeed>();
    RegistrationToken damageEvents;
    RegistrationToken sourceEvents;
};

} // namespace quillon::x11
