#include "Platform/ScreenCapture.h"

#include "Platform/macOS/Conversions.h"
#include "Platform/macOS/LayerContents.h"
#include "Platform/macOS/NativeQueue.h"
#include "Platform/macOS/Ports.h"
#include "Platform/macOS/Retained.h"

#include <CoreGraphics/CoreGraphics.h>
#include <CoreMedia/CoreMedia.h>
#include <CoreVideo/CoreVideo.h>
#include <IOSurface/IOSurface.h>
#import <ScreenCaptureKit/ScreenCaptureKit.h>

namespace quillon::macos {

namespace {

CaptureError toCaptureError(NSError* _Nullable error) {
    if (error == nil) {
        return {0, "the system gave no reason"};
    }
    return {static_cast<int>(error.code), toString(error.description)};
}

std::optional<CaptureError> toOptionalError(NSError* _Nullable error) {
    return error != nil ? std::optional(toCaptureError(error)) : std::nullopt;
}

/// The surface of a captured frame. It holds the frame, since the pool that it comes from fills the surface anew
/// as soon as nobody does.
class FrameSurface final : public LayerContents {
public:
    explicit FrameSurface(CVPixelBufferRef buffer) : buffer(Retained<CVPixelBufferRef>::retain(buffer)) {}

    id contents() const override { return (__bridge id)CVPixelBufferGetIOSurface(buffer.get()); }

private:
    Retained<CVPixelBufferRef> buffer;
};

class ImageSurface final : public LayerContents {
public:
    explicit ImageSurface(CGImageRef image) : image(Retained<CGImageRef>::retain(image)) {}

    id contents() const override { return (__bridge id)image.get(); }

private:
    Retained<CGImageRef> image;
};

class MacPixelBuffer final : public PixelBuffer {
public:
    explicit MacPixelBuffer(CVPixelBufferRef buffer) : buffer(Retained<CVPixelBufferRef>::retain(buffer)) {}

    std::size_t width() const override { return CVPixelBufferGetWidth(buffer.get()); }
    std::size_t height() const override { return CVPixelBufferGetHeight(buffer.get()); }
    std::shared_ptr<Surface> surface() const override {
        const bool isBacked = CVPixelBufferGetIOSurface(buffer.get()) != nullptr;
        return isBacked ? std::make_shared<FrameSurface>(buffer.get()) : nullptr;
    }

private:
    Retained<CVPixelBufferRef> buffer;
};

std::vector<SampleAttachments> toAttachments(NSArray<NSDictionary*>* dictionaries) {
    std::vector<SampleAttachments> result;
    for (NSDictionary* dictionary in dictionaries) {
        const id status = dictionary[SCStreamFrameInfoStatus];
        SampleAttachments attachments;
        if ([status isKindOfClass:[NSNumber class]]) {
            attachments.status = static_cast<NSNumber*>(status).longLongValue;
        }
        result.push_back(attachments);
    }
    return result;
}

SampleBuffer toSampleBuffer(CMSampleBufferRef buffer) {
    SampleBuffer result;
    if (const auto attachments = CMSampleBufferGetSampleAttachmentsArray(buffer, false)) {
        result.attachments = toAttachments((__bridge NSArray*)attachments);
    }
    if (const auto image = CMSampleBufferGetImageBuffer(buffer)) {
        result.imageBuffer = std::make_shared<MacPixelBuffer>(image);
    }
    return result;
}

} // namespace

} // namespace quillon::macos

/// Receives the samples of one kind, on the queue that was given with it.
@interface QuillonStreamOutput : NSObject <SCStreamOutput>
- (instancetype)initWithOutput:(quillon::CaptureStream::Output)output;
@end

@implementation QuillonStreamOutput {
    quillon::CaptureStream::Output portOutput;
}

- (instancetype)initWithOutput:(quillon::CaptureStream::Output)output {
    self = [super init];
    if (self != nil) {
        portOutput = std::move(output);
    }
    return self;
}

- (void)stream:(SCStream*)stream didOutputSampleBuffer:(CMSampleBufferRef)sampleBuffer ofType:(SCStreamOutputType)type {
    portOutput(quillon::macos::toSampleBuffer(sampleBuffer), static_cast<quillon::StreamOutputType>(type));
}

@end

/// Hears of a stream's end, on any thread. The stream holds its delegate weakly.
@interface QuillonStreamDelegate : NSObject <SCStreamDelegate>
/// The stream's outputs, which have to live as long as the stream does.
@property(nonatomic, readonly) NSMutableArray<QuillonStreamOutput*>* outputs;
/// Before the stream is started.
- (void)setStopped:(std::function<void(const quillon::CaptureError&)>)stopped;
@end

@implementation QuillonStreamDelegate {
    std::function<void(const quillon::CaptureError&)> portStopped;
}

- (instancetype)init {
    self = [super init];
    if (self != nil) {
        _outputs = [[NSMutableArray alloc] init];
    }
    return self;
}

- (void)setStopped:(std::function<void(const quillon::CaptureError&)>)stopped {
    portStopped = std::move(stopped);
}

- (void)stream:(SCStream*)stream didStopWithError:(NSError*)error {
    portStopped(quillon::macos::toCaptureError(error));
}

@end

namespace quillon::macos {

namespace {

using ErrorHandler = void (^)(NSError* _Nullable error);

/// Completions may come while the call that they belong to is still under way, on another thread. Calls are made
/// on the main thread, so that a turn of its queue comes after they have returned.
template <class Completion, class Result>
void deliver(const Completion& completion, const Result& result) {
    dispatch_async(dispatch_get_main_queue(), ^{
        completion(result);
    });
}

SCStreamOutputType toOutputType(StreamOutputType type) {
    switch (type) {
    case StreamOutputType::screen:
        return SCStreamOutputTypeScreen;
    case StreamOutputType::audio:
        return SCStreamOutputTypeAudio;
    }
}

SCCaptureResolutionType toCaptureResolution(CaptureResolution resolution) {
    switch (resolution) {
    case CaptureResolution::automatic:
        return SCCaptureResolutionAutomatic;
    case CaptureResolution::best:
        return SCCaptureResolutionBest;
    case CaptureResolution::nominal:
        return SCCaptureResolutionNominal;
    }
}

SCStreamConfiguration* toNative(const StreamConfiguration& configuration) {
    SCStreamConfiguration* const result = [[SCStreamConfiguration alloc] init];
    result.width = static_cast<std::size_t>(configuration.width);
    result.height = static_cast<std::size_t>(configuration.height);
    result.captureResolution = toCaptureResolution(configuration.captureResolution);
    result.scalesToFit = configuration.scalesToFit;
    result.showsCursor = configuration.showsCursor;
    result.pixelFormat = configuration.pixelFormat;
    result.queueDepth = configuration.queueDepth;
    result.minimumFrameInterval = CMTimeMakeWithSeconds(configuration.minimumFrameInterval.seconds,
                                                        configuration.minimumFrameInterval.preferredTimescale);
    return result;
}

class MacCaptureWindow final : public CaptureWindow {
public:
    explicit MacCaptureWindow(SCWindow* window) : window(window) {}

    WindowID windowID() const override { return window.windowID; }
    std::optional<std::string> title() const override { return toOptionalString(window.title); }

    [[nodiscard]] SCWindow* native() const { return window; }

private:
    SCWindow* window;
};

class MacContentFilter final : public ContentFilter {
public:
    explicit MacContentFilter(SCContentFilter* filter) : filter(filter) {}

    double pointPixelScale() const override { return static_cast<double>(filter.pointPixelScale); }

    [[nodiscard]] SCContentFilter* native() const { return filter; }

private:
    SCContentFilter* filter;
};

SCContentFilter* toNative(const ContentFilter& filter) {
    return static_cast<const MacContentFilter&>(filter).native();
}

class MacCaptureStream final : public CaptureStream {
public:
    MacCaptureStream(SCContentFilter* filter, SCStreamConfiguration* configuration)
        : stream([[SCStream alloc] initWithFilter:filter configuration:configuration delegate:streamDelegate]) {}

    void setStopped(std::function<void(const CaptureError&)> stopped) {
        [streamDelegate setStopped:std::move(stopped)];
    }

    std::optional<CaptureError> addStreamOutput(Output output, StreamOutputType type,
                                                std::shared_ptr<SerialQueue> queue) override {
        QuillonStreamOutput* const streamOutput = [[QuillonStreamOutput alloc] initWithOutput:std::move(output)];
        NSError* error = nil;
        if (![stream addStreamOutput:streamOutput
                                type:toOutputType(type)
                  sampleHandlerQueue:nativeQueue(*queue)
                               error:&error]) {
            return toCaptureError(error);
        }
        [streamDelegate.outputs addObject:streamOutput];
        return std::nullopt;
    }

    void startCapture(Completion completion) override {
        [stream startCaptureWithCompletionHandler:delivering(std::move(completion))];
    }
    void stopCapture(Completion completion) override {
        [stream stopCaptureWithCompletionHandler:delivering(std::move(completion))];
    }
    void updateConfiguration(const StreamConfiguration& configuration, Completion completion) override {
        [stream updateConfiguration:toNative(configuration) completionHandler:delivering(std::move(completion))];
    }

private:
    /// Holds the stream, its delegate and its outputs until it has run: the caller may let go of this object
    /// right after its call.
    ErrorHandler delivering(Completion completion) {
        SCStream* const heldStream = stream;
        QuillonStreamDelegate* const heldDelegate = streamDelegate;
        return ^(NSError* error) {
            (void)heldStream;
            (void)heldDelegate;
            deliver(completion, toOptionalError(error));
        };
    }

    QuillonStreamDelegate* streamDelegate = [[QuillonStreamDelegate alloc] init];
    SCStream* stream;
};

class MacScreenCapture final : public ScreenCapture {
public:
    void getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                             ContentCompletion completion) override {
        [SCShareableContent getShareableContentExcludingDesktopWindows:excludingDesktopWindows
                                                   onScreenWindowsOnly:onScreenWindowsOnly
                                                     completionHandler:^(SCShareableContent* content, NSError* error) {
                                                         deliver(completion, toResult(content, error));
                                                     }];
    }

    std::shared_ptr<ContentFilter> makeFilter(const std::shared_ptr<CaptureWindow>& desktopIndependentWindow) override {
        SCWindow* const window = static_cast<const MacCaptureWindow&>(*desktopIndependentWindow).native();
        return std::make_shared<MacContentFilter>([[SCContentFilter alloc] initWithDesktopIndependentWindow:window]);
    }

    std::shared_ptr<CaptureStream> makeStream(const std::shared_ptr<ContentFilter>& filter,
                                              const StreamConfiguration& configuration,
                                              StoppedCallback stopped) override {
        auto stream = std::make_shared<MacCaptureStream>(toNative(*filter), toNative(configuration));
        stream->setStopped([stopped = std::move(stopped), weakStream = std::weak_ptr(stream)](const auto& error) {
            if (auto stoppedStream = weakStream.lock()) {
                stopped(std::move(stoppedStream), error);
            }
        });
        return stream;
    }

    void captureImage(const std::shared_ptr<ContentFilter>& filter, const StreamConfiguration& configuration,
                      ImageCompletion completion) override {
        [SCScreenshotManager captureImageWithFilter:toNative(*filter)
                                      configuration:toNative(configuration)
                                  completionHandler:^(CGImageRef image, NSError* error) {
                                      deliver(completion, toResult(image, error));
                                  }];
    }
    bool preflightAccess() const override { return CGPreflightScreenCaptureAccess(); }
    bool requestAccess() override { return CGRequestScreenCaptureAccess(); }

private:
    static std::variant<ShareableContent, CaptureError> toResult(SCShareableContent* _Nullable content,
                                                                 NSError* _Nullable error) {
        if (content == nil) {
            return toCaptureError(error);
        }
        ShareableContent result;
        for (SCWindow* window in content.windows) {
            result.windows.push_back(std::make_shared<MacCaptureWindow>(window));
        }
        return result;
    }

    static std::variant<std::shared_ptr<Surface>, CaptureError> toResult(CGImageRef _Nullable image,
                                                                         NSError* _Nullable error) {
        if (image == nullptr) {
            return toCaptureError(error);
        }
        return std::make_shared<ImageSurface>(image);
    }
};

} // namespace

std::unique_ptr<ScreenCapture> makeScreenCapture() {
    return std::make_unique<MacScreenCapture>();
}

} // namespace quillon::macos
