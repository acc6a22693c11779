#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRContextUtilities.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;

TEST(TransformAdditions, NamesCornersAsAFlippedViewSeesThem)
{
    Point upperLeft, lowerLeft, lowerRight, upperRight;
    transformRectUpperLeftLowerLeftLowerRightUpperRight(AffineTransform::makeTranslation(100, 200),
        { 1, 2, 10, 20 }, upperLeft, lowerLeft, lowerRight, upperRight);
    EXPECT_EQ(upperLeft, (Point { 101, 202 }));
    EXPECT_EQ(lowerLeft, (Point { 101, 222 }));
    EXPECT_EQ(lowerRight, (Point { 111, 222 }));
    EXPECT_EQ(upperRight, (Point { 111, 202 }));
}

TEST(TransformAdditions, BoundsOfATurnedRectangleHoldItsCorners)
{
    // (x, y) to (-2 y, x): a quarter turn, then twice as wide.
    const AffineTransform turned { 0, 1, -2, 0, 0, 0 };
    EXPECT_EQ(boundsOfTransformedRect(turned, { 0, 0, 10, 20 }), Rect(-40, 0, 40, 10));
}

TEST(TransformAdditions, ComparisonsAreExact)
{
    const AffineTransform a { 1, 2, 3, 4, 5, 6 };
    const float components[] = { 1, 2, 3, 4, 5, 6 };
    EXPECT_FALSE(differsFrom(a, a));
    EXPECT_TRUE(differOnlyByTranslation(a, a));
    for (int i = 0; i < 6; ++i) {
        float c[6];
        std::copy(std::begin(components), std::end(components), c);
        c[i] = std::nextafter(c[i], 100.0f);
        const AffineTransform b { c[0], c[1], c[2], c[3], c[4], c[5] };
        EXPECT_TRUE(differsFrom(a, b)) << i;
        EXPECT_EQ(differOnlyByTranslation(a, b), i >= 4) << i;
    }
    const AffineTransform invalid { 1, 0, 0, 1, std::nanf(""), 0 };
    EXPECT_TRUE(differsFrom(invalid, invalid));
    EXPECT_TRUE(differOnlyByTranslation(invalid, invalid));
}

TEST(TransformAdditions, ShearAppliesBeforeTheReceiver)
{
    AffineTransform t = AffineTransform::makeScale(10, 100);
    shearXByYBy(t, 2, 3);
    EXPECT_EQ(t.map(Point { 1, 0 }), (Point { 10, 200 }));
    EXPECT_EQ(t.map(Point { 0, 1 }), (Point { 30, 100 }));
}

TEST(TransformAdditions, TextsListTheComponentsInOrder)
{
    const AffineTransform t { 1, 2, -3, 4.5f, 1e6f, 0.0000004f };
    EXPECT_EQ(description(t), "{1.000000, 2.000000, -3.000000, 4.500000, 1000000.000000, 0.000000}");
    EXPECT_EQ(VXRStringFromTransform(t), description(t));
    EXPECT_EQ(VXRStringFromCGTransform(1, 2, -3, 4.5f, 1e6f, 0.0000004f), description(t));
}

TEST(ClipInfo, IsTheBoundsRelativeToTheOrigin)
{
    const VXRClipInfo info = VXRMakeClipInfo({ { 10, 50, 20, 80 }, 3, 99, 5 });
    EXPECT_EQ(VXRStringFromClipInfo(info), "{7, 15, 47, 75}");
    EXPECT_TRUE(VXREqualClipInfos(info, { { 7, 15, 47, 75 } }));
    EXPECT_FALSE(VXREqualClipInfos(info, { { 7, 15, 47, 76 } }));
}
