#pragma once

#include "Platform/Geometry.h"
#include "Platform/Scheduler.h"
#include "Platform/Surface.h"
#include "Platform/WindowServer.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

/// Live pictures of single windows (ScreenCaptureKit). Every member is called on the main thread only;
/// completions and callbacks arrive on any thread, except where one is named, and never before the call
/// that they belong to has returned.
namespace quillon {

struct CaptureError {
    int code = 0;
    /// For the log.
    std::string description;
};

/// A window that can be captured (SCWindow). It stays valid, though useless, when the window has closed.
class CaptureWindow {
public:
    CaptureWindow() = default;
    CaptureWindow(const CaptureWindow&) = delete;
    CaptureWindow& operator=(const CaptureWindow&) = delete;
    virtual ~CaptureWindow() = default;

    [[nodiscard]] virtual WindowID windowID() const = 0;
    [[nodiscard]] virtual std::optional<std::string> title() const = 0;
};

/// SCShareableContent, as far as windows go.
struct ShareableContent {
    std::vector<std::shared_ptr<CaptureWindow>> windows;
};

/// What a stream or a screenshot shows (SCContentFilter).
class ContentFilter {
public:
    ContentFilter() = default;
    ContentFilter(const ContentFilter&) = delete;
    ContentFilter& operator=(const ContentFilter&) = delete;
    virtual ~ContentFilter() = default;

    /// Pixels per point of the filtered content; may be 0 when unknown.
    [[nodiscard]] virtual double pointPixelScale() const = 0;
};

/// A time and the timescale to keep it in (the arguments of CMTimeMakeWithSeconds).
struct MediaTime {
    double seconds = 0;
    std::int32_t preferredTimescale = 1;

    bool operator==(const MediaTime&) const = default;
};

enum class CaptureResolution { automatic, best, nominal };

/// A four-character code (OSType).
using PixelFormat = std::uint32_t;
/// kCVPixelFormatType_32BGRA, 'BGRA'.
inline constexpr PixelFormat pixelFormat32BGRA = 0x42475241;

/// SCStreamConfiguration.
struct StreamConfiguration {
    std::int64_t width = 1;  ///< pixels
    std::int64_t height = 1; ///< pixels
    CaptureResolution captureResolution = CaptureResolution::automatic;
    bool scalesToFit = false;
    bool showsCursor = true;
    PixelFormat pixelFormat = pixelFormat32BGRA;
    int queueDepth = 3;
    MediaTime minimumFrameInterval;
};

/// SCStreamOutputType.
enum class StreamOutputType : int { screen = 0, audio = 1 };

/// SCFrameStatus.
enum class FrameStatus : std::int64_t { complete = 0, idle = 1, blank = 2, suspended = 3, started = 4, stopped = 5 };

/// One dictionary of a sample's attachments.
struct SampleAttachments {
    /// SCStreamFrameInfoStatus as an integer.
    std::optional<std::int64_t> status;
};

/// What a stream delivers (CMSampleBuffer).
struct SampleBuffer {
    /// The attachments array; none when the sample has none (none is created for it).
    std::optional<std::vector<SampleAttachments>> attachments;
    /// Null when the sample carries no image.
    std::shared_ptr<PixelBuffer> imageBuffer;
};

/// A running or stopped live capture (SCStream). The platform keeps what a pending completion needs alive by
/// itself: a caller may let go of the stream right after asking for its stop.
class CaptureStream {
public:
    CaptureStream() = default;
    CaptureStream(const CaptureStream&) = delete;
    CaptureStream& operator=(const CaptureStream&) = delete;
    virtual ~CaptureStream() = default;

    using Completion = std::function<void(const std::optional<CaptureError>&)>;
    using Output = std::function<void(const SampleBuffer&, StreamOutputType)>;

    /// Delivers samples to the callback on the queue, which the stream holds. The error, if any, is returned
    /// at once.
    [[nodiscard]] virtual std::optional<CaptureError> addStreamOutput(Output output, StreamOutputType type,
                                                                      std::shared_ptr<SerialQueue> queue) = 0;
    virtual void startCapture(Completion completion) = 0;
    virtual void stopCapture(Completion completion) = 0;
    virtual void updateConfiguration(const StreamConfiguration& configuration, Completion completion) = 0;
};

class ScreenCapture {
public:
    virtual ~ScreenCapture() = default;

    using ContentCompletion = std::function<void(const std::variant<ShareableContent, CaptureError>&)>;
    using ImageCompletion = std::function<void(const std::variant<std::shared_ptr<Surface>, CaptureError>&)>;
    /// Called when the system, not the program, has stopped the stream.
    using StoppedCallback = std::function<void(std::shared_ptr<CaptureStream>, const CaptureError&)>;

    /// Never waits; may take seconds.
    virtual void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                     ContentCompletion completion) = 0;
    /// A filter for the one window, wherever it lies and whatever covers it
    /// (initWithDesktopIndependentWindow:).
    [[nodiscard]] virtual std::shared_ptr<ContentFilter>
    makeFilter(const std::shared_ptr<CaptureWindow>& desktopIndependentWindow) = 0;
    [[nodiscard]] virtual std::shared_ptr<CaptureStream> makeStream(const std::shared_ptr<ContentFilter>& filter,
                                                                    const StreamConfiguration& configuration,
                                                                    StoppedCallback stopped) = 0;
    /// One picture (SCScreenshotManager).
    virtual void captureImage(const std::shared_ptr<ContentFilter>& filter, const StreamConfiguration& configuration,
                              ImageCompletion completion) = 0;
    /// CGPreflightScreenCaptureAccess. Checks only. Main thread.
    [[nodiscard]] virtual bool preflightAccess() const = 0;
    /// CGRequestScreenCaptureAccess: the system asks the user when it has to. True when access is granted now. Main
    /// thread.
    virtual bool requestAccess() = 0;
};

} // namespace quillon
