#include "Platform/X11/Views.h"

#include "Platform/X11/PicturePorts.h"
#include "Platform/X11/Region.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillon::x11 {

namespace {

int area(const PixelRect& rect) {
    return rect.width * rect.height;
}

/// The rectangles of a region; its bounding box where they nearly fill it, which is then faster.
std::vector<PixelRect> areasOf(const xcb_xfixes_fetch_region_reply_t& reply) {
    constexpr double nearly = 0.9;
    const auto rect = [](const xcb_rectangle_t& from) { return PixelRect{from.x, from.y, from.width, from.height}; };
    const auto* rectangles = xcb_xfixes_fetch_region_rectangles(&reply);
    const auto count = xcb_xfixes_fetch_region_rectangles_length(&reply);
    std::vector<PixelRect> areas;
    int sum = 0;
    for (const auto& each : std::span(rectangles, static_cast<std::size_t>(count))) {
        areas.push_back(rect(each));
        sum += area(areas.back());
    }
    const auto extents = rect(reply.extents);
    if (areas.size() > 1 && sum >= nearly * area(extents)) {
        return {extents};
    }
    return areas;
}

} // namespace

// Layer

X11Layer::~X11Layer() {
    if (contents) {
        contents->feed()->onPictureReplaced = nullptr;
    }
}

void X11Layer::setOwner(X11View* view) {
    owner = view;
}

void X11Layer::setFrame(const WindowRect& newFrame) {
    if (frame == newFrame) {
        return;
    }
    frame = newFrame;
    if (owner != nullptr) {
        owner->display();
    }
}

void X11Layer::setContents(std::shared_ptr<Surface> newContents) {
    // Every surface of this platform is one of these.
    auto next = std::static_pointer_cast<PictureSurface>(std::move(newContents));
    const bool isChange = contents && next && next->continues(*contents);
    if (!isChange) {
        if (contents) {
            contents->feed()->onPictureReplaced = nullptr;
        }
        if (next) {
            next->feed()->onPictureReplaced = [this] { drawAll(); };
        }
    }
    contents = std::move(next);
    if (isChange) {
        drawChange();
        return;
    }
    drawAll();
    if (owner != nullptr) {
        owner->contentsReplaced();
    }
}

std::optional<PictureGeometry> X11Layer::contentsGeometry() const {
    return contents ? std::optional(contents->feed()->picture->geometry()) : std::nullopt;
}

void X11Layer::forgetCanvas() {
    fetch.reset();
    scaler.reset();
}

void X11Layer::draw(std::span<const PixelRect> areas) {
    auto* const canvas = owner != nullptr ? owner->canvas() : nullptr;
    if (canvas == nullptr || !contents) {
        return;
    }
    if (!scaler) {
        scaler.emplace(connection, canvas->pictureFormats());
    }
    canvas->draw(contents->feed()->picture, owner->windowRect(frame), areas, *scaler);
}

void X11Layer::drawAll() {
    fetch.reset();
    hasMissed = false;
    expectation.forget();
    if (owner != nullptr) {
        const auto place = owner->windowRect(frame);
        draw({&place, 1});
    }
}

void X11Layer::drawChange() {
    auto* const canvas = owner != nullptr ? owner->canvas() : nullptr;
    if (canvas == nullptr) {
        return;
    }
    const auto& feed = *contents->feed();
    const auto place = owner->windowRect(frame);
    if (canvas->copies(*feed.picture, place)) {
        canvas->drawRegion(*feed.picture, place, feed.damage.id());
    } else if (const auto* changes = expectation.expect(feed.damage.id())) {
        drawChanges(*changes);
    } else {
        fetchChange(feed.damage.id());
    }
}

void X11Layer::fetchChange(xcb_xfixes_region_t region) {
    if (fetch) {
        if (!missed) {
            missed = makeRegion(connection);
        }
        xcb_xfixes_union_region(connection.xcb(), missed.id(), region, missed.id());
        hasMissed = true;
        return;
    }
    fetch = connection.whenReplied(xcb_xfixes_fetch_region(connection.xcb(), region).sequence,
                                   [this](void* reply) { changeArrived(reply); });
}

void X11Layer::changeArrived(const void* reply) {
    fetch.reset();
    if (std::exchange(hasMissed, false)) {
        fetchChange(missed.id());
        missed.reset();
    }
    if (reply == nullptr || !contents) {
        return;
    }
    const auto& [width, height, border, depth, visual] = contents->feed()->picture->geometry();
    auto changes = areasOf(*static_cast<const xcb_xfixes_fetch_region_reply_t*>(reply));
    constexpr double nearlyWhole = 0.9;
    int sum = 0;
    for (const auto& change : changes) {
        sum += area(change);
    }
    if (sum >= nearlyWhole * width * height) {
        changes = {{0, 0, width, height}};
    }
    drawChanges(changes);
    expectation.learn(std::move(changes), width, height);
}

/// Draws what shows the areas of the picture.
void X11Layer::drawChanges(std::span<const PixelRect> changes) {
    if (!scaler) {
        return;
    }
    const auto place = owner->windowRect(frame);
    std::vector<PixelRect> areas;
    for (const auto& change : changes) {
        auto reach = scaler->reachOf(change);
        reach.x += place.x;
        reach.y += place.y;
        areas.push_back(reach);
    }
    draw(areas);
}

// View

X11View::~X11View() {
    for (auto* layer : layers) {
        layer->setOwner(nullptr);
    }
}

void X11View::setFrame(const WindowRect& newFrame) {
    if (frame == newFrame) {
        return;
    }
    const auto old = std::exchange(frame, newFrame);
    gather([&] {
        if (old.size == frame.size) {
            return;
        }
        for (auto* view : subviews) {
            if (view->resizesWithContainer) {
                auto resized = view->frame;
                resized.size.width += frame.size.width - old.size.width;
                resized.size.height += frame.size.height - old.size.height;
                view->setFrame(resized);
            }
        }
        delegate.layout();
    });
}

void X11View::addSublayer(Layer& layer) {
    auto& added = static_cast<X11Layer&>(layer);
    added.setOwner(this);
    layers.push_back(&added);
    display();
}

void X11View::addSubview(View& view) {
    auto& added = static_cast<X11View&>(view);
    added.parent = this;
    subviews.push_back(&added);
    display();
}

void X11View::layoutSubtreeIfNeeded() {
    gather([this] { layOutSubtree(); });
}

void X11View::layOutSubtree() {
    delegate.layout();
    for (auto* view : subviews) {
        view->layOutSubtree();
    }
}

/// One layout moves several views and layers; the window is drawn once, afterwards.
template <class Change>
void X11View::gather(Change change) {
    auto& top = const_cast<X11View&>(root());
    const bool isInner = std::exchange(top.isGathering, true);
    change();
    top.isGathering = isInner;
    display();
}

const X11View& X11View::root() const {
    const auto* view = this;
    while (view->parent != nullptr) {
        view = view->parent;
    }
    return *view;
}

WindowCanvas* X11View::canvas() const {
    return root().ownCanvas;
}

PixelRect X11View::windowRect(const WindowRect& rect) const {
    WindowPoint origin = rect.origin;
    const auto* view = this;
    for (; view->parent != nullptr; view = view->parent) {
        origin.x += view->frame.origin.x;
        origin.y += view->frame.origin.y;
    }
    const auto pixels = [this](double points) { return static_cast<int>(std::lround(points * connection.scale())); };
    const int height = pixels(view->frame.size.height);
    const int left = pixels(origin.x);
    const int top = height - pixels(origin.y + rect.size.height);
    return {left, top, pixels(origin.x + rect.size.width) - left, height - pixels(origin.y) - top};
}

void X11View::contentsReplaced() const {
    if (const auto& callback = root().onContents) {
        callback();
    }
}

void X11View::setCanvas(WindowCanvas* newCanvas) {
    ownCanvas = newCanvas;
    forgetDrawings();
    display();
}

void X11View::forgetDrawings() {
    drawing = {};
    drawnRect.reset();
    for (auto* layer : layers) {
        layer->forgetCanvas();
    }
    for (auto* view : subviews) {
        view->forgetDrawings();
    }
}

void X11View::display() {
    auto& top = const_cast<X11View&>(root());
    if (top.ownCanvas == nullptr || top.isGathering) {
        return;
    }
    std::vector<WindowCanvas::Overlay> overlays;
    top.collectOverlays(overlays);
    top.ownCanvas->setOverlays(overlays);
    const auto everything = top.windowRect(top.bounds());
    top.draw({&everything, 1});
}

void X11View::collectOverlays(std::vector<WindowCanvas::Overlay>& overlays) {
    const auto place = windowRect(bounds());
    if (!drawnRect || drawnRect->width != place.width || drawnRect->height != place.height) {
        drawing =
            drawView(connection, canvas()->pictureFormats(), delegate, place.width, place.height, connection.scale());
    }
    drawnRect = place;
    if (drawing) {
        overlays.push_back({place, drawing.picture.id()});
    }
    for (auto* view : subviews) {
        view->collectOverlays(overlays);
    }
}

void X11View::draw(std::span<const PixelRect> areas) {
    for (auto* layer : layers) {
        layer->draw(areas);
    }
    for (auto* view : subviews) {
        view->draw(areas);
    }
}

std::optional<PictureGeometry> X11View::contentsGeometry() const {
    for (const auto* layer : layers) {
        if (auto geometry = layer->contentsGeometry()) {
            return geometry;
        }
    }
    for (const auto* view : subviews) {
        if (auto geometry = view->contentsGeometry()) {
            return geometry;
        }
    }
    return std::nullopt;
}

std::unique_ptr<Layer> X11Views::makeLayer() {
    return std::make_unique<X11Layer>(connection);
}

std::unique_ptr<View> X11Views::makeView(const WindowRect& frame, ViewDelegate& delegate) {
    return std::make_unique<X11View>(connection, frame, delegate);
}

std::unique_ptr<Views> makeViews(Connection& connection) {
    return std::make_unique<X11Views>(connection);
}

} // namespace quillon::x11
