#include "Platform/Geometry.h"
#include "Platform/WindowServer.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(GeometryTest, ARectangleKnowsItsEdges) {
    const ScreenRect rect{{10, 20}, {300, 400}};
    EXPECT_EQ(rect.minX(), 10);
    EXPECT_EQ(rect.minY(), 20);
    EXPECT_EQ(rect.maxX(), 310);
    EXPECT_EQ(rect.maxY(), 420);
}

TEST(GeometryTest, RectanglesIntersectWhenTheyShareAnArea) {
    const ScreenRect rect{{0, 0}, {100, 100}};
    EXPECT_TRUE(rect.intersects({{99, 99}, {10, 10}}));
    EXPECT_TRUE(rect.intersects({{-10, -10}, {200, 200}}));
    EXPECT_FALSE(rect.intersects({{100, 0}, {10, 10}})) << "a shared edge is no area";
    EXPECT_FALSE(rect.intersects({{0, 100}, {10, 10}}));
    EXPECT_FALSE(rect.intersects({{-10, 0}, {10, 10}}));
    EXPECT_FALSE(rect.intersects({{50, 50}, {0, 10}})) << "an empty one has none";
}

TEST(GeometryTest, ARectangleContainsItsLowerEdgesOnly) {
    const ScreenRect rect{{10, 20}, {300, 400}};
    EXPECT_TRUE(rect.contains({10, 20}));
    EXPECT_TRUE(rect.contains({309.5, 419.5}));
    EXPECT_FALSE(rect.contains({310, 20}));
    EXPECT_FALSE(rect.contains({10, 420}));
    EXPECT_FALSE(rect.contains({9.5, 20}));
    EXPECT_FALSE(rect.contains({10, 19.5}));
}

TEST(GeometryTest, RectanglesAreNearWhenEverythingDiffersByLessThanTheTolerance) {
    const ScreenRect rect{{10, 20}, {300, 400}};
    EXPECT_TRUE(rect.isNear({{11.5, 18.5}, {301.5, 398.5}}, 2));
    EXPECT_FALSE(rect.isNear({{12, 20}, {300, 400}}, 2));
    EXPECT_FALSE(rect.isNear({{10, 18}, {300, 400}}, 2));
    EXPECT_FALSE(rect.isNear({{10, 20}, {302, 400}}, 2));
    EXPECT_FALSE(rect.isNear({{10, 20}, {300, 398}}, 2));
}

TEST(GeometryTest, AMissingNumberOfABoundsEntryCountsAsZero) {
    EXPECT_EQ(WindowBoundsEntry().rect(), DisplayRect());
    EXPECT_EQ((WindowBoundsEntry{1, 2, 3, 4}.rect()), (DisplayRect{{1, 2}, {3, 4}}));
    EXPECT_EQ((WindowBoundsEntry{std::nullopt, 2, std::nullopt, 4}.rect()), (DisplayRect{{0, 2}, {0, 4}}));
}

} // namespace
} // namespace quillon
