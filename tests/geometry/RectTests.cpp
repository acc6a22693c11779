#include <vxr/geometry/VXRGeometry.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;

TEST(Points, ClampLetsTheMinimumWinAndNaNPass)
{
    EXPECT_EQ(VXRClamp(5, 0, 1), 1);
    EXPECT_EQ(VXRClamp(-5, 0, 1), 0);
    EXPECT_EQ(VXRClamp(2, 3, 1), 3);
    EXPECT_TRUE(std::isnan(VXRClamp(std::nanf(""), 0, 1)));
}

TEST(Points, NearlyEqualMeansLessThanAHundredthPerCoordinate)
{
    EXPECT_TRUE(VXRNearlyEqualPoints({ 0, 0 }, { 0.0099f, -0.0099f }));
    // The float nearest to 0.01 lies just below the double 0.01, the next one above it.
    EXPECT_TRUE(VXRNearlyEqualPoints({ 0, 0 }, { 0.01f, 0 }));
    EXPECT_FALSE(VXRNearlyEqualPoints({ 0, 0 }, { std::nextafter(0.01f, 1.0f), 0 }));
    EXPECT_FALSE(VXRNearlyEqualPoints({ 0, 0 }, { 0, -0.0101f }));
    EXPECT_FALSE(VXRNearlyEqualPoints({ 0, 0 }, { std::nanf(""), 0 }));
    EXPECT_TRUE(VXRNearlyEqualSizes({ 10, 10 }, { 10.005f, 9.995f }));
    EXPECT_FALSE(VXRNearlyEqualSizes({ 10, 10 }, { 10, 10.02f }));
}

TEST(Points, AverageLiesHalfWayAndDistancesAgreeWithIt)
{
    const Point a { 1, 2 }, b { 7, 10 };
    EXPECT_EQ(VXRAveragePoints(a, b), (Point { 4, 6 }));
    EXPECT_EQ(VXRDistance(a, b), 10);
    EXPECT_EQ(VXRDistance(a, VXRAveragePoints(a, b)), 5);
    EXPECT_EQ(VXRAddPointToPoint(VXRSubtractPoints(b, a), a), b);
    EXPECT_EQ(VXRMultiplyPointScalar(a, -2), (Point { -2, -4 }));
}

TEST(Rects, CentresAreTakenInDouble)
{
    // In single precision 16777215 + 1.5 would need a half that the float can't hold on the way.
    EXPECT_EQ(VXRCenterOfRect({ 16777215, 0, 3, 5 }), (Point { 16777216, 2.5f }));
    EXPECT_EQ(VXRCenterRectOverRect({ 100, 100, 4, 6 }, { 0, 0, 10, 10 }), Rect(3, 2, 4, 6));
}

TEST(Rects, SpanPointsInAnyOrderAndGrowToPoints)
{
    EXPECT_EQ(VXRRectWithPoints({ 5, 1 }, { 2, 7 }), Rect(2, 1, 3, 6));
    EXPECT_EQ(VXRRectWithPoints({ 2, 7 }, { 5, 1 }), Rect(2, 1, 3, 6));
    EXPECT_EQ(VXRGrowRectToPoint({ 0, 0, 10, 10 }, { -5, 20 }), Rect(-5, 0, 15, 20));
    EXPECT_EQ(VXRGrowRectToPoint({ 0, 0, 10, 10 }, { 5, 5 }), Rect(0, 0, 10, 10));
    EXPECT_EQ(VXRMultiplyRectScalar({ 1, 2, 3, 4 }, 2), Rect(2, 4, 6, 8));
}

TEST(Rects, FlippingMakesYRelativeToTheBoundsAndLeavesX)
{
    EXPECT_EQ(VXRFlipRect({ 15, 25, 5, 10 }, { 10, 20, 100, 50 }), Rect(15, 35, 5, 10)); // 50 - (35 - 20)
    EXPECT_EQ(VXRFlipRect({ 1, 0, 1, 10 }, { 0, 0, 100, 100 }), Rect(1, 90, 1, 10));
}

TEST(Rects, ContainsOrMatchesIsStrictOnEveryEdge)
{
    const Rect outer { 0, 0, 10, 10 };
    EXPECT_TRUE(VXRContainsOrMatchesRect(outer, { 1, 1, 8, 8 }));
    EXPECT_FALSE(VXRContainsOrMatchesRect(outer, outer));
    for (const Rect& inner : { Rect(0, 1, 8, 8), Rect(1, 0, 8, 8), Rect(1, 1, 9, 8), Rect(1, 1, 8, 9),
             Rect(1, 1, 0, 8), Rect(1, 1, 8, 0) })
        EXPECT_FALSE(VXRContainsOrMatchesRect(outer, inner)) << inner;
    EXPECT_FALSE(VXRContainsOrMatchesRect({ 0, 0, 0, 10 }, { 1, 1, 1, 1 }));
}

TEST(Sizes, FitWithinABoxAndKeepTheirProportions)
{
    EXPECT_EQ(VXRScaleSizeWithinSize({ 200, 100 }, { 50, 50 }), (Size { 50, 25 }));
    EXPECT_EQ(VXRScaleSizeWithinSize({ 100, 200 }, { 50, 50 }), (Size { 25, 50 }));
    EXPECT_EQ(VXRScaleSizeWithinSize({ 3, 3 }, { 50, 50 }), (Size { 50, 50 }));
    EXPECT_EQ(VXRScaleSizeWithinSize({ 0, 0 }, { 50, 40 }), (Size { 50, 40 })) << "NaN proportions";
}

TEST(Sizes, GrowToAnAspectRatio)
{
    struct {
        const char* name;
        Size s, ratio, result;
    } const cases[] = {
        { "Same", { 4, 3 }, { 4, 3 }, { 4, 3 } },
        { "NoWidth", { 10, 10 }, { 0, 3 }, { 10, 10 } },
        { "NoHeight", { 10, 10 }, { 3, 0 }, { 10, 10 } },
        { "Wider", { 10, 10 }, { 4, 2 }, { 20, 10 } },
        { "Taller", { 10, 10 }, { 2, 4 }, { 10, 20 } },
        { "EqualWidthShrinks", { 10, 10 }, { 10, 20 }, { 5, 10 } }, // the width is recomputed, not enclosed
        { "EqualHeightShrinks", { 10, 10 }, { 20, 10 }, { 10, 5 } },
    };
    for (const auto& c : cases)
        EXPECT_EQ(VXRSizeWithAspectRatio(c.s, c.ratio), c.result) << c.name;
}

TEST(Random, FillsTheUnitIntervalWithoutItsEnd)
{
    double sum = 0;
    for (int i = 0; i < 10000; ++i) {
        const float r = VXRRandom();
        ASSERT_GE(r, 0);
        ASSERT_LT(r, 1);
        sum += static_cast<double>(r);
    }
    EXPECT_NEAR(sum / 10000, 0.5, 0.02); // seven standard deviations
}
