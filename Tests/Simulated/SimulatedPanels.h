#pragma once

#include "Platform/Panel.h"
#include "Simulated/SimulatedScreens.h"
#include "Simulated/SimulatedViews.h"

#include <vector>

namespace quillon::simulated {

class SimulatedPanels;

class SimulatedPanel final : public Panel {
public:
    SimulatedPanel(SimulatedPanels& panels, const ScreenRect& contentRect, PanelDelegate& delegate);
    ~SimulatedPanel() override;

    [[nodiscard]] ScreenRect frame() const override;
    void setFrame(const ScreenRect& frame, bool display) override;
    [[nodiscard]] bool isVisible() const override;
    void setLevel(int level) override;
    void setCollectionBehavior(CollectionBehavior behavior) override;
    void setAlphaValue(double alpha) override;
    void animateAlphaValue(double alpha, Seconds duration) override;
    void orderFront() override;
    void orderBack() override;
    void orderOut() override;
    void setContentView(View& view) override;
    [[nodiscard]] std::optional<double> screenBackingScaleFactor() const override;
    void sendEventToSuper(const PanelEvent& event) override;

    [[nodiscard]] int level() const { return currentLevel; }
    [[nodiscard]] CollectionBehavior collectionBehavior() const { return currentBehavior; }
    /// At this moment of an animation.
    [[nodiscard]] double alphaValue() const;
    /// Null before any was set.
    [[nodiscard]] SimulatedView* contentView() const { return content; }
    /// The events that were left to the inherited dispatch.
    [[nodiscard]] const std::vector<PanelEvent>& inheritedEvents() const { return inherited; }

    /// The user does something on the panel, which has to be on screen.
    void inject(const PanelEvent& event);

private:
    struct Animation {
        double from;
        double to;
        std::chrono::nanoseconds start;
        std::chrono::nanoseconds duration;
    };

    void show(std::string_view operation);

    SimulatedPanels& panels;
    PanelDelegate& delegate;
    ScreenRect currentFrame;
    int currentLevel = normalWindowLevel;
    CollectionBehavior currentBehavior;
    Animation alpha{1, 1, {}, {}};
    SimulatedView* content = nullptr;
    /// The event that the delegate is being called with.
    const PanelEvent* dispatched = nullptr;
    std::vector<PanelEvent> inherited;
};

class SimulatedPanels final : public Panels {
public:
    SimulatedPanels(const SimulatedScheduler& scheduler, const SimulatedScreens& screens, SimulatedViews& views,
                    Journal& journal)
        : scheduler(scheduler), screens(screens), views(views), journal(journal) {}

    [[nodiscard]] std::unique_ptr<Panel> makePanel(const ScreenRect& contentRect, PanelDelegate& delegate) override;

    /// The living panels in the order of their creation.
    [[nodiscard]] const std::vector<SimulatedPanel*>& all() const { return living; }
    /// The visible panels, front to back.
    [[nodiscard]] std::vector<SimulatedPanel*> stack() const;
    /// While false, every panel says that it is on no screen.
    void setScreensKnown(bool known) { screensKnown = known; }

private:
    friend SimulatedPanel;

    const SimulatedScheduler& scheduler;
    const SimulatedScreens& screens;
    SimulatedViews& views;
    Journal& journal;
    std::vector<SimulatedPanel*> living;
    /// Those that are ordered in, front to back, levels aside.
    std::vector<SimulatedPanel*> orderedIn;
    bool screensKnown = true;
};

} // namespace quillon::simulated
