#include <tests/support/EvenOddArea.h>
#include <tests/support/PathBuilder.h>
#include <vxr/geometry/PathAdditions.h>
#include <vxr/geometry/VXRGeometry.h>
#include <vxr/geometry/VXRPolygon.h>
#include <vxr/host/utility/VXULog.h>
#include <vxr/platform/base/Exceptions.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

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

/// The area within `rect` where `differ` answers true, by a lattice of points.
template <class Differ> double sampledArea(const Rect& rect, Differ differ)
{
    constexpr int side = 200;
    int hits = 0;
    for (int i = 0; i < side * side; ++i) {
        const float u = (static_cast<float>(i % side) + 0.37f) / side,
                    v = (static_cast<float>(i / side) + 0.41f) / side;
        hits += differ(Point { rect.minX() + u * rect.size.width, rect.minY() + v * rect.size.height });
    }
    return static_cast<double>(rect.size.width) * rect.size.height * hits / (side * side);
}

/// Of flat paths whose vertices stand further apart than the conversion thins.
double areaOf(const Path& path)
{
    const VXRPolygonOwner polygon(polygonFromBezier(path));
    return vxr::testing::evenOddArea(*polygon);
}

constexpr LineJoin joins[] = { LineJoin::Miter, LineJoin::Round, LineJoin::Bevel };

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
    const auto point = pathAsSegments(pathOf("M 3 4 L 3 4 Z"));
    ASSERT_EQ(point.size(), 1u);
    EXPECT_EQ(
        point[0].segments, (std::vector<VXRPathSegment> { { { 3, 4 }, { 3, 4 }, { 3, 4 }, { 3, 4 } } }));
}

TEST(PathSegments, TangentsPointAlongTheOutlineEvenWithoutHandles)
{
    struct {
        const char* elements;
        Point leaving, arriving; ///< out - start of the first segment, end - in of the last
    } const cases[] = {
        { "M 0 0 L 0 0 L 6 8 L 6 8", { 6, 8 }, { 6, 8 } }, // segments of no length are left out
        { "M 0 0 C 0 0 3 5 7 7", { 3, 5 }, { 4, 2 } }, { "M 0 0 C 1 2 7 7 7 7", { 1, 2 }, { 6, 5 } },
        { "M 0 0 C 0 0 7 7 7 7", { 7, 7 }, { 7, 7 } },
        { "M 0 0 C 0.0001 0 3 5 7 7", { 3, 5 }, { 4, 2 } }, // too short to show its direction
    };
    for (const auto& c : cases) {
        const auto segments = pathAsSegments(pathOf(c.elements)).back().segments;
        EXPECT_EQ(VXRSubtractPoints(segments.front().out, segments.front().start), c.leaving) << c.elements;
        EXPECT_EQ(VXRSubtractPoints(segments.back().end, segments.back().in), c.arriving) << c.elements;
    }
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
    EXPECT_NEAR(areaOf(*outlineOf(corner, 4, LineJoin::Miter)), arms + 4, 1e-3);
    EXPECT_NEAR(areaOf(*outlineOf(corner, 4, LineJoin::Miter, 1.2f)), arms + 2, 1e-3);
    EXPECT_NEAR(areaOf(*outlineOf(corner, 4, LineJoin::Bevel)), arms + 2, 1e-3);
    const auto round = outlineOf(corner, 8, LineJoin::Round);
    EXPECT_TRUE(round->containsPoint({ -3, 0 })) << "a disc at each segment's start";
    EXPECT_FALSE(round->containsPoint({ 20, 20.5f })) << "square at the far end";
    const auto straight = outlineOf("M 0 0 L 10 0", 4, LineJoin::Miter);
    EXPECT_EQ(straight->bounds(), Rect(0, -2, 10, 4)) << "butt ends, whatever the cap";

    const auto ring = outlineOf("M 0 0 L 20 0 L 20 20 L 0 20 Z", 4, LineJoin::Miter);
    EXPECT_FALSE(ring->containsPoint({ 10, 10 }));
    EXPECT_TRUE(ring->containsPoint({ 0.5f, 10 })) << "the closing side";
    EXPECT_EQ(ring->bounds(), Rect(-2, -2, 24, 24));
}

TEST(OutlineStroke, AgreesWithTheStrokerOnCurves)
{
    for (LineJoin join : joins) {
        Path path = pathOf("M 0 0 C 60 0 100 40 40 80 L 80 100 L 100 60");
        path.setLineWidth(12);
        path.setLineJoin(join);
        path.setFlatness(0.05f);
        const auto ours = outlineStroke(path);
        const auto reference = path.strokedOutline(path.lineStyle(), 0.05f);
        // Round outlines begin with half a disc that a butt cap has not.
        const double disc = join == LineJoin::Round ? 3.14159 * 36 / 2 : 0;
        const double different = sampledArea(insetRect(path.bounds(), -20, -20),
            [&](Point p) { return ours->containsPoint(p) != reference->containsPoint(p); });
        EXPECT_NEAR(different, disc, 25) << static_cast<int>(join) << ", of about 2800";
    }
}

TEST(OutlineStroke, HasNoCracksWhereWedgesMeetSegments)
{
    for (LineJoin join : joins) {
        const auto outline
            = outlineOf("M 25 150 L 55 40 L 85 150 C 100 60 150 20 165 110 L 115 125", 18, join);
        const VXRPolygonOwner polygon(polygonFromBezier(*outline));
        EXPECT_EQ(polygon->num_contours, 1) << static_cast<int>(join) << ": the stroke encloses nothing";
    }
}

TEST(OutlineStroke, WhatHasNoPlaceOrLengthLeavesTheRestAlone)
{
    EXPECT_EQ(outlineStroke(Path()), nullptr);
    const auto point = outlineOf("M 5 5 L 5 5 Z", 4, LineJoin::Miter);
    ASSERT_TRUE(point);
    EXPECT_TRUE(point->isEmpty());
    const auto outline = outlineOf("M 0 0 L 10 0 L nan 5 L 10 20 L 0 20", 4, LineJoin::Miter);
    EXPECT_TRUE(outline->containsPoint({ 5, 1 }));
    EXPECT_TRUE(outline->containsPoint({ 5, 21 }));
}

TEST(OutlineStroke, OfManySegmentsIsOneUnion)
{
    // What took minutes or came back empty when every segment was united by itself.
    Path circle = *Path::pathWithOvalInRect({ 0, 0, 5000, 5000 })->bezierPathByFlatteningPath(), star, cusps;
    for (int i = 0; i < 20000; ++i) {
        const double angle = 2 * M_PI * i / 20000, radius = i % 2 ? 500 : 1000;
        const Point p { float(radius * std::cos(angle)), float(radius * std::sin(angle)) };
        i ? star.lineTo(p) : star.moveTo(p);
    }
    star.close();
    cusps = pathOf("M 0 0 C 100 100 0 100 100 0 C 200 100 100 100 200 0");
    cusps.setFlatness(std::nanf(""));
    const struct {
        const char* name;
        const Path& path;
        Point on, off;
    } cases[] = {
        { "Circle", circle, { 5000, 2500 }, { 2500, 2500 } },
        { "Star", star, { 750, 0 }, { 100, 100 } },
        { "Cusps", cusps, { 100, 1 }, { 50, 5 } },
    };
    for (const auto& c : cases) {
        Path path = c.path;
        path.setLineWidth(4);
        const auto outline = outlineStroke(path);
        EXPECT_TRUE(outline->containsPoint(c.on)) << c.name;
        EXPECT_FALSE(outline->containsPoint(c.off)) << c.name;
        EXPECT_TRUE(outlineStrokeContainsPoint(path, c.on)) << c.name;
        EXPECT_FALSE(outlineStrokeContainsPoint(path, c.off)) << c.name;
    }
}

TEST(Areas, SmallThingsSurviveBesideLargeOnes)
{
    const auto bar = Path::pathWithRect({ 0, -50, 100000, 10 }), speck = Path::pathWithRect({ 0, 0, 5, 5 });
    EXPECT_NEAR(areaOf(*uniteWithBezierPath(*bar, *speck)), 1000000 + 25, 1e-3);
    EXPECT_NEAR(areaOf(*excludeBezierPath(*bar, *Path::pathWithRect({ 50, -44, 4, 4 }))), 1000000 - 16, 1e-3);
    Path corner = pathOf("M 0 0 L 100000 0 L 100000 1000");
    corner.setLineWidth(6);
    EXPECT_EQ(outlineStroke(corner)->bounds(), Rect(0, -3, 100003, 1003)) << "with the tip of the mitre";
}

TEST(Areas, InputBeyondALimitIsRefusedWithItsName)
{
    Path hatch, dense;
    for (int i = 0; i < 1500; ++i) {
        hatch.appendRect({ 0, 2.0f * float(i), 3000, 1 });
        dense.appendRect({ 2.0f * float(i), 0, 1, 3000 });
    }
    Path large;
    large.moveTo({ 0, 0 });
    for (int i = 0; i < int(VXRAreaMaximumVertices) + 1; ++i)
        large.lineTo({ float(i % 2000), float(i / 2000) });
    const struct {
        const char* limit;
        const Path &a, &b;
    } cases[] = { { "crossings", hatch, dense }, { "vertices", large, hatch } };
    for (const auto& c : cases) {
        std::string logged;
        const auto before
            = VXUSetLogSink([&](int, std::string_view, std::string_view message) { logged = message; });
        std::string thrown;
        try {
            intersectBezierPath(c.a, c.b);
        } catch (const GenericException& refusal) {
            thrown = refusal.what();
        }
        VXUSetLogSink(before);
        EXPECT_NE(thrown.find(c.limit), std::string::npos) << c.limit << ": " << thrown;
        EXPECT_NE(logged.find(thrown), std::string::npos) << logged;
    }
}

TEST(Areas, OperationsOnOverlappingSquares)
{
    const auto a = Path::pathWithRect({ 0, 0, 20, 20 }), b = Path::pathWithRect({ 10, 10, 20, 20 });
    EXPECT_NEAR(areaOf(*uniteWithBezierPath(*a, *b)), 700, 1e-3);
    EXPECT_TRUE(isRectangular(*intersectBezierPath(*a, *b)));
    EXPECT_EQ(intersectBezierPath(*a, *b)->bounds(), Rect(10, 10, 10, 10));
    EXPECT_NEAR(areaOf(*excludeBezierPath(*a, *b)), 300, 1e-3);
    EXPECT_FALSE(excludeBezierPath(*a, *b)->containsPoint({ 25, 25 }));
    EXPECT_TRUE(excludeBezierPath(*a, *a)->isEmpty());
}

TEST(Areas, HolesStayHolesAtAnySize)
{
    for (const float m : { 1.0f, 1e6f }) { // the second is larger than any page
        const auto disc = Path::pathWithOvalInRect({ 0, 0, 100 * m, 100 * m });
        const auto hole = Path::pathWithOvalInRect({ 25 * m, 25 * m, 50 * m, 50 * m });
        const auto ring = excludeBezierPath(*disc, *hole);
        EXPECT_FALSE(ring->containsPoint({ 50 * m, 50 * m }));
        EXPECT_TRUE(ring->containsPoint({ 10 * m, 50 * m }));
        EXPECT_NEAR(ring->bounds().size.width / m, 100, 0.01);
        // And again as an operand.
        EXPECT_TRUE(excludeBezierPath(*disc, *ring)->containsPoint({ 50 * m, 50 * m }));
        const auto beside = Path::pathWithRect({ 90 * m, 0, 30 * m, 30 * m });
        EXPECT_FALSE(uniteWithBezierPath(*ring, *beside)->containsPoint({ 50 * m, 50 * m }));

        disc->setLineWidth(10 * m);
        disc->setLineJoin(LineJoin::Round);
        const auto outline = outlineStroke(*disc);
        EXPECT_NEAR(outline->bounds().size.width / m, 110, 0.1);
        EXPECT_FALSE(outline->containsPoint({ 50 * m, 6 * m }));
        EXPECT_TRUE(outline->containsPoint({ 50 * m, 4 * m }));
    }
}

TEST(Wobble, StaysWithinTheDistanceAndRepeatsForASeed)
{
    Path path = pathOf("M 0 0 L 100 0 C 150 0 200 50 200 100 L 0 100 Z M 300 0 L 400 0");
    path.setLineWidth(3);
    path.setFlatness(0.05f);
    const auto wobbled = pathByWobblingByUpToSubdivisions(path, 5, 8, 42);
    EXPECT_EQ(wobbled->lineWidth(), 3);
    EXPECT_EQ(wobbled->elementCount(), 2 + 1 + 8u * 5) << "two moves, a close and five segments";
    bool wobbles = false;
    const auto flat = wobbled->bezierPathByFlatteningPath();
    for (const Point p : flat->points()) {
        EXPECT_TRUE(pointOnPathTolerance(path, p, 5.1f)) << p;
        wobbles |= !pointOnPathTolerance(path, p, 2);
    }
    EXPECT_TRUE(wobbles);
    EXPECT_TRUE(isEqual(*pathByWobblingByUpToSubdivisions(path, 5, 8, 42), *wobbled));
    EXPECT_FALSE(isEqual(*pathByWobblingByUpToSubdivisions(path, 5, 8, 43), *wobbled));
}

TEST(Wobble, OfNoDistanceIsTheSameOutline)
{
    const Path path = pathOf("M 0 0 L 100 0 C 150 0 200 50 200 100 L 0 100 L 0 0");
    const auto same = pathByWobblingByUpToSubdivisions(path, 0, 3);
    for (float t = 0; t <= 1; t += 0.0625f)
        EXPECT_LT(
            VXRDistance(pointAlongPathAtPercentage(*same, t), pointAlongPathAtPercentage(path, t)), 0.7f)
            << t;
    const auto loop = pathByWobblingByUpToSubdivisions(path, 9, -1);
    EXPECT_EQ(loop->elementCount(), 5u) << "at least one curve a segment";
    EXPECT_EQ(loop->points().front(), loop->points().back()) << "ends that met still meet";
    EXPECT_TRUE(pathByWobblingByUpToSubdivisions(Path(), 9, 4)->isEmpty());
}
