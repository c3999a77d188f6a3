#pragma once

#include "Platform/Drawing.h"
#include "Platform/Geometry.h"
#include "Platform/Surface.h"

#include <memory>

namespace quillon {

/// Shows one picture (CALayer), stretched to its frame (kCAGravityResize). Main thread.
class Layer {
public:
    Layer() = default;
    Layer(const Layer&) = delete;
    Layer& operator=(const Layer&) = delete;
    virtual ~Layer() = default;

    /// In the coordinates of the view it was added to.
    virtual void setFrame(const WindowRect& frame) = 0;
    /// Shows the surface from now on, without an animation, and holds it until it is replaced. Setting the
    /// surface that is shown already means that its picture has changed.
    virtual void setContents(std::shared_ptr<Surface> surface) = 0;
};

/// What a kind of view adds to the platform's view (a subclass of NSView). Main thread.
class ViewDelegate {
public:
    virtual ~ViewDelegate() = default;

    /// The view was resized, or its layout was asked for.
    virtual void layout() {}
    /// Draws the view's content over what lies beneath it.
    virtual void draw(DrawingContext& /*context*/) {}
};

/// A rectangle of a window (NSView, not flipped). Main thread.
class View {
public:
    View() = default;
    View(const View&) = delete;
    View& operator=(const View&) = delete;
    virtual ~View() = default;

    /// In the coordinates of the view it was added to, or of its window.
    virtual void setFrame(const WindowRect& frame) = 0;
    /// The frame's size with the origin at 0, 0.
    [[nodiscard]] virtual WindowRect bounds() const = 0;
    /// The view follows its container's width and height (NSViewWidthSizable | NSViewHeightSizable).
    virtual void setResizesWithContainer() = 0;
    /// Adds the layer to the view's own layer, beneath the subviews. The layer must outlive the view.
    virtual void addSublayer(Layer& layer) = 0;
    /// Adds the view on top of the earlier ones. It must outlive this view.
    virtual void addSubview(View& view) = 0;
    /// Lays the view and its subviews out at once.
    virtual void layoutSubtreeIfNeeded() = 0;
};

/// Makes views and layers. Main thread.
class Views {
public:
    virtual ~Views() = default;

    [[nodiscard]] virtual std::unique_ptr<Layer> makeLayer() = 0;
    /// The delegate must outlive the view. It is not called before `makeView` has returned.
    [[nodiscard]] virtual std::unique_ptr<View> makeView(const WindowRect& frame, ViewDelegate& delegate) = 0;
};

} // namespace quillon
