#include <vxr/platform/graphics/values/AffineTransform.h>

#include <gtest/gtest.h>

using namespace vxr;

TEST(Rect, IntegralGrowsOutwardsAndEmptyBecomesZero)
{
    EXPECT_EQ(integralRect({ 0.4f, -0.4f, 1.2f, 1.2f }), Rect(0, -1, 2, 2));
    EXPECT_EQ(integralRect({ 3, 4, 5, 6 }), Rect(3, 4, 5, 6));
    EXPECT_EQ(integralRect({ 3, 4, 0, 6 }), Rect());
}

TEST(AffineTransform, PrependAppliesFirstAndAppendLast)
{
    AffineTransform t;
    t.translate(10, 0).scale(2, 3);
    EXPECT_EQ(t.map(Point { 1, 1 }), (Point { 12, 3 }));
    t.append(AffineTransform::makeScale(10, 10));
    EXPECT_EQ(t.map(Point { 1, 1 }), (Point { 120, 30 }));
    ASSERT_TRUE(t.inverted());
    EXPECT_EQ(t.inverted()->map(Point { 120, 30 }), (Point { 1, 1 }));
    EXPECT_FALSE(AffineTransform::makeScale(1, 0).inverted());
}
