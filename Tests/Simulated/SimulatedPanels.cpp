#include "Simulated/SimulatedPanels.h"

#include "Simulated/Frames.h"
#include "Simulated/Misuse.h"

#include <algorithm>

namespace quillon::simulated {

namespace {

void requireAlpha(double alpha, std::string_view operation) {
    if (!(alpha >= 0 && alpha <= 1)) {
        misuse(fmt::format("{} with the opacity {}", operation, alpha));
    }
}

} // namespace

SimulatedPanel::SimulatedPanel(SimulatedPanels& panels, const ScreenRect& contentRect, PanelDelegate& delegate)
    : panels(panels), delegate(delegate), currentFrame(contentRect) {
    panels.living.push_back(this);
}

SimulatedPanel::~SimulatedPanel() {
    panels.scheduler.requireMain("destroying a panel");
    if (dispatched != nullptr) {
        misuse("a panel was destroyed while it dispatched an event");
    }
    if (content != nullptr) {
        content->setShownByPanel(false);
    }
    std::erase(panels.living, this);
    std::erase(panels.orderedIn, this);
    panels.journal.record("panel.destroy");
}

ScreenRect SimulatedPanel::frame() const {
    panels.scheduler.requireMain("Panel::frame");
    return currentFrame;
}

void SimulatedPanel::setFrame(const ScreenRect& frame, bool display) {
    panels.scheduler.requireMain("Panel::setFrame");
    requireFrame(frame, "Panel::setFrame");
    panels.journal.record("panel.setFrame {} display={}", describe(frame), display);
    currentFrame = frame;
    if (content != nullptr) {
        content->setFrame({{0, 0}, frame.size});
        if (display && isVisible()) {
            content->display();
        }
    }
}

bool SimulatedPanel::isVisible() const {
    panels.scheduler.requireMain("Panel::isVisible");
    return std::find(panels.orderedIn.begin(), panels.orderedIn.end(), this) != panels.orderedIn.end();
}

void SimulatedPanel::setLevel(int level) {
    panels.scheduler.requireMain("Panel::setLevel");
    panels.journal.record("panel.setLevel {}", level);
    currentLevel = level;
}

void SimulatedPanel::setCollectionBehavior(CollectionBehavior behavior) {
    panels.scheduler.requireMain("Panel::setCollectionBehavior");
    panels.journal.record("panel.setCollectionBehavior canJoinAllSpaces={} fullScreenAuxiliary={}",
                          behavior.canJoinAllSpaces, behavior.fullScreenAuxiliary);
    currentBehavior = behavior;
}

void SimulatedPanel::setAlphaValue(double newAlpha) {
    panels.scheduler.requireMain("Panel::setAlphaValue");
    requireAlpha(newAlpha, "Panel::setAlphaValue");
    panels.journal.record("panel.setAlphaValue {}", newAlpha);
    alpha = {newAlpha, newAlpha, panels.scheduler.now(), {}};
}

void SimulatedPanel::animateAlphaValue(double newAlpha, Seconds duration) {
    panels.scheduler.requireMain("Panel::animateAlphaValue");
    requireAlpha(newAlpha, "Panel::animateAlphaValue");
    panels.journal.record("panel.animateAlphaValue {} over {}", newAlpha, duration.count());
    alpha = {alphaValue(), newAlpha, panels.scheduler.now(),
             std::chrono::duration_cast<std::chrono::nanoseconds>(duration)};
}

double SimulatedPanel::alphaValue() const {
    const auto passed = panels.scheduler.now() - alpha.start;
    if (passed >= alpha.duration) {
        return alpha.to;
    }
    return alpha.from + (alpha.to - alpha.from) * (Seconds(passed) / Seconds(alpha.duration));
}

void SimulatedPanel::orderFront() {
    show("orderFront");
    std::erase(panels.orderedIn, this);
    panels.orderedIn.insert(panels.orderedIn.begin(), this);
}

void SimulatedPanel::orderBack() {
    show("orderBack");
    std::erase(panels.orderedIn, this);
    panels.orderedIn.push_back(this);
}

void SimulatedPanel::show(std::string_view operation) {
    panels.scheduler.requireMain(fmt::format("Panel::{}", operation));
    panels.journal.record("panel.{}", operation);
    if (!isVisible() && content != nullptr) {
        content->display();
    }
}

void SimulatedPanel::orderOut() {
    panels.scheduler.requireMain("Panel::orderOut");
    panels.journal.record("panel.orderOut");
    std::erase(panels.orderedIn, this);
}

void SimulatedPanel::setContentView(View& view) {
    panels.scheduler.requireMain("Panel::setContentView");
    auto& newContent = panels.views.require(view, "Panel::setContentView");
    if (content != nullptr) {
        content->setShownByPanel(false);
    }
    newContent.setShownByPanel(true);
    content = &newContent;
    content->setFrame({{0, 0}, currentFrame.size});
}

std::optional<double> SimulatedPanel::screenBackingScaleFactor() const {
    panels.scheduler.requireMain("Panel::screenBackingScaleFactor");
    if (panels.screensKnown && isVisible()) {
        for (const auto& screen : panels.screens.screens()) {
            if (screen.frame.intersects(currentFrame)) {
                return screen.backingScaleFactor;
            }
        }
    }
    return std::nullopt;
}

void SimulatedPanel::sendEventToSuper(const PanelEvent& event) {
    panels.scheduler.requireMain("Panel::sendEventToSuper");
    if (dispatched != &event) {
        misuse("Panel::sendEventToSuper with another event than the one being dispatched");
    }
    inherited.push_back(event);
    if (event.type == EventType::leftMouseDown) {
        delegate.mouseDown(event);
    }
}

void SimulatedPanel::inject(const PanelEvent& event) {
    if (!isVisible()) {
        misuse("input on a panel that is not on screen");
    }
    if (dispatched != nullptr) {
        misuse("input while the panel dispatches an event");
    }
    dispatched = &event;
    delegate.sendEvent(event);
    dispatched = nullptr;
}

std::unique_ptr<Panel> SimulatedPanels::makePanel(const ScreenRect& contentRect, PanelDelegate& delegate) {
    scheduler.requireMain("Panels::makePanel");
    requireFrame(contentRect, "Panels::makePanel");
    journal.record("panels.makePanel {}", describe(contentRect));
    return std::make_unique<SimulatedPanel>(*this, contentRect, delegate);
}

std::vector<SimulatedPanel*> SimulatedPanels::stack() const {
    auto result = orderedIn;
    std::stable_sort(result.begin(), result.end(),
                     [](const auto* a, const auto* b) { return a->level() > b->level(); });
    return result;
}

} // namespace quillon::simulated
