#include <vxr/geometry/VXRPolygon.h>

#include <tests/support/EvenOddArea.h>
#include <tests/support/PolygonBuilder.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace vxr::testing {
namespace {

std::string text(const gpc_polygon& polygon)
{
    std::string s;
    for (int i = 0; i < polygon.num_contours; ++i) {
        s += "[";
        for (int k = 0; k < polygon.contour[i].num_vertices; ++k) {
            const gpc_vertex v = polygon.contour[i].vertex[k];
            char vertex[64];
            std::snprintf(vertex, sizeof vertex, "%s%g,%g", k ? " " : "", v.x, v.y);
            s += vertex;
        }
        s += "]";
    }
    return s;
}

std::string text(const Path& path)
{
    std::string s;
    for (std::size_t i = 0; i < path.elementCount(); ++i) {
        const PathElement e = path.elementAtIndex(i);
        char element[64] = "Z";
        if (e.kind != PathElementKind::Close)
            std::snprintf(element, sizeof element, "%s%g,%g", e.kind == PathElementKind::MoveTo ? "M" : "L",
                double(e.points[0].x), double(e.points[0].y));
        s += element;
    }
    return s;
}

std::string converted(const Path& path)
{
    const VXRPolygonOwner polygon(polygonFromBezier(path));
    return text(*polygon);
}

/// One letter an element, then its point: "M0,0 L5,0 Z".
std::shared_ptr<Path> pathOf(const std::string& elements)
{
    auto path = Path::path();
    const char* s = elements.c_str();
    while (*s) {
        const char kind = *s++;
        Point p;
        int length = 0;
        if (kind != 'Z' && std::sscanf(s, "%f,%f%n", &p.x, &p.y, &length) == 2)
            s += length;
        if (kind == 'M')
            path->moveTo(p);
        else if (kind == 'L')
            path->lineTo(p);
        else
            path->close();
        while (*s == ' ')
            ++s;
    }
    return path;
}

struct ConversionCase {
    const char* name;
    const char* path;
    const char* contours;
};
const ConversionCase conversionCases[] = {
    { "Empty", "", "" },
    { "Closed", "M0,0 L9,0 L9,9 Z", "[0,0 9,0 9,9]" },
    { "OpenEndIsClosed", "M0,0 L9,0 L9,9", "[0,0 9,0 9,9]" },
    { "TwoVerticesAreAContour", "M0,0 L9,0", "[0,0 9,0]" },
    { "SingleVertexAtTheEndIsNone", "M0,0 L9,0 L9,9 Z M3,3", "[0,0 9,0 9,9]" },
    { "MoveFinishesTheOpenSubpath", "M0,0 L9,0 L9,9 M20,0 L29,0 L29,9 Z", "[0,0 9,0 9,9][20,0 29,0 29,9]" },
    { "StrayMoveJoinsTheNextSubpath", "M50,50 M0,0 L9,0 L9,9 Z", "[50,50 0,0 9,0 9,9]" },
    { "CloseAddsEvenOneVertex", "M0,0 Z M5,5 L9,5 L9,9 Z", "[0,0][5,5 9,5 9,9]" },
    { "CloseTwiceAddsAnEmptyContour", "M0,0 L9,0 L9,9 Z Z", "[0,0 9,0 9,9][]" },
    { "LineAfterCloseIsKeptHoweverNear", "M0,0 L9,0 L9,9 Z L9,9 L5,9", "[0,0 9,0 9,9][9,9 5,9]" },
    // Thinning: both axes within 0.7 of the last kept vertex, not of the last point.
    { "WithinInBothAxes", "M0,0 L0.7,0.7 L9,9 Z", "[0,0 9,9]" },
    { "JustOutsideInX", "M0,0 L0.71,0 L9,9 Z", "[0,0 0.71,0 9,9]" },
    { "JustOutsideInY", "M0,0 L0,-0.71 L9,9 Z", "[0,0 0,-0.71 9,9]" },
    { "SmallStepsAddUp", "M0,0 L0.4,0 L0.8,0 L1.2,0 L1.6,0 L9,9 Z", "[0,0 0.8,0 1.6,0 9,9]" },
    { "CollapsesToItsFirstPoint", "M0,0 L0.5,0 L0.5,0.5 L0,0.5 Z", "[0,0]" },
    { "MoveIsKeptHoweverNear", "M0,0 L9,9 M9.1,9 L0,0", "[0,0 9,9][9.1,9 0,0]" },
};

TEST(PolygonFromBezier, ContoursFollowTheElements)
{
    for (const ConversionCase& c : conversionCases)
        EXPECT_EQ(converted(*pathOf(c.path)), c.contours) << c.name;
}

TEST(PolygonFromBezier, CurvesAreFlattenedAndThinnedButKeepTheirArea)
{
    const VXRPolygonOwner disc(polygonFromBezier(*Path::pathWithOvalInRect({ -100, -100, 200, 200 })));
    ASSERT_EQ(disc->num_contours, 1);
    EXPECT_NEAR(evenOddArea(*disc), M_PI * 100 * 100, 0.01 * M_PI * 100 * 100);
    const gpc_vertex_list& contour = disc->contour[0];
    for (int i = 1; i < contour.num_vertices; ++i) {
        const gpc_vertex u = contour.vertex[i - 1], v = contour.vertex[i];
        EXPECT_TRUE(std::abs(u.x - v.x) > 0.7 || std::abs(u.y - v.y) > 0.7);
    }
}

TEST(PolygonFromRect, SumsItsEdgesInDouble)
{
    // In single precision 2^24 + 1 is 2^24 again.
    const VXRPolygonOwner polygon(polygonFromRect({ 16777216, 1, 1, 0.5f }));
    ASSERT_EQ(polygon->num_contours, 1);
    const gpc_vertex expected[] = { { 16777216, 1 }, { 16777217, 1 }, { 16777217, 1.5 }, { 16777216, 1.5 } };
    ASSERT_EQ(polygon->contour[0].num_vertices, 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(polygon->contour[0].vertex[i].x, expected[i].x);
        EXPECT_EQ(polygon->contour[0].vertex[i].y, expected[i].y);
    }
}

TEST(BezierFromPolygon, RectangleSurvivesTheRoundTrip)
{
    const VXRPolygonOwner polygon(polygonFromBezier(*Path::pathWithRect({ 1, 2, 30, 40 })));
    EXPECT_EQ(text(*bezierFromPolygon(polygon.get())), "M1,2L31,2L31,42L1,42Z");
}

TEST(BezierFromPolygon, DropsContoursThatAreNotBothWiderAndTallerThanAHundredth)
{
    const auto box = [](double width, double height) {
        return TestPolygon::Contour { { 0, 0 }, { width, 0 }, { width, height }, { 0, height } };
    };
    const TestPolygon polygon { box(0.009, 5), box(5, 0.009), box(0.011, 0.011), { { 3, 3 } }, {} };
    EXPECT_EQ(text(*bezierFromPolygon(&polygon.set())), "M0,0L0.011,0L0.011,0.011L0,0.011Z");
    const auto all = beziersFromPolygon(&polygon.set());
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(text(*all[0]), "M0,0L0.009,0L0.009,5L0,5Z");
    EXPECT_EQ(text(*all[3]), "M3,3Z");
}

TEST(Polygon, BoundsSpanTheVertices)
{
    gpc_vertex vertices[] = { { 3, -1 }, { -2, 4 }, { 0, 7 } };
    EXPECT_EQ(boundsForVertexList({ 3, vertices }), Rect(-2, -1, 5, 8));
    EXPECT_EQ(boundsForVertexList({ 1, vertices }), Rect(3, -1, 0, 0));
}

TEST(Polygon, DirectionsGoRoundClockwise)
{
    int direction = 0;
    for (int expected : { 1, 2, 3, 4, 5, 6, 7, 0 })
        EXPECT_EQ(direction = clockwiseDirection(direction), expected);
}

TEST(Polygon, PointArrayDoublesWhenFull)
{
    std::vector<Point> points(2);
    int capacity = 2;
    for (int i = 0; i < 5; ++i) {
        capacity = addPointToArray(float(i), float(-i), i, points, capacity);
        EXPECT_EQ(capacity, i < 2 ? 2 : i < 4 ? 4 : 8);
    }
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(points[std::size_t(i)], Point(float(i), float(-i)));
}

TEST(CombinePolys, UnitesAnyNumberOfSets)
{
    EXPECT_EQ(_combinePolys(nullptr, 0), nullptr);
    for (int count = 1; count <= 13; ++count) {
        // A chain: each square of 10 overlaps the one before by 4, so each adds 60.
        std::vector<VXRPolygonOwner> owners;
        std::vector<gpc_polygon*> sets;
        for (int i = 0; i < count; ++i) {
            owners.emplace_back(polygonFromRect({ float(6 * i), 0, 10, 10 }));
            sets.push_back(owners.back().get());
        }
        gpc_polygon* const combined = _combinePolys(sets.data(), count);
        EXPECT_EQ(combined, owners[0].get());
        EXPECT_EQ(combined->num_contours, 1) << count;
        EXPECT_DOUBLE_EQ(evenOddArea(*combined), 100 + 60 * (count - 1)) << count;
    }
}

TEST(CombinePolys, OneSetIsLeftAsItIs)
{
    TestPolygon crossed { { { 0, 0 }, { 10, 10 }, { 10, 0 }, { 0, 10 } } };
    gpc_polygon* sets[] = { &crossed.set() };
    EXPECT_EQ(text(*_combinePolys(sets, 1)), "[0,0 10,10 10,0 0,10]");
}

} // namespace
} // namespace vxr::testing
