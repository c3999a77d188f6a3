#pragma once

#include "Platform/Views.h"
#include "Platform/X11/CapturedPicture.h"
#include "Platform/X11/Connection.h"
#include "Platform/X11/ExpectedChange.h"
#include "Platform/X11/PictureScaler.h"
#include "Platform/X11/ViewDrawing.h"
#include "Platform/X11/WindowCanvas.h"

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace quillon::x11 {

class X11View;

/// Shows captured pictures in a view. Main thread.
class X11Layer final : public Layer {
public:
    explicit X11Layer(Connection& connection)
        : connection(connection), expectation(connection, [this](auto region) { fetchChange(region); }) {}
    ~X11Layer() override;

    void setFrame(const WindowRect& newFrame) override;
    void setContents(std::shared_ptr<Surface> newContents) override;

    /// The view that it was added to; null takes it out.
    void setOwner(X11View* view);
    /// Draws areas of the window.
    void draw(std::span<const PixelRect> areas);
    /// What the contents' picture needs of a window; none without contents.
    [[nodiscard]] std::optional<PictureGeometry> contentsGeometry() const;
    /// Frees what it holds at the server to draw on a window.
    void forgetCanvas();

private:
    void drawAll();
    void drawChange();
    void fetchChange(xcb_xfixes_region_t region);
    void changeArrived(const void* reply);
    void drawChanges(std::span<const PixelRect> changes);

    Connection& connection;
    X11View* owner = nullptr;
    WindowRect frame;
    std::shared_ptr<PictureSurface> contents;
    std::optional<PictureScaler> scaler;
    ExpectedChange expectation;
    /// The question for what has changed is on its way.
    RegistrationToken fetch;
    /// What has changed since that question was asked.
    Region missed;
    bool hasMissed = false;
};

/// Main thread.
class X11View final : public View {
public:
    X11View(Connection& connection, const WindowRect& frame, ViewDelegate& delegate)
        : connection(connection), delegate(delegate), frame(frame) {}
    ~X11View() override;

    void setFrame(const WindowRect& newFrame) override;
    WindowRect bounds() const override { return {{0, 0}, frame.size}; }
    void setResizesWithContainer() override { resizesWithContainer = true; }
    void addSublayer(Layer& layer) override;
    void addSubview(View& view) override;
    void layoutSubtreeIfNeeded() override;

    /// For a content view: called when a picture in the tree was replaced by another one.
    void setOnContents(std::function<void()> callback) { onContents = std::move(callback); }
    void contentsReplaced() const;
    /// For a content view: shows the tree on the canvas, which must stay until it is replaced; null for none.
    void setCanvas(WindowCanvas* newCanvas);
    /// The canvas of the window that the view is in.
    [[nodiscard]] WindowCanvas* canvas() const;
    /// A rectangle of this view as one of the window.
    [[nodiscard]] PixelRect windowRect(const WindowRect& rect) const;
    /// For a content view: draws areas of the window, which has lost them.
    void draw(std::span<const PixelRect> areas);
    /// What the first picture in the tree needs of a window; none without one.
    [[nodiscard]] std::optional<PictureGeometry> contentsGeometry() const;
    /// Brings the drawings over the pictures up to date, and the window with them, unless more changes are on the way.
    void display();

private:
    [[nodiscard]] const X11View& root() const;
    template <class Change>
    void gather(Change change);
    void layOutSubtree();
    void collectOverlays(std::vector<WindowCanvas::Overlay>& overlays);
    void forgetDrawings();

    Connection& connection;
    ViewDelegate& delegate;
    WindowRect frame;
    bool resizesWithContainer = false;
    /// Of a content view: the window is drawn once, when all changes are made.
    bool isGathering = false;
    X11View* parent = nullptr;
    std::function<void()> onContents;
    WindowCanvas* ownCanvas = nullptr;
    std::vector<X11Layer*> layers;
    std::vector<X11View*> subviews;
    /// What the delegate drew at `drawnRect`'s size.
    DrawnPicture drawing;
    std::optional<PixelRect> drawnRect;
};

class X11Views final : public Views {
public:
    explicit X11Views(Connection& connection) : connection(connection) {}

    std::unique_ptr<Layer> makeLayer() override;
    std::unique_ptr<View> makeView(const WindowRect& frame, ViewDelegate& delegate) override;

private:
    Connection& connection;
};

} // namespace quillon::x11
