#include <vxr/geometry/VXRGeometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace vxr;

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

struct RoundingCase {
    const char* name;
    float x, rounded;
};

const RoundingCase roundingCases[] = {
    { "HalfUp", 2.5f, 3 },
    { "NegativeHalfUp", -2.5f, -2 },
    { "BelowNegativeHalf", -2.6f, -3 },
    { "BelowHalf", 2.4999f, 2 },
    { "JustBelowOneHalf", 0.49999997f, 0 }, // adding a half first would round it up
    { "MinusOneHalf", -0.5f, -0.0f },
    { "JustBelowMinusOneHalf", -0.50000006f, -1 },
    { "LargestOddWhole", 8388609, 8388609 }, // adding a half first would not be exact
    { "Huge", 3e38f, 3e38f },
    { "Infinite", -infinity, -infinity },
};

} // namespace

TEST(Rounding, SendsHalvesTowardsPositiveInfinity)
{
    for (const RoundingCase& c : roundingCases) {
        EXPECT_EQ(VXRRound(c.x), c.rounded) << c.name;
        EXPECT_EQ(std::signbit(VXRRound(c.x)), std::signbit(c.rounded)) << c.name;
    }
    EXPECT_TRUE(std::isnan(VXRRound(std::nanf(""))));
}

TEST(Rounding, IntegralRectRoundsTheSizeAndFiftyPercentCoverageTheEdges)
{
    struct {
        Rect r, integral, covered;
    } const cases[] = {
        { { 0.5f, 0.5f, 1.4f, 1.4f }, { 1, 1, 1, 1 }, { 1, 1, 1, 1 } },
        { { 0.4f, 0.4f, 1.2f, 1.2f }, { 0, 0, 1, 1 }, { 0, 0, 2, 2 } },
        { { -0.5f, -1.5f, 2, 3 }, { 0, -1, 2, 3 }, { 0, -1, 2, 3 } },
        { { 0.25f, 0.75f, 0.25f, 0.5f }, { 0, 1, 0, 1 }, { 0, 1, 1, 0 } },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(VXRIntegralRect(c.r), c.integral) << c.r;
        EXPECT_EQ(VXRIntegralRectFor50PercentCoverage(c.r), c.covered) << c.r;
    }
}

TEST(Rounding, MiddlesLieBetweenTheRoundedEdges)
{
    const Rect r { 0.4f, 10.5f, 2.2f, 4.2f }; // edges 0 and 3, 11 and 15; plain middles 1.5 and 12.6
    EXPECT_EQ(VXRRoundedMinX(r), 0);
    EXPECT_EQ(VXRRoundedMaxX(r), 3);
    EXPECT_EQ(VXRRoundedMidX(r), 2);
    EXPECT_EQ(VXRRoundedMinY(r), 11);
    EXPECT_EQ(VXRRoundedMaxY(r), 15);
    EXPECT_EQ(VXRRoundedMidY(r), 13);
}

TEST(Rounding, FractionalPartCarriesTheSign)
{
    EXPECT_EQ(VXRFractionalPart(2.75f), 0.75f);
    EXPECT_EQ(VXRFractionalPart(-2.75f), -0.75f);
    EXPECT_EQ(VXRFractionalPart(-3), 0);
    for (float x : { 0.1f, 17.3f, -17.3f, 1e6f + 0.5f })
        EXPECT_EQ(std::trunc(x) + VXRFractionalPart(x), x);
}
