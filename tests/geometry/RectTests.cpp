#include <vxr/geometry/VXRGeometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace vxr;

TEST(Points, ClampLetsTheMinimumWinAndNaNPass)
{
    EXPECT_EQ(VXRClamp(5, 0, 1), 1);
    EXPECT_EQ(VXRClamp(2, 3, 1), 3);
    EXPECT_TRUE(std::isnan(VXRClamp(std::nanf(""), 0, 1)));
}

TEST(Points, NearlyEqualMeansLessThanAHundredthPerCoordinate)
{
    // The float nearest to 0.01 lies just below the double 0.01, the next one above it.
    const float just = 0.01f, more = std::nextafter(just, 1.0f);
    EXPECT_TRUE(VXRNearlyEqualPoints({ 0, 0 }, { just, -just }));
    for (const Point other : { Point { more, 0 }, { 0, -more }, { std::nanf(""), 0 } })
        EXPECT_FALSE(VXRNearlyEqualPoints({ 0, 0 }, other)) << other;
    EXPECT_TRUE(VXRNearlyEqualSizes({ 10, 10 }, { 10.005f, 9.995f }));
    EXPECT_FALSE(VXRNearlyEqualSizes({ 10, 10 }, { 10, 10.02f }));
    EXPECT_FALSE(VXRNearlyEqualSizes({ 10, 10 }, { 9.98f, 10 }));
}

TEST(Points, AverageLiesHalfWayAndDistancesAgreeWithIt)
{
    const Point a { 1, 2 }, b { 7, 10 };
    EXPECT_EQ(VXRDistance(a, b), 10);
    EXPECT_EQ(VXRDistance(a, VXRAveragePoints(a, b)), 5);
    EXPECT_EQ(
        VXRAddPointToPoint(VXRMultiplyPointScalar(VXRSubtractPoints(b, a), 0.5f), a), VXRAveragePoints(a, b));
}

TEST(Rects, CentresAreTakenInDouble)
{
    // In single precision 16777215 + 1.5 would need a half that the float can't hold on the way.
    EXPECT_EQ(VXRCenterOfRect({ 16777215, 0, 3, 5 }), (Point { 16777216, 2.5f }));
    EXPECT_EQ(VXRCenterRectOverRect({ 100, 100, 4, 6 }, { 0, 0, 10, 10 }), Rect(3, 2, 4, 6));
}

TEST(Rects, SpanGrowScaleAndFlip)
{
    EXPECT_EQ(VXRRectWithPoints({ 5, 1 }, { 2, 7 }), Rect(2, 1, 3, 6));
    EXPECT_EQ(VXRRectWithPoints({ 2, 7 }, { 5, 1 }), Rect(2, 1, 3, 6));
    EXPECT_EQ(VXRGrowRectToPoint({ 0, 0, 10, 10 }, { -5, 20 }), Rect(-5, 0, 15, 20));
    EXPECT_EQ(VXRGrowRectToPoint({ 0, 0, 10, 10 }, { 5, 5 }), Rect(0, 0, 10, 10));
    EXPECT_EQ(VXRMultiplyRectScalar({ 1, 2, 3, 4 }, 2), Rect(2, 4, 6, 8));
    // Flipping makes y relative to the bounds and leaves x: 50 - (35 - 20).
    EXPECT_EQ(VXRFlipRect({ 15, 25, 5, 10 }, { 10, 20, 100, 50 }), Rect(15, 35, 5, 10));
}

TEST(Rects, ContainsOrMatchesIsStrictOnEveryEdge)
{
    const Rect outer { 0, 0, 10, 10 };
    EXPECT_TRUE(VXRContainsOrMatchesRect(outer, { 1, 1, 8, 8 }));
    for (const Rect& inner : { Rect(0, 1, 8, 8), Rect(1, 0, 8, 8), Rect(1, 1, 9, 8), Rect(1, 1, 8, 9),
             Rect(1, 1, 0, 8), Rect(1, 1, 8, 0) })
        EXPECT_FALSE(VXRContainsOrMatchesRect(outer, inner)) << inner;
    EXPECT_FALSE(VXRContainsOrMatchesRect({ 0, 0, 0, 10 }, { 1, 1, 1, 1 }));
}

TEST(Sizes, FitABoxOrGrowToAnAspectRatio)
{
    EXPECT_EQ(VXRScaleSizeWithinSize({ 200, 100 }, { 50, 50 }), (Size { 50, 25 }));
    EXPECT_EQ(VXRScaleSizeWithinSize({ 100, 200 }, { 50, 50 }), (Size { 25, 50 }));
    EXPECT_EQ(VXRScaleSizeWithinSize({ 0, 0 }, { 50, 40 }), (Size { 50, 40 })) << "NaN proportions";
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
        ASSERT_TRUE(r >= 0 && r < 1) << r;
        sum += static_cast<double>(r);
    }
    EXPECT_NEAR(sum / 10000, 0.5, 0.02); // seven standard deviations
}

TEST(Rounding, SendsHalvesTowardsPositiveInfinity)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    struct {
        const char* name;
        float x, rounded;
    } const cases[] = {
        { "HalfUp", 2.5f, 3 },
        { "NegativeHalfUp", -2.5f, -2 },
        { "BelowNegativeHalf", -2.6f, -3 },
        { "BelowHalf", 2.4999f, 2 },
        { "JustBelowOneHalf", 0.49999997f, 0 }, // adding a half first would round it up
        { "MinusOneHalf", -0.5f, -0.0f },
        { "LargestOddWhole", 8388609, 8388609 }, // adding a half first would not be exact
        { "Infinite", -infinity, -infinity },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(VXRRound(c.x), c.rounded) << c.name;
        EXPECT_EQ(std::signbit(VXRRound(c.x)), std::signbit(c.rounded)) << c.name;
    }
    EXPECT_TRUE(std::isnan(VXRRound(std::nanf(""))));
}

TEST(Rounding, RectanglesRoundTheirSizeOrTheirEdgesAndMiddlesLieBetweenThose)
{
    struct {
        Rect r, integral, covered;
        Point middle;
    } const cases[] = {
        { { 0.5f, 0.5f, 1.4f, 1.4f }, { 1, 1, 1, 1 }, { 1, 1, 1, 1 }, { 2, 2 } },
        { { 0.4f, 0.4f, 1.2f, 1.2f }, { 0, 0, 1, 1 }, { 0, 0, 2, 2 }, { 1, 1 } },
        { { -0.5f, -1.5f, 2, 3 }, { 0, -1, 2, 3 }, { 0, -1, 2, 3 }, { 1, 1 } },
        // Edges 0 and 3, 11 and 15; plain middles 1.5 and 12.6.
        { { 0.4f, 10.5f, 2.2f, 4.2f }, { 0, 11, 2, 4 }, { 0, 11, 3, 4 }, { 2, 13 } },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(VXRIntegralRect(c.r), c.integral) << c.r;
        EXPECT_EQ(VXRIntegralRectFor50PercentCoverage(c.r), c.covered) << c.r;
        EXPECT_EQ((Point { VXRRoundedMidX(c.r), VXRRoundedMidY(c.r) }), c.middle) << c.r;
    }
}

TEST(Rounding, FractionalPartCarriesTheSign)
{
    for (float x : { 2.75f, -2.75f, -3.0f, 0.1f, 1e6f + 0.5f })
        EXPECT_EQ(VXRFractionalPart(x), x - std::trunc(x));
}
