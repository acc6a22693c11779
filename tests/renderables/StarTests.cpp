#include <tests/support/RecordingContext.h>
#include <vxr/renderables/VXRRegularPolygon.h>
#include <vxr/renderables/VXRStar.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using vxr::test::text;

TEST(RegularPolygon, HasItsFirstVertexToTheRight)
{
    const auto polygon = VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(10, 4);
    EXPECT_EQ(text(*polygon->path()), "[M20 10 L10 20 L0 10 L10 0 Z]");
    EXPECT_NEAR(polygon->naturalSize().width, 20, 1e-5);
    const auto path = polygon->path();
    polygon->setRadius(5);
    EXPECT_EQ(polygon->path(), path) << "the path object is used again";
    EXPECT_EQ(text(*path), "[M10 5 L5 10 L0 5 L5 0 Z]");
}

TEST(Star, AlternatesBetweenTheRadiiCounterClockwise)
{
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(4, 10, 2);
    EXPECT_EQ(text(*star->path()), "[M20 4 L10 8 L0 4 L10 0 Z]");
    star->setTransform({ 2, 0, 0, 1, 100, 50 });
    EXPECT_EQ(star->center(), (Point { 120, 60 })) << "of the larger circle";
    star->setInnerRadius(20);
    EXPECT_EQ(star->transform(), (AffineTransform { 2, 0, 0, 1, 100, 50 }));
    EXPECT_EQ(star->center(), (Point { 140, 70 }));
}

TEST(Star, OptimizedEdgesContinueIntoTheNextTipButOne)
{
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(1, 100, 5);
    const struct {
        int points;
        double inner;
    } cases[] = { { 3, 12.5 }, { 4, 20 }, { 5, 38.196601 }, { 6, 57.735027 } };
    for (const auto& c : cases) {
        star->setNumberOfPoints(c.points);
        star->optimize();
        EXPECT_NEAR(star->innerRadius(), c.inner, 1e-4) << c.points;
    }
    // Tip 0, inner 1, inner 3 and tip 4 (elements 0, 1, 3, 4) of a pentagram lie on one line.
    star->setNumberOfPoints(5);
    star->optimize();
    const auto at = [&](std::size_t i) { return star->path()->elementAtIndex(i).endPoint(); };
    const Point a = at(0), d = at(4);
    for (const Point p : { at(1), at(3) })
        EXPECT_NEAR((d.x - a.x) * (p.y - a.y) - (d.y - a.y) * (p.x - a.x), 0, 0.05);
}

TEST(Star, SettersClampTheCountThatInitialisersTakeAsItIs)
{
    const auto star = VXRStar::starWithInnerRadiusOuterRadiusNumberOfPoints(4, 10, 0);
    EXPECT_EQ(star->numberOfPoints(), 0);
    EXPECT_EQ(text(*star->path()), "[Z]");
    EXPECT_EQ(star->naturalSize(), Size());
    const auto polygon = VXRRegularPolygon::regularPolygonWithRadiusNumberOfSides(10, -1);
    EXPECT_EQ(polygon->numberOfSides(), -1);
    EXPECT_EQ(text(*polygon->path()), "[Z]");
    for (const int number : { 2, 0, -4 }) {
        star->setNumberOfPoints(number);
        EXPECT_EQ(star->numberOfPoints(), 3);
        EXPECT_EQ(star->path()->elementCount(), 7u);
        polygon->setNumberOfSides(number);
        EXPECT_EQ(polygon->numberOfSides(), 3);
    }
}
