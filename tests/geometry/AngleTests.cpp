#include <vxr/geometry/VXRGeometry.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>
#include <random>

using namespace vxr;

namespace {
constexpr float pi = 3.14159274f;
constexpr float infinity = std::numeric_limits<float>::infinity();
const float notANumber = std::nanf("");
} // namespace

TEST(Angles, NormaliseIntoOneTurn)
{
    EXPECT_EQ(VXRNormalizeAngleInDegrees(-30), 330);
    EXPECT_EQ(VXRNormalizeAngleInDegrees(-360), 0);
    EXPECT_EQ(VXRNormalizeAngleInDegrees(725.5f), 5.5f);
    EXPECT_FLOAT_EQ(VXRNormalizeAngleInRadians(-pi / 2), 1.5f * pi);
    EXPECT_FLOAT_EQ(VXRNormalizeAngleInRadians(7), 0.71681470f); // 7 - 2 pi
    EXPECT_TRUE(std::isnan(VXRNormalizeAngleInDegrees(notANumber)));
}

TEST(Angles, OfVectorsOnAndNearTheAxes)
{
    struct {
        float dx, dy, angle;
    } const cases[] = {
        { 0, 0, 1.5707963705f },
        { 0, 5, 1.5707963705f },
        { 0.0009f, -5, -1.5707962513f }, // no exact negative
        { -3, -0.0005f, pi },
        { 1, 0.0005f, 0 }, // below the threshold of 0.001
        { -1, -1, -2.3561945f },
        // So near to the x axis the arc sine keeps what the cosine has lost, and is negated twice.
        { 1000, 0.1f, 1e-4f },
        { 1000, -0.1f, 1e-4f },
    };
    for (const auto& c : cases)
        EXPECT_FLOAT_EQ(VXRAngleFromDelta(c.dx, c.dy), c.angle) << c.dx << ' ' << c.dy;
    EXPECT_EQ(std::bit_cast<unsigned>(VXRAngleFromDelta(0, -5)), 0xBFC90FDAu);
    EXPECT_TRUE(std::isnan(VXRAngleFromDelta(notANumber, notANumber)));
}

TEST(Angles, AgreeWithTheArcTangentAwayFromTheAxes)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> side(-100, 100);
    for (int i = 0; i < 1000; ++i) {
        const float dx = side(random), dy = side(random);
        if (std::fabs(dx) < 1 || std::fabs(dy) < 1)
            continue;
        // The arc cosine of a float loses half of its digits near the x axis.
        EXPECT_NEAR(VXRAngleFromDelta(dx, dy), std::atan2(dy, dx), 1e-5) << dx << ' ' << dy;
        Point end;
        VXROriginRotate(VXRDistance({ dx, dy }, {}), VXRAngleFromDelta(dx, dy), &end);
        EXPECT_NEAR(end.x, dx, 1e-3);
        EXPECT_NEAR(end.y, dy, 1e-3);
    }
}

TEST(Angles, ShiftConstrainsDragsToEightDirections)
{
    struct {
        Point delta, snapped;
    } const cases[] = { { { 10, 3 }, { 10, 0 } }, { { 10, -3 }, { 10, 0 } }, { { 4, 5 }, { 5, 5 } },
        { { -3, 10 }, { 0, 10 } }, { { -5, 4 }, { -5, 5 } }, { { -10, -3 }, { -10, 0 } },
        { { -4, -5 }, { -5, -5 } }, { { 3, -10 }, { 0, -10 } }, { { 4, -5 }, { 5, -5 } } };
    for (const auto& c : cases)
        EXPECT_EQ(VXRShiftConstrainDelta(c.delta), c.snapped) << c.delta;
    EXPECT_EQ(VXRShiftConstrainDelta({ 2, notANumber }).x, 2);
}

TEST(LineAndRect, SegmentsTouchTheRectangle)
{
    const float edge = std::nextafter(1.0f, 2.0f), above = std::nextafter(2.0f, 3.0f);
    struct {
        const char* name;
        Point a, b;
        bool touches;
        Rect r { 0, 0, 10, 10 };
    } const cases[] = {
        { "AlongAnEdge", { -5, 10 }, { 15, 10 }, true },
        { "BeyondThatEdge", { -5, 10.001f }, { 15, 10.001f }, false },
        { "AcrossACorner", { -2, 5 }, { 5, 12 }, true },
        { "PastACorner", { -6, 5 }, { 5, 16 }, false },
        { "OnlyTheCorner", { -5, 5 }, { 5, -5 }, true },
        { "EndsOnTheBorder", { 10, 5 }, { 20, 5 }, true },
        { "Apart", { 11, 0 }, { 20, 10 }, false },
        { "Far", { -1e30f, 5 }, { 1e30f, 5 }, true },
        { "FarPast", { -1e30f, 1 }, { 1, 1e30f }, false },
        // Bisections that no further number would end.
        { "NeighboursAtACorner", { 1, 2 }, { edge, above }, false, { edge, 1, 1, 1 } },
        { "NotANumber", { 0, -1 }, { infinity, std::numeric_limits<float>::quiet_NaN() }, false },
        { "NegativeSize", { -5, 20 }, { 20, -5 }, false, { 10, 10, -10, -10 } },
        { "NegativeSizeFar", { -1e30f, 5 }, { 1e30f, 5 }, false, { 10, 10, -10, -10 } },
        { "Infinite", { -infinity, 1.5f }, { 1.5f, infinity }, false, { edge, 1, 1, 1 } },
    };
    for (const auto& c : cases) {
        EXPECT_EQ(VXRLineIntersectsRect(c.a, c.b, c.r), c.touches) << c.name;
        EXPECT_EQ(VXRLineIntersectsRect(c.b, c.a, c.r), c.touches) << c.name << " backwards";
    }
}

TEST(LineAndRect, OutcodesNameOneSidePerAxis)
{
    const Rect r { 0, 0, 10, 10 };
    EXPECT_EQ(_compute_outcode(11, -1, r), 6);
    EXPECT_EQ(_compute_outcode(-1, 11, r), 9);
    EXPECT_EQ(_compute_outcode(0, 10, r), 0);
    EXPECT_EQ(_compute_outcode(20, 20, { 10, 10, -20, -20 }), 5) << "a negative size lies beyond both edges";
}
