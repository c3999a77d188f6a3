#include "Platform/X11/Panels.h"

#include "Platform/X11/Event.h"
#include "Platform/X11/PicturePorts.h"
#include "Platform/X11/WindowManager.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace quillon::x11 {

namespace {

constexpr Seconds fadeStep{1.0 / 60};

} // namespace

X11Panel::X11Panel(Connection& connection, Scheduler& scheduler, Screens& screens, Keyboard& keyboard,
                   std::shared_ptr<const PictureFormats> formats, std::shared_ptr<FullScreenWatch> fullScreen,
                   const ScreenRect& frame, PanelDelegate& delegate)
    : connection(connection), scheduler(scheduler), screens(screens), formats(std::move(formats)),
      fullScreen(std::move(fullScreen)), delegate(delegate), requestedFrame(frame),
      input(
          connection, scheduler, keyboard, [this] { return pixelFrame(); },
          [this](const PanelEvent& event) { this->delegate.sendEvent(event); }),
      fullScreenChanges(this->fullScreen->observe([this] { followFullScreen(); })) {}

X11Panel::~X11Panel() {
    if (contentView != nullptr) {
        contentView->setOnContents(nullptr);
    }
    removeWindow();
}

PixelRect X11Panel::pixelFrame() const {
    return connection.toPixels(connection.flipped(requestedFrame));
}

void X11Panel::setFrame(const ScreenRect& frame, bool /*display*/) {
    const auto before = pixelFrame();
    requestedFrame = frame;
    if (window && pixelFrame() != before) {
        window->move(pixelFrame());
    }
    if (contentView != nullptr) {
        contentView->setFrame({{0, 0}, frame.size});
    }
}

void X11Panel::setLevel(int level) {
    auto changed = stacking;
    changed.level = level;
    changeStacking(changed);
}

void X11Panel::setCollectionBehavior(CollectionBehavior behavior) {
    isFullScreenAuxiliary = behavior.fullScreenAuxiliary;
    auto changed = stacking;
    changed.onAllDesktops = behavior.canJoinAllSpaces;
    changeStacking(changed);
}

void X11Panel::changeStacking(const PanelStacking& newStacking) {
    const auto before = std::exchange(stacking, newStacking);
    if (isMapped) {
        window->changeStacking(before, stacking);
        followFullScreen();
    }
}

bool X11Panel::liesOverFullScreen() const {
    return isFullScreenAuxiliary && stacking.level > normalWindowLevel && fullScreen->isActiveWindowFullScreen();
}

/// A window cannot change hands without a race with the window manager: another one takes its place.
void X11Panel::followFullScreen() {
    if (isMapped && window->isManaged() == liesOverFullScreen()) {
        makeWindow();
        window->map(stacking);
    }
}

void X11Panel::setAlphaValue(double newAlpha) {
    fade.reset();
    applyAlpha(newAlpha);
}

void X11Panel::applyAlpha(double newAlpha) {
    alpha = newAlpha;
    if (window) {
        window->setOpacity(alpha);
    }
}

void X11Panel::animateAlphaValue(double target, Seconds duration) {
    if (!hasCompositor(connection)) {
        setAlphaValue(target); // nobody would see the steps
        return;
    }
    using Clock = std::chrono::steady_clock;
    fade = scheduler.scheduleRepeatingTimer(fadeStep, [this, target, duration, from = alpha, start = Clock::now()] {
        const double part = Seconds(Clock::now() - start) / duration;
        if (part < 1) {
            applyAlpha(from + (target - from) * part);
        } else {
            setAlphaValue(target);
        }
    });
}

void X11Panel::order(xcb_stack_mode_t mode) {
    if (isMapped) {
        window->restack(mode);
        return;
    }
    isOrderedIn = true;
    showWindow();
}

void X11Panel::showWindow() {
    if (!isOrderedIn || isMapped || contentView == nullptr || !contentView->contentsGeometry()) {
        return;
    }
    makeWindow();
    window->map(stacking);
    isMapped = true;
}

/// Makes the window of a panel with contents, unless there is one of the right kind and of the depth that they have
/// by now.
void X11Panel::makeWindow() {
    auto depth = contentView->contentsGeometry()->depth;
    auto visual = formats->visualOfDepth(depth);
    if (!visual) {
        depth = connection.screen().root_depth;
        visual = connection.screen().root_visual;
    }
    const bool isManaged = !liesOverFullScreen();
    if (window && window->depth() == depth && window->isManaged() == isManaged) {
        return;
    }
    removeWindow();
    window.emplace(connection, pixelFrame(), depth, *visual, isManaged);
    window->setOpacity(alpha);
    events = connection.observeWindow(window->id(), [this](const auto& event) { handle(event); });
    selection = connection.selectInput(window->id(), XCB_EVENT_MASK_EXPOSURE | PanelInput::eventMask);
    canvas.emplace(connection, *formats, window->id(), depth, *visual);
    contentView->setCanvas(&*canvas);
}

void X11Panel::removeWindow() {
    if (contentView != nullptr) {
        contentView->setCanvas(nullptr);
    }
    events.reset();
    selection.reset();
    canvas.reset();
    window.reset();
    exposed.clear();
}

void X11Panel::orderOut() {
    isOrderedIn = false;
    if (std::exchange(isMapped, false)) {
        window->unmap();
    }
}

void X11Panel::setContentView(View& view) {
    contentView = &static_cast<X11View&>(view);
    contentView->setFrame({{0, 0}, requestedFrame.size});
    contentView->setOnContents([this] { showWindow(); });
    if (canvas) {
        contentView->setCanvas(&*canvas);
    }
}

std::optional<double> X11Panel::screenBackingScaleFactor() const {
    if (!isOrderedIn) {
        return std::nullopt;
    }
    const auto all = screens.screens();
    const auto under = std::find_if(all.begin(), all.end(),
                                    [&](const auto& screen) { return screen.frame.intersects(requestedFrame); });
    return under != all.end() ? std::optional(under->backingScaleFactor) : std::nullopt;
}

void X11Panel::sendEventToSuper(const PanelEvent& event) {
    if (event.type == EventType::leftMouseDown) {
        delegate.mouseDown(event);
    }
}

void X11Panel::handle(const xcb_generic_event_t& event) {
    if (eventType(event) != XCB_EXPOSE) {
        input.handle(event);
        return;
    }
    const auto& expose = as<xcb_expose_event_t>(event);
    exposed.push_back({expose.x, expose.y, expose.width, expose.height});
    if (expose.count == 0) {
        const auto areas = std::exchange(exposed, {});
        if (contentView != nullptr) {
            contentView->draw(areas);
        }
    }
}

std::unique_ptr<Panel> X11Panels::makePanel(const ScreenRect& contentRect, PanelDelegate& delegate) {
    if (!formats) {
        formats = std::make_shared<PictureFormats>(connection);
    }
    if (!fullScreen) {
        fullScreen = std::make_shared<FullScreenWatch>(connection);
    }
    return std::make_unique<X11Panel>(connection, scheduler, screens, keyboard, formats, fullScreen, contentRect,
                                      delegate);
}

std::unique_ptr<Panels> makePanels(Connection& connection, Scheduler& scheduler, Screens& screens, Keyboard& keyboard) {
    return std::make_unique<X11Panels>(connection, scheduler, screens, keyboard);
}

} // namespace quillon::x11
