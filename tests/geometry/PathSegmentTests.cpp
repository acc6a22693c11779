#include "PathBuilder.h"

#include <tests/support/EvenOddArea.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/geometry/VXRPolygon.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vxr;
using vxr::test::pathOf;

namespace {

std::shared_ptr<Path> outlineOf(const char* elements, float width, LineJoin join, float miterLimit = 10)
{
    Path path = pathOf(elements);
    path.setLineWidth(width);
    path.setLineJoin(join);
    path.setMiterLimit(miterLimit);
    return outlineStroke(path);
}

/// Share of a lattice's points over `within` on which `inside` answers true, times the area.
template <class Inside> double sampledArea(const Rect& within, Inside inside)
{
    constexpr int side = 200;
    int hits = 0;
    for (int i = 0; i < side * side; ++i) {
        const float u = (static_cast<float>(i % side) + 0.37f) / side,
                    v = (static_cast<float>(i / side) + 0.41f) / side;
        hits += inside(
            Point { within.minX() + u * within.size.width, within.minY() + v * within.size.height });
    }
    return static_cast<double>(within.size.width) * within.size.height * hits / (side * side);
}

/// Of flat paths whose vertices stand further apart than the conversion thins.
double areaOf(const Path& path)
{
    const VXRPolygonOwner polygon(polygonFromBezier(path));
    return vxr::testing::evenOddArea(*polygon);
}

} // namespace

TEST(PathSegments, ARunPerSubPathWithTheClosingLine)
{
    const auto runs = pathAsSegments(pathOf("M 0 0 L 10 0 L 10 10 Z L 5 5 M 1 1 M 20 20 L 30 20"));
    ASSERT_EQ(runs.size(), 3u) << "a move alone makes no run";
    EXPECT_TRUE(runs[0].closed);
    ASSERT_EQ(runs[0].segments.size(), 3u);
    EXPECT_EQ(runs[0].segments[2], (VXRPathSegment { { 10, 10 }, { 0, 0 }, { 10, 10 }, { 0, 0 } }));
    EXPECT_FALSE(runs[1].closed) << "goes on from the start after a close";
    EXPECT_EQ(runs[1].segments.front().start, (Point { 0, 0 }));
    EXPECT_EQ(runs[2].segments.front().end, (Point { 30, 20 }));
    EXPECT_EQ(pathAsSegments(pathOf("M 0 0 L 5 0 L 0 0 Z")).front().segments.size(), 2u)
        << "a close where the pen stands adds nothing";
}

TEST(PathSegments, TangentsPointAlongTheOutlineEvenWithoutHandles)
{
    struct {
        const char* elements;
        Point leaving, arriving; ///< out - start of the first segment, end - in of the last
    } const cases[] = {
        { "M 0 0 L 6 8", { 6, 8 }, { 6, 8 } }, { "M 0 0 C 1 2 3 5 7 7", { 1, 2 }, { 4, 2 } },
        { "M 0 0 C 0 0 3 5 7 7", { 3, 5 }, { 4, 2 } }, { "M 0 0 C 1 2 7 7 7 7", { 1, 2 }, { 6, 5 } },
        { "M 0 0 C 0 0 7 7 7 7", { 7, 7 }, { 7, 7 } },
        { "M 0 0 C 0.0001 0 3 5 7 7", { 3, 5 }, { 4, 2 } }, // too short to show its direction
        { "M 0 0 L 0 0 L 6 8 L 6 8", { 6, 8 }, { 6, 8 } }, // segments of no length are left out
    };
    for (const auto& c : cases) {
        const auto segments = pathAsSegments(pathOf(c.elements)).back().segments;
        EXPECT_EQ(VXRSubtractPoints(segments.front().out, segments.front().start), c.leaving) << c.elements;
        EXPECT_EQ(VXRSubtractPoints(segments.back().end, segments.back().in), c.arriving) << c.elements;
    }
    const auto point = pathAsSegments(pathOf("M 3 4 L 3 4 Z"));
    ASSERT_EQ(point.size(), 1u);
    EXPECT_EQ(
        point[0].segments, (std::vector<VXRPathSegment> { { { 3, 4 }, { 3, 4 }, { 3, 4 }, { 3, 4 } } }));
}

TEST(PathSegments, WedgesAreMitresWithinTheLimitAndBevelsBeyond)
{
    Path path = pathOf("M 0 0 L 10 0 L 10 10");
    path.setLineWidth(2);
    const auto wedgesOf
        = [&] { return _beziersFromSegmentIntersections(path, pathAsSegments(path).front()); };
    ASSERT_EQ(wedgesOf().size(), 1u);
    // The inner vertex is a quarter of half the width inside the corner.
    EXPECT_TRUE(isEqual(*wedgesOf()[0], pathOf("M 10 -1 L 9.823 0.177 L 11 0 L 11 -1 Z")));
    path.setMiterLimit(1.41f); // a right angle needs the square root of two
    EXPECT_TRUE(isEqual(*wedgesOf()[0], pathOf("M 10 -1 L 9.823 0.177 L 11 0 Z")));
    path.setMiterLimit(1.42f);
    EXPECT_EQ(wedgesOf()[0]->elementCount(), 5u);
    path.setLineJoin(LineJoin::Bevel);
    EXPECT_EQ(wedgesOf()[0]->elementCount(), 4u);

    path = pathOf("M 0 0 L 10 0 L 20 0 L 5 0");
    EXPECT_TRUE(wedgesOf().empty()) << "straight on and straight back";
    path = pathOf("M 0 0 L 10 0 L 10 10 Z");
    EXPECT_EQ(wedgesOf().size(), 3u) << "the close joins too";
}

TEST(OutlineStroke, CoversSegmentsAndTheirJoins)
{
    // Arms of 20 by 4 that share a quarter of their joint; outside is a square of 2 by 2 or its half.
    const char corner[] = "M 0 0 L 20 0 L 20 20";
    const double arms = 2 * 20 * 4 - 4;
    struct {
        LineJoin join;
        float limit;
        double area;
        bool coversBevel, coversTip;
    } const cases[] = {
        { LineJoin::Miter, 10, arms + 4, true, true },
        { LineJoin::Miter, 1.2f, arms + 2, true, false },
        { LineJoin::Bevel, 10, arms + 2, true, false },
    };
    for (const auto& c : cases) {
        const auto outline = outlineOf(corner, 4, c.join, c.limit);
        EXPECT_NEAR(areaOf(*outline), c.area, 1e-3) << static_cast<int>(c.join) << ' ' << c.limit;
        EXPECT_EQ(outline->containsPoint({ 20.8f, -0.8f }), c.coversBevel);
        EXPECT_EQ(outline->containsPoint({ 21.8f, -1.8f }), c.coversTip);
    }
    const auto straight = outlineOf("M 0 0 L 10 0", 4, LineJoin::Miter);
    EXPECT_EQ(straight->bounds(), Rect(0, -2, 10, 4)) << "butt ends, whatever the cap";
}

TEST(OutlineStroke, RoundJoinsHaveADiscAtEachSegmentsStartOnly)
{
    const auto outline = outlineOf("M 0 0 L 20 0 L 20 20", 8, LineJoin::Round);
    EXPECT_TRUE(outline->containsPoint({ -3, 0 }));
    EXPECT_FALSE(outline->containsPoint({ -3, 3 }));
    EXPECT_TRUE(outline->containsPoint({ 22.5f, -2.5f })) << "round the corner";
    EXPECT_FALSE(outline->containsPoint({ 23.5f, -3.5f }));
    EXPECT_FALSE(outline->containsPoint({ 20, 20.5f })) << "square at the far end";
}

TEST(OutlineStroke, AClosedPathGivesARing)
{
    const auto ring = outlineOf("M 0 0 L 20 0 L 20 20 L 0 20 Z", 4, LineJoin::Miter);
    EXPECT_FALSE(ring->containsPoint({ 10, 10 }));
    EXPECT_TRUE(ring->containsPoint({ 0.5f, 10 })) << "the closing side";
    EXPECT_TRUE(ring->containsPoint({ -1.8f, -1.8f })) << "the closing corner";
    EXPECT_EQ(ring->bounds(), Rect(-2, -2, 24, 24));
}

TEST(OutlineStroke, AgreesWithTheStrokerOnCurves)
{
    for (LineJoin join : { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel }) {
        Path path = pathOf("M 0 0 C 60 0 100 40 40 80 L 80 100 L 100 60");
        path.setLineWidth(12);
        path.setLineJoin(join);
        path.setFlatness(0.05f);
        const auto ours = outlineStroke(path);
        const auto reference = path.strokedOutline(path.lineStyle(), 0.05f);
        // Round outlines begin with half a disc that a butt cap has not.
        const double disc = join == LineJoin::Round ? 3.14159 * 36 / 2 : 0;
        const Rect around = insetRect(path.bounds(), -20, -20);
        const double different = sampledArea(
            around, [&](Point p) { return ours->containsPoint(p) != reference->containsPoint(p); });
        EXPECT_NEAR(different, disc, 25) << static_cast<int>(join) << ", of about 2800";
    }
}

TEST(OutlineStroke, HasNoCracksWhereWedgesMeetSegments)
{
    Path path = pathOf("M 25 150 L 55 40 L 85 150 C 100 60 150 20 165 110 L 115 125");
    path.setLineWidth(18);
    for (LineJoin join : { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel }) {
        path.setLineJoin(join);
        const VXRPolygonOwner outline(polygonFromBezier(*outlineStroke(path)));
        EXPECT_EQ(outline->num_contours, 1) << static_cast<int>(join) << ": the stroke encloses nothing";
    }
}

TEST(OutlineStroke, NothingComesOfNothing)
{
    EXPECT_EQ(outlineStroke(Path()), nullptr);
    const auto point = outlineOf("M 5 5 L 5 5 Z", 4, LineJoin::Miter);
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->isEmpty());
}

TEST(OutlineStroke, WhatHasNoPlaceLeavesTheRestAlone)
{
    const auto outline = outlineOf("M 0 0 L 10 0 L nan 5 L 10 20 L 0 20", 4, LineJoin::Miter);
    EXPECT_TRUE(outline->containsPoint({ 5, 1 }));
    EXPECT_TRUE(outline->containsPoint({ 5, 21 }));
}

TEST(Areas, OperationsOnOverlappingSquares)
{
    const auto a = Path::pathWithRect({ 0, 0, 20, 20 }), b = Path::pathWithRect({ 10, 10, 20, 20 });
    EXPECT_NEAR(areaOf(*uniteWithBezierPath(*a, *b)), 700, 1e-3);
    EXPECT_TRUE(isRectangular(*intersectBezierPath(*a, *b)));
    EXPECT_EQ(intersectBezierPath(*a, *b)->bounds(), Rect(10, 10, 10, 10));
    const auto rest = excludeBezierPath(*a, *b);
    EXPECT_TRUE(rest->containsPoint({ 5, 15 }));
    EXPECT_FALSE(rest->containsPoint({ 15, 15 }));
    EXPECT_FALSE(rest->containsPoint({ 25, 25 }));
    EXPECT_TRUE(excludeBezierPath(*a, *a)->isEmpty());
}

TEST(Areas, HolesStayHoles)
{
    const auto disc = Path::pathWithOvalInRect({ 0, 0, 100, 100 });
    const auto ring = excludeBezierPath(*disc, *Path::pathWithOvalInRect({ 25, 25, 50, 50 }));
    EXPECT_FALSE(ring->containsPoint({ 50, 50 }));
    EXPECT_TRUE(ring->containsPoint({ 10, 50 }));
    // And again as an operand.
    EXPECT_TRUE(excludeBezierPath(*disc, *ring)->containsPoint({ 50, 50 }));
    EXPECT_FALSE(
        uniteWithBezierPath(*ring, *Path::pathWithRect({ 90, 0, 30, 30 }))->containsPoint({ 50, 50 }));
}

TEST(Areas, LargerThanAnyPageKeepTheirShape)
{
    const float m = 1e6f;
    const auto disc = Path::pathWithOvalInRect({ 0, 0, 100 * m, 100 * m });
    const auto ring = excludeBezierPath(*disc, *Path::pathWithOvalInRect({ 25 * m, 25 * m, 50 * m, 50 * m }));
    EXPECT_FALSE(ring->containsPoint({ 50 * m, 50 * m }));
    EXPECT_TRUE(ring->containsPoint({ 10 * m, 50 * m }));
    EXPECT_NEAR(ring->bounds().size.width / m, 100, 0.01);
    disc->setLineWidth(10 * m);
    disc->setLineJoin(LineJoin::Round);
    const auto outline = outlineStroke(*disc);
    EXPECT_NEAR(outline->bounds().size.width / m, 110, 0.1);
    EXPECT_FALSE(outline->containsPoint({ 50 * m, 6 * m }));
    EXPECT_TRUE(outline->containsPoint({ 50 * m, 4 * m }));
}

TEST(Wobble, StaysWithinTheDistanceAndRepeatsForASeed)
{
    Path path = pathOf("M 0 0 L 100 0 C 150 0 200 50 200 100 L 0 100 Z M 300 0 L 400 0");
    path.setLineWidth(3);
    path.setFlatness(0.05f);
    const float distance = 5;
    const auto wobbled = pathByWobblingByUpToSubdivisions(path, distance, 8, 42);
    EXPECT_EQ(wobbled->lineWidth(), 3);
    EXPECT_EQ(wobbled->elementCount(), 2 + 1 + 8u * 5) << "two moves, a close and five segments";
    EXPECT_EQ(wobbled->elementAtIndex(4 * 8).endPoint(), wobbled->elementAtIndex(4 * 8).points[2]);
    float furthest = 0;
    const auto flat = wobbled->bezierPathByFlatteningPath();
    for (const Point p : flat->points()) {
        EXPECT_TRUE(pointOnPathTolerance(path, p, distance + 0.1f)) << p;
        float near = 0;
        while (!pointOnPathTolerance(path, p, near))
            near += 0.5f;
        furthest = std::max(furthest, near);
    }
    EXPECT_GT(furthest, 2) << "it does wobble";
    EXPECT_TRUE(isEqual(*pathByWobblingByUpToSubdivisions(path, distance, 8, 42), *wobbled));
    EXPECT_FALSE(isEqual(*pathByWobblingByUpToSubdivisions(path, distance, 8, 43), *wobbled));
}

TEST(Wobble, OfNoDistanceIsTheSameOutline)
{
    const Path path = pathOf("M 0 0 L 100 0 C 150 0 200 50 200 100 L 0 100 L 0 0");
    const auto same = pathByWobblingByUpToSubdivisions(path, 0, 3);
    EXPECT_EQ(same->currentPoint(), (Point { 0, 0 }));
    for (float t = 0; t <= 1; t += 0.0625f)
        EXPECT_LT(
            VXRDistance(pointAlongPathAtPercentage(*same, t), pointAlongPathAtPercentage(path, t)), 0.7f)
            << t;
    const auto loop = pathByWobblingByUpToSubdivisions(path, 9, -1);
    EXPECT_EQ(loop->elementCount(), 5u) << "at least one curve a segment";
    EXPECT_EQ(loop->points().front(), loop->points().back()) << "ends that met still meet";
    EXPECT_TRUE(pathByWobblingByUpToSubdivisions(Path(), 9, 4)->isEmpty());
}
