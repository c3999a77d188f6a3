#include "Simulated/SimulatedViews.h"

#include "Simulated/Misuse.h"

namespace quillon::simulated {

namespace {

class Recorder final : public DrawingContext {
public:
    void fillRoundedRectangle(const WindowRect& rect, double cornerRadius, GrayColor color) override {
        drawing.rectangles.push_back({rect, cornerRadius, color});
    }
    void strokeSegments(std::span<const LineSegment> segments, double lineWidth, GrayColor color) override {
        drawing.strokes.push_back({{segments.begin(), segments.end()}, lineWidth, color});
    }

    Drawing drawing;
};

} // namespace

SimulatedLayer::SimulatedLayer(SimulatedViews& views) : views(views) {
    views.layers.insert(this);
}

SimulatedLayer::~SimulatedLayer() {
    views.scheduler.requireMain("destroying a layer");
    if (container != nullptr) {
        misuse("a layer was destroyed before the view that shows it");
    }
    views.layers.erase(this);
}

void SimulatedLayer::setFrame(const WindowRect& frame) {
    views.scheduler.requireMain("Layer::setFrame");
    currentFrame = frame;
}

void SimulatedLayer::setContents(std::shared_ptr<Surface> surface) {
    views.scheduler.requireMain("Layer::setContents");
    auto picture = std::dynamic_pointer_cast<SimulatedSurface>(surface);
    if (!picture) {
        misuse("Layer::setContents without a picture of this desktop");
    }
    if (!picture->isValid()) {
        misuse("Layer::setContents with the picture of a frame that was let go of");
    }
    views.journal.record("layer.setContents {}", picture->number);
    shown = std::move(picture);
}

SimulatedView::SimulatedView(SimulatedViews& views, const WindowRect& frame, ViewDelegate& delegate)
    : views(views), delegate(delegate), currentFrame(frame) {
    views.views.insert(this);
}

SimulatedView::~SimulatedView() {
    views.scheduler.requireMain("destroying a view");
    requireUncontained("destroying a view");
    for (auto* layer : layers) {
        layer->container = nullptr;
    }
    for (auto* child : children) {
        child->superview = nullptr;
    }
    views.views.erase(this);
}

void SimulatedView::setFrame(const WindowRect& frame) {
    views.scheduler.requireMain("View::setFrame");
    const auto growth = Size{frame.size.width - currentFrame.size.width, frame.size.height - currentFrame.size.height};
    currentFrame = frame;
    if (growth == Size()) {
        return;
    }
    for (auto* child : children) {
        if (child->isFlexible) {
            auto adapted = child->frame();
            adapted.size.width += growth.width;
            adapted.size.height += growth.height;
            child->setFrame(adapted);
        }
    }
    delegate.layout();
}

WindowRect SimulatedView::bounds() const {
    views.scheduler.requireMain("View::bounds");
    return {{0, 0}, currentFrame.size};
}

void SimulatedView::setResizesWithContainer() {
    views.scheduler.requireMain("View::setResizesWithContainer");
    isFlexible = true;
}

void SimulatedView::addSublayer(Layer& layer) {
    views.scheduler.requireMain("View::addSublayer");
    auto& added = views.require(layer, "View::addSublayer");
    if (added.container != nullptr) {
        misuse("View::addSublayer with a layer that a view shows already");
    }
    added.container = this;
    layers.push_back(&added);
}

void SimulatedView::addSubview(View& view) {
    views.scheduler.requireMain("View::addSubview");
    auto& added = views.require(view, "View::addSubview");
    added.requireUncontained("View::addSubview");
    added.superview = this;
    children.push_back(&added);
}

void SimulatedView::layoutSubtreeIfNeeded() {
    views.scheduler.requireMain("View::layoutSubtreeIfNeeded");
    delegate.layout();
    for (auto* child : children) {
        child->layoutSubtreeIfNeeded();
    }
}

void SimulatedView::display() {
    Recorder recorder;
    delegate.draw(recorder);
    lastDrawing = std::move(recorder.drawing);
    for (auto* child : children) {
        child->display();
    }
}

void SimulatedView::setShownByPanel(bool shown) {
    if (shown) {
        requireUncontained("Panel::setContentView");
    }
    isShownByPanel = shown;
}

void SimulatedView::requireUncontained(std::string_view operation) const {
    if (superview != nullptr || isShownByPanel) {
        misuse(fmt::format("{}, which a {} still shows", operation, isShownByPanel ? "panel" : "view"));
    }
}

std::unique_ptr<Layer> SimulatedViews::makeLayer() {
    scheduler.requireMain("Views::makeLayer");
    return std::make_unique<SimulatedLayer>(*this);
}

std::unique_ptr<View> SimulatedViews::makeView(const WindowRect& frame, ViewDelegate& delegate) {
    scheduler.requireMain("Views::makeView");
    return std::make_unique<SimulatedView>(*this, frame, delegate);
}

SimulatedLayer& SimulatedViews::require(Layer& layer, std::string_view operation) const {
    if (!layers.contains(&layer)) {
        misuse(fmt::format("{} with a layer that is not a living one of this desktop", operation));
    }
    return static_cast<SimulatedLayer&>(layer);
}

SimulatedView& SimulatedViews::require(View& view, std::string_view operation) const {
    if (!views.contains(&view)) {
        misuse(fmt::format("{} with a view that is not a living one of this desktop", operation));
    }
    return static_cast<SimulatedView&>(view);
}

} // namespace quillon::simulated
