#include "Platform/X11/ScreenCapture.h"

#include "Platform/X11/CaptureErrors.h"
#include "Platform/X11/PicturePorts.h"
#include "Platform/X11/WindowServer.h"
#include "Platform/X11/WindowStream.h"

#include <xcb/composite.h>
#include <xcb/damage.h>

#include <utility>

namespace quillon::x11 {

namespace {

class X11CaptureWindow final : public CaptureWindow {
public:
    X11CaptureWindow(std::shared_ptr<SourceWindows> sources, X11WindowServer& windowServer, WindowID number,
                     std::optional<std::string> name)
        : sources(std::move(sources)), windowServer(windowServer), number(number), name(std::move(name)) {}

    WindowID windowID() const override { return number; }
    std::optional<std::string> title() const override { return name; }

    /// The window, redirected from now on for as long as the record is held.
    const std::shared_ptr<SourceWindow>& source() {
        if (!held || held->state() == SourceWindow::State::gone) {
            held = sources->hold(number);
            copy = windowServer.addCopy(number);
        }
        return held;
    }

private:
    std::shared_ptr<SourceWindows> sources;
    X11WindowServer& windowServer;
    WindowID number;
    std::optional<std::string> name;
    std::shared_ptr<SourceWindow> held;
    RegistrationToken copy;
};

class WindowFilter final : public ContentFilter {
public:
    WindowFilter(std::shared_ptr<SourceWindow> source, double scale) : held(std::move(source)), scale(scale) {}

    double pointPixelScale() const override { return scale; }
    const std::shared_ptr<SourceWindow>& source() const { return held; }

private:
    std::shared_ptr<SourceWindow> held;
    double scale;
};

/// Every object of the ports was made here.
const std::shared_ptr<SourceWindow>& sourceOf(const std::shared_ptr<ContentFilter>& filter) {
    return static_cast<const WindowFilter&>(*filter).source();
}

using Records = std::vector<std::weak_ptr<X11CaptureWindow>>;

void holdWindowsOf(const Records& records) {
    for (const auto& record : records) {
        if (const auto chosen = record.lock()) {
            chosen->source();
        }
    }
}

/// The picture of the source as it is now.
std::variant<std::shared_ptr<Surface>, CaptureError> takePicture(const SourceWindow& source) {
    if (source.state() == SourceWindow::State::gone) {
        return windowGone();
    }
    if (!source.isMapped() || !source.picture()) {
        return windowWithoutPicture();
    }
    auto feed = std::make_shared<PictureFeed>();
    // A copy: the surface is one picture, not a live one. It is freed as soon as a stream's frame replaces it.
    feed->picture = source.picture()->copy();
    return std::make_shared<PictureSurface>(std::move(feed), 0, true);
}

} // namespace

X11ScreenCapture::X11ScreenCapture(Connection& connection, Scheduler& scheduler, const ClientWindows& windows,
                                   X11WindowServer& windowServer)
    : connection(connection), scheduler(scheduler), windowServer(windowServer), serverPause(connection),
      sources(std::make_shared<SourceWindows>(connection, windows)) {}

void X11ScreenCapture::getShareableContent(bool excludingDesktopWindows, bool onScreenWindowsOnly,
                                           ContentCompletion completion) {
    const WindowListOption options = (excludingDesktopWindows ? windowListExcludeDesktopElements : 0) |
                                     (onScreenWindowsOnly ? windowListOnScreenOnly : 0);
    scheduler.mainAsync([this, options, completion = std::move(completion)] {
        const auto windows = windowServer.copyWindowInfo(options, nullWindowID);
        if (!windows) {
            completion(noWindowList());
            return;
        }
        Records records;
        {
            ShareableContent content;
            for (const auto& window : *windows) {
                if (window.number) {
                    auto record =
                        std::make_shared<X11CaptureWindow>(sources, windowServer, *window.number, window.name);
                    records.push_back(record);
                    content.windows.push_back(std::move(record));
                }
            }
            completion(std::move(content));
        }
        scheduler.mainAsync([this, records = std::move(records)]() mutable {
            scheduler.mainAsync([records = std::move(records)] { holdWindowsOf(records); });
        });
    });
}

std::shared_ptr<ContentFilter>
X11ScreenCapture::makeFilter(const std::shared_ptr<CaptureWindow>& desktopIndependentWindow) {
    auto& record = static_cast<X11CaptureWindow&>(*desktopIndependentWindow);
    return std::make_shared<WindowFilter>(record.source(), connection.scale());
}

std::shared_ptr<CaptureStream> X11ScreenCapture::makeStream(const std::shared_ptr<ContentFilter>& filter,
                                                            const StreamConfiguration& configuration,
                                                            StoppedCallback stopped) {
    return std::make_shared<WindowStream>(connection, scheduler, serverPause, sourceOf(filter), configuration,
                                          std::move(stopped));
}

void X11ScreenCapture::captureImage(const std::shared_ptr<ContentFilter>& filter,
                                    const StreamConfiguration& /*configuration*/, ImageCompletion completion) {
    const auto& source = sourceOf(filter);
    source->whenKnown([this, source, completion = std::move(completion)] {
        const auto remaining = source->completeFrom() - std::chrono::steady_clock::now();
        scheduler.mainAfter(std::max<Seconds>(remaining, Seconds::zero()),
                            [source, completion] { completion(takePicture(*source)); });
    });
}

bool X11ScreenCapture::preflightAccess() const {
    const auto isPresent = [this](xcb_extension_t& extension) {
        const auto* data = xcb_get_extension_data(connection.xcb(), &extension);
        return data != nullptr && data->present != 0;
    };
    return isPresent(xcb_composite_id) && isPresent(xcb_damage_id);
}

std::unique_ptr<ScreenCapture> makeScreenCapture(Connection& connection, Scheduler& scheduler,
                                                 const ClientWindows& windows, X11WindowServer& windowServer) {
    return std::make_unique<X11ScreenCapture>(connection, scheduler, windows, windowServer);
}

} // namespace quillon::x11
