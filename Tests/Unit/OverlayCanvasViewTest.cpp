#include "OverlayCanvasView.h"

#include "OverlayTest.h"

namespace quillon {
namespace {

class OverlayCanvasViewTest : public UnitTest {
protected:
    OverlayCanvasView& create(const WindowRect& frame) { return canvas.emplace(frame, *layer); }
    simulated::SimulatedView& view() { return desktop.views().require(canvas->view(), "the test"); }
    simulated::SimulatedView& grip() { return *view().subviews().at(0); }
    WindowRect pictureFrame() { return desktop.views().require(*layer, "the test").frame(); }

    std::unique_ptr<Layer> layer = desktop.views().makeLayer();
    std::optional<OverlayCanvasView> canvas;
};

/// The canvas as a part of a whole overlay.
class OverlayCanvasViewEdgeCases : public OverlayTest {};

TEST_F(OverlayCanvasViewEdgeCases, AfterAResizeTheGripStaysInItsCornerAndThePictureFillsTheBounds) {
    show();
    panel().inject({.type = EventType::leftMouseDown, .locationInWindow = {790, 10}});
    panel().inject({.type = EventType::leftMouseUp, .locationInWindow = {640, 110}});
    ASSERT_EQ(panel().frame().size, (Size{650, 500}));
    EXPECT_EQ(layer().frame(), (WindowRect{{0, 0}, {650, 500}}));
    EXPECT_EQ(panel().contentView()->subviews().at(0)->frame(), (WindowRect{{624, 0}, {26, 26}}));
}

TEST_F(OverlayCanvasViewEdgeCases, TheGripIsDrawnTranslucentOverThePictureAndNothingElseIs) {
    show();
    const auto& content = *panel().contentView();
    ASSERT_EQ(content.sublayers().size(), 1U);
    EXPECT_TRUE(content.drawing().rectangles.empty());
    EXPECT_TRUE(content.drawing().strokes.empty());
    ASSERT_EQ(content.subviews().size(), 1U);
    const auto& drawing = content.subviews().front()->drawing();
    ASSERT_EQ(drawing.rectangles.size(), 1U);
    ASSERT_EQ(drawing.strokes.size(), 1U);
    EXPECT_LT(drawing.rectangles.front().color.alpha, 1);
    EXPECT_LT(drawing.strokes.front().color.alpha, 1);
}

TEST_F(OverlayCanvasViewTest, PictureAndGripAreInPlaceAtOnce) {
    create({{0, 0}, {800, 600}});
    EXPECT_EQ(view().frame(), (WindowRect{{0, 0}, {800, 600}}));
    EXPECT_EQ(pictureFrame(), (WindowRect{{0, 0}, {800, 600}}));
    EXPECT_EQ(grip().frame(), (WindowRect{{774, 0}, {26, 26}}));
}

TEST_F(OverlayCanvasViewTest, ThePictureLiesBeneathTheGrip) {
    create({{0, 0}, {800, 600}});
    EXPECT_EQ(view().sublayers().size(), 1U);
    EXPECT_EQ(view().subviews().size(), 1U);
    EXPECT_TRUE(grip().sublayers().empty());
}

TEST_F(OverlayCanvasViewTest, LayoutUsesTheBoundsWhateverTheOrigin) {
    create({{50, 60}, {400, 300}});
    EXPECT_EQ(pictureFrame(), (WindowRect{{0, 0}, {400, 300}}));
    view().setFrame({{5, 6}, {20, 10}});
    EXPECT_EQ(pictureFrame(), (WindowRect{{0, 0}, {20, 10}}));
    EXPECT_EQ(grip().frame(), (WindowRect{{-6, 0}, {26, 26}}));
}

} // namespace
} // namespace quillon
