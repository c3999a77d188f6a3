#pragma once

#include "Platform/Views.h"
#include "Simulated/SimulatedScheduler.h"

#include <set>
#include <vector>

namespace quillon::simulated {

class SimulatedView;
class SimulatedViews;

/// A picture that is a number.
class SimulatedSurface final : public Surface {
public:
    explicit SimulatedSurface(int number) : number(number) {}

    const int number;
    /// Set for the surface of a captured frame: its picture is valid as long as the frame is held.
    std::weak_ptr<PixelBuffer> frame;
    bool belongsToFrame = false;

    [[nodiscard]] bool isValid() const { return !belongsToFrame || !frame.expired(); }
};

class SimulatedLayer final : public Layer {
public:
    explicit SimulatedLayer(SimulatedViews& views);
    ~SimulatedLayer() override;

    void setFrame(const WindowRect& frame) override;
    void setContents(std::shared_ptr<Surface> surface) override;

    [[nodiscard]] WindowRect frame() const { return currentFrame; }
    /// Null before any picture was set.
    [[nodiscard]] std::shared_ptr<SimulatedSurface> contents() const { return shown; }

private:
    friend class SimulatedView;

    SimulatedViews& views;
    SimulatedView* container = nullptr;
    WindowRect currentFrame;
    std::shared_ptr<SimulatedSurface> shown;
};

/// What a view drew.
struct Drawing {
    struct RoundedRectangle {
        WindowRect rect;
        double cornerRadius;
        GrayColor color;
    };
    struct Stroke {
        std::vector<LineSegment> segments;
        double lineWidth;
        GrayColor color;
    };

    std::vector<RoundedRectangle> rectangles;
    std::vector<Stroke> strokes;
};

/// Lays itself out at once when its size changes.
class SimulatedView final : public View {
public:
    SimulatedView(SimulatedViews& views, const WindowRect& frame, ViewDelegate& delegate);
    ~SimulatedView() override;

    void setFrame(const WindowRect& frame) override;
    [[nodiscard]] WindowRect bounds() const override;
    void setResizesWithContainer() override;
    void addSublayer(Layer& layer) override;
    void addSubview(View& view) override;
    void layoutSubtreeIfNeeded() override;

    [[nodiscard]] WindowRect frame() const { return currentFrame; }
    [[nodiscard]] bool resizesWithContainer() const { return isFlexible; }
    /// Bottom to top.
    [[nodiscard]] const std::vector<SimulatedLayer*>& sublayers() const { return layers; }
    [[nodiscard]] const std::vector<SimulatedView*>& subviews() const { return children; }
    /// What the view drew when it was displayed last, without its subviews; empty when it never was.
    [[nodiscard]] const Drawing& drawing() const { return lastDrawing; }

    /// Draws the view and its subviews, as a panel does when it comes on screen.
    void display();
    /// A panel shows the view, or does so no longer. Stops the test when the view is shown elsewhere.
    void setShownByPanel(bool shown);

private:
    void requireUncontained(std::string_view operation) const;

    SimulatedViews& views;
    ViewDelegate& delegate;
    WindowRect currentFrame;
    bool isFlexible = false;
    bool isShownByPanel = false;
    SimulatedView* superview = nullptr;
    std::vector<SimulatedLayer*> layers;
    std::vector<SimulatedView*> children;
    Drawing lastDrawing;
};

class SimulatedViews final : public Views {
public:
    SimulatedViews(const SimulatedScheduler& scheduler, Journal& journal) : scheduler(scheduler), journal(journal) {}

    [[nodiscard]] std::unique_ptr<Layer> makeLayer() override;
    [[nodiscard]] std::unique_ptr<View> makeView(const WindowRect& frame, ViewDelegate& delegate) override;

    /// Views and layers that were not destroyed yet.
    [[nodiscard]] std::size_t living() const { return layers.size() + views.size(); }
    /// The simulated object behind a reference. Stops the test when it was destroyed or comes from elsewhere.
    [[nodiscard]] SimulatedLayer& require(Layer& layer, std::string_view operation) const;
    [[nodiscard]] SimulatedView& require(View& view, std::string_view operation) const;

private:
    friend SimulatedLayer;
    friend SimulatedView;

    const SimulatedScheduler& scheduler;
    Journal& journal;
    std::set<const Layer*> layers;
    std::set<const View*> views;
};

} // namespace quillon::simulated
