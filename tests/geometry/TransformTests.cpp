#include <vxr/geometry/TransformAdditions.h>
#include <vxr/geometry/VXRContextUtilities.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace vxr;

TEST(TransformAdditions, CornersAreNamedAsAFlippedViewSeesThemAndBoundsHoldThem)
{
    // (x, y) to (100 - 2 y, 200 + x): a quarter turn, then twice as wide.
    const AffineTransform turned { 0, 1, -2, 0, 100, 200 };
    Point corners[4]; // upper left, lower left, lower right, upper right
    transformRectUpperLeftLowerLeftLowerRightUpperRight(
        turned, { 1, 2, 10, 20 }, corners[0], corners[1], corners[2], corners[3]);
    const Point expected[] = { { 96, 201 }, { 56, 201 }, { 56, 211 }, { 96, 211 } };
    EXPECT_TRUE(std::equal(corners, corners + 4, expected));
    EXPECT_EQ(boundsOfTransformedRect(turned, { 1, 2, 10, 20 }), Rect(56, 201, 40, 10));
}

TEST(TransformAdditions, ComparisonsAreExact)
{
    const AffineTransform a { 1, 2, 3, 4, 5, 6 };
    EXPECT_FALSE(differsFrom(a, a));
    EXPECT_TRUE(differOnlyByTranslation(a, a));
    for (int i = 0; i < 6; ++i) {
        AffineTransform b = a;
        float* const components[] = { &b.m11, &b.m12, &b.m21, &b.m22, &b.tX, &b.tY };
        *components[i] = std::nextafter(*components[i], 100.0f);
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
    EXPECT_EQ(t, (AffineTransform { 10, 200, 30, 100, 0, 0 }));
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
