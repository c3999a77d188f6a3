#include "CaptureTest.h"

#include "Platform/Panel.h"
#include "Platform/Workspace.h"

namespace quillon::contract {
namespace {

constexpr ScreenRect place{{200, 180}, {420, 330}};

struct RecordingDelegate : PanelDelegate {
    void sendEvent(const PanelEvent& event) override {
        events.push_back(event);
        if (passesOn) {
            panel->sendEventToSuper(event);
        }
    }
    void mouseDown(const PanelEvent& event) override { presses.push_back(event); }

    Panel* panel = nullptr;
    bool passesOn = true;
    std::vector<PanelEvent> events;
    std::vector<PanelEvent> presses;
};

struct RecordingView : ViewDelegate {
    void layout() override { ++layouts; }
    void draw(DrawingContext& context) override {
        ++drawings;
        context.fillRoundedRectangle({{1, 1}, {8, 8}}, 2, {0.5, 0.5});
        const LineSegment line{{0, 0}, {10, 10}};
        context.strokeSegments(std::span(&line, 1), 1.5, {1, 1});
    }

    int layouts = 0;
    int drawings = 0;
};

class PanelContract : public CaptureTest {
protected:
    PanelContract() {
        delegate.panel = panel.get();
        layer->setFrame({{0, 0}, place.size});
        view->addSublayer(*layer);
        view->setResizesWithContainer();
        panel->setContentView(*view);
    }

    /// Shows the panel with a picture, without which nothing of it can be seen or hit.
    void showWithPicture() {
        const auto source = world->openWindow("Sorgente", {{900, 500}, {200, 150}});
        const auto picture = screenshot(capture().makeFilter(record(source)));
        layer->setContents(std::get<std::shared_ptr<Surface>>(picture));
        panel->setLevel(floatingWindowLevel);
        panel->orderFront();
        pass(quietTime);
    }

    RecordingDelegate delegate;
    RecordingView viewDelegate;
    std::unique_ptr<Layer> layer = desktop().views().makeLayer();
    std::unique_ptr<View> view = desktop().views().makeView({{0, 0}, place.size}, viewDelegate);
    std::unique_ptr<Panel> panel = desktop().panels().makePanel(place, delegate);
};

TEST_F(PanelContract, ANewPanelHasItsFrameAndIsNotShown) {
    EXPECT_EQ(panel->frame(), place);
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(PanelContract, OrderingInAndOut) {
    panel->setLevel(floatingWindowLevel);
    panel->orderFront();
    EXPECT_TRUE(panel->isVisible());
    panel->setLevel(normalWindowLevel - 1);
    panel->orderBack();
    EXPECT_TRUE(panel->isVisible());
    panel->orderOut();
    EXPECT_FALSE(panel->isVisible());
    panel->orderFront();
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(PanelContract, OrderingBackShowsAPanelThatWasOut) {
    panel->orderBack();
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(PanelContract, TheFrameIsTakenAtOnceAndTheContentFollows) {
    const int before = viewDelegate.layouts;
    const ScreenRect wanted{{250, 200}, {380, 260}};
    panel->setFrame(wanted, true);
    EXPECT_EQ(panel->frame(), wanted);
    EXPECT_EQ(view->bounds().size, wanted.size);
    EXPECT_TRUE(eventually([&] { return viewDelegate.layouts > before; }));
}

TEST_F(PanelContract, AShownPanelDrawsItsSubviews) {
    RecordingView gripDelegate;
    const auto grip = desktop().views().makeView({{0, 0}, {10, 10}}, gripDelegate);
    view->addSubview(*grip);
    showWithPicture();
    EXPECT_TRUE(eventually([&] { return gripDelegate.drawings > 0; }));
    EXPECT_EQ(grip->bounds(), (WindowRect{{0, 0}, {10, 10}}));
    panel.reset();
    view.reset();
}

TEST_F(PanelContract, AClickReachesTheDelegateWithItsPlaceAndTheInheritedDispatchThePanel) {
    showWithPicture();
    world->click({place.minX() + 40, place.minY() + 30});
    ASSERT_TRUE(eventually([&] { return delegate.events.size() >= 2; }));
    EXPECT_EQ(delegate.events.front().type, EventType::leftMouseDown);
    EXPECT_EQ(delegate.events.back().type, EventType::leftMouseUp);
    EXPECT_NEAR(delegate.events.front().locationInWindow.x, 40, 1);
    EXPECT_NEAR(delegate.events.front().locationInWindow.y, 30, 1);
    EXPECT_EQ(delegate.presses.size(), 1U);
}

TEST_F(PanelContract, AnEventThatIsNotPassedOnGoesNoFurther) {
    delegate.passesOn = false;
    showWithPicture();
    world->click({place.minX() + 40, place.minY() + 30});
    ASSERT_TRUE(eventually([&] { return delegate.events.size() >= 2; }));
    EXPECT_TRUE(stays([&] { return delegate.presses.empty(); }));
}

TEST_F(PanelContract, NeitherShowingNorClickingAPanelActivatesThisProgram) {
    showWithPicture();
    panel->orderOut();
    const auto window = world->openWindow("Primo", {{20, 20}, {300, 200}});
    world->activate(window);
    const auto isFrontmost = [&] {
        const auto application = desktop().workspace().frontmostApplication();
        return application && application->processIdentifier == window.pid;
    };
    ASSERT_TRUE(eventually(isFrontmost));
    panel->setLevel(floatingWindowLevel);
    panel->setAlphaValue(0);
    panel->orderFront();
    panel->animateAlphaValue(1, Seconds(0.1));
    EXPECT_TRUE(stays(isFrontmost));
    world->click({place.minX() + 40, place.minY() + 30});
    ASSERT_TRUE(eventually([&] { return delegate.events.size() >= 2; }));
    EXPECT_TRUE(stays(isFrontmost));
}

TEST_F(PanelContract, APanelOnAScreenHasItsScale) {
    panel->orderFront();
    ASSERT_TRUE(panel->screenBackingScaleFactor());
    EXPECT_GE(*panel->screenBackingScaleFactor(), 1);
}

TEST_F(PanelContract, TheCollectionBehaviourMayChangeWhileShown) {
    panel->setCollectionBehavior({.canJoinAllSpaces = false, .fullScreenAuxiliary = true});
    panel->orderFront();
    panel->setCollectionBehavior({.canJoinAllSpaces = true, .fullScreenAuxiliary = true});
    EXPECT_TRUE(panel->isVisible());
}

} // namespace
} // namespace quillon::contract
