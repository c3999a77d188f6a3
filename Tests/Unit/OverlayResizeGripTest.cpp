#include "OverlayResizeGrip.h"

#include "UnitTest.h"

namespace quillon {
namespace {

class OverlayResizeGripTest : public UnitTest {
protected:
    const simulated::Drawing& draw(const WindowRect& frame) {
        auto& view = desktop.views().require(grip.view(), "the test");
        view.setFrame(frame);
        view.display();
        return view.drawing();
    }
    static void expectSegment(const LineSegment& segment, WindowPoint from, WindowPoint to) {
        EXPECT_EQ(segment.from, from);
        EXPECT_EQ(segment.to, to);
    }

    OverlayResizeGrip grip;
};

TEST_F(OverlayResizeGripTest, ANewGripIsEmpty) {
    EXPECT_EQ(grip.view().bounds(), WindowRect());
}

TEST_F(OverlayResizeGripTest, TheBadgeIsATranslucentBlackRoundedRectangle) {
    const auto& drawing = draw({{774, 0}, {26, 26}});
    ASSERT_EQ(drawing.rectangles.size(), 1U);
    const auto& badge = drawing.rectangles.front();
    EXPECT_EQ(badge.rect, (WindowRect{{3, 3}, {20, 20}}));
    EXPECT_EQ(badge.cornerRadius, 5);
    EXPECT_EQ(badge.color.white, 0);
    EXPECT_EQ(badge.color.alpha, 0.28);
}

TEST_F(OverlayResizeGripTest, ThreeDiagonalsAreStrokedAsOnePath) {
    const auto& drawing = draw({{774, 0}, {26, 26}});
    ASSERT_EQ(drawing.strokes.size(), 1U);
    const auto& stroke = drawing.strokes.front();
    EXPECT_EQ(stroke.lineWidth, 1.6);
    EXPECT_EQ(stroke.color.white, 1);
    EXPECT_EQ(stroke.color.alpha, 0.88);
    ASSERT_EQ(stroke.segments.size(), 3U);
    expectSegment(stroke.segments[0], {19, 5}, {21, 7});
    expectSegment(stroke.segments[1], {14, 5}, {21, 12});
    expectSegment(stroke.segments[2], {9, 5}, {21, 17});
}

TEST_F(OverlayResizeGripTest, TheDiagonalsFollowTheRightEdge) {
    const auto& drawing = draw({{0, 0}, {40, 30}});
    EXPECT_EQ(drawing.rectangles.front().rect, (WindowRect{{3, 3}, {34, 24}}));
    expectSegment(drawing.strokes.front().segments[0], {33, 5}, {35, 7});
}

} // namespace
} // namespace quillon
