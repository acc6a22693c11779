#include <vxr/geometry/VXRPolygon.h>

#include <tests/support/EvenOddArea.h>
#include <tests/support/PathBuilder.h>
#include <tests/support/PolygonBuilder.h>
#include <tests/support/RecordingContext.h>
#include <vxr/platform/base/Exceptions.h>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace vxr::testing {
namespace {

using test::pathOf;
using test::text;

std::string text(const gpc_polygon& polygon)
{
    std::string s;
    for (int i = 0; i < polygon.num_contours; ++i) {
        s += "[";
        for (int k = 0; k < polygon.contour[i].num_vertices; ++k) {
            const gpc_vertex v = polygon.contour[i].vertex[k];
            s += fmt::format("{}{},{}", k ? " " : "", float(v.x), float(v.y));
        }
        s += "]";
    }
    return s;
}

TEST(PolygonFromBezier, ContoursFollowTheElements)
{
    const struct {
        const char* name;
        const char* path;
        const char* contours;
    } cases[] = {
        { "Closed", "M 0 0 L 9 0 L 9 9 Z", "[0,0 9,0 9,9]" },
        { "OpenEndIsClosed", "M 0 0 L 9 0 L 9 9", "[0,0 9,0 9,9]" },
        { "SingleVertexAtTheEndIsNone", "M 0 0 L 9 0 L 9 9 Z M 3 3", "[0,0 9,0 9,9]" },
        { "MoveFinishesTheOpenSubpath", "M 0 0 L 9 0 M 20 0 L 29 0 Z", "[0,0 9,0][20,0 29,0]" },
        { "StrayMoveJoinsTheNextSubpath", "M 50 50 M 0 0 L 9 0 L 9 9 Z", "[50,50 0,0 9,0 9,9]" },
        { "CloseAddsEvenOneVertex", "M 0 0 Z M 5 5 L 9 5 L 9 9 Z", "[0,0][5,5 9,5 9,9]" },
        { "CloseTwiceAddsAnEmptyContour", "M 0 0 L 9 0 L 9 9 Z Z", "[0,0 9,0 9,9][]" },
        { "LineAfterCloseIsKeptHoweverNear", "M 0 0 L 9 0 L 9 9 Z L 9 9 L 5 9", "[0,0 9,0 9,9][9,9 5,9]" },
        // Thinning: both axes within 0.7 of the last kept vertex, not of the last point.
        { "WithinInBothAxes", "M 0 0 L 0.7 0.7 L 9 9 Z", "[0,0 9,9]" },
        { "JustOutsideInX", "M 0 0 L 0.71 0 L 9 9 Z", "[0,0 0.71,0 9,9]" },
        { "JustOutsideInY", "M 0 0 L 0 -0.71 L 9 9 Z", "[0,0 0,-0.71 9,9]" },
        { "SmallStepsAddUp", "M 0 0 L 0.4 0 L 0.8 0 L 1.2 0 L 1.6 0 L 9 9 Z", "[0,0 0.8,0 1.6,0 9,9]" },
        { "MoveIsKeptHoweverNear", "M 0 0 L 9 9 M 9.1 9 L 0 0", "[0,0 9,9][9.1,9 0,0]" },
    };
    for (const auto& c : cases) {
        const VXRPolygonOwner polygon(polygonFromBezier(pathOf(c.path)));
        EXPECT_EQ(text(*polygon), c.contours) << c.name;
    }
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
    ASSERT_EQ(polygon->contour[0].num_vertices, 4);
    const gpc_vertex upperRight = polygon->contour[0].vertex[2];
    EXPECT_EQ(upperRight.x, 16777217);
    EXPECT_EQ(upperRight.y, 1.5);
    const VXRPolygonOwner order(polygonFromRect({ 1, 2, 30, 40 }));
    EXPECT_EQ(text(*order), "[1,2 31,2 31,42 1,42]");
}

TEST(BezierFromPolygon, DropsContoursThatAreNotBothWiderAndTallerThanAHundredth)
{
    const auto box = [](double width, double height) {
        return TestPolygon::Contour { { 0, 0 }, { width, 0 }, { width, height }, { 0, height } };
    };
    const TestPolygon polygon { box(0.009, 5), box(5, 0.009), box(0.011, 0.011), { { 3, 3 } }, {} };
    EXPECT_EQ(text(*bezierFromPolygon(&polygon.set())), "[M0 0 L0.011 0 L0.011 0.011 L0 0.011 Z]");
    const auto all = beziersFromPolygon(&polygon.set());
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(text(*all[0]), "[M0 0 L0.009 0 L0.009 5 L0 5 Z]");
    EXPECT_EQ(text(*all[3]), "[M3 3 Z]");
}

TEST(Polygon, BoundsSpanTheVertices)
{
    gpc_vertex vertices[] = { { 3, -1 }, { -2, 4 }, { 0, 7 } };
    EXPECT_EQ(boundsForVertexList({ 3, vertices }), Rect(-2, -1, 5, 8));
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

TEST(Polygon, PointArrayRefusesIndicesThatNoArrayHas)
{
    std::vector<Point> points;
    for (int index : { -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max() })
        EXPECT_THROW(addPointToArray(1, 2, index, points, 4), InvalidArgumentException) << index;
    EXPECT_TRUE(points.empty());
    EXPECT_EQ(addPointToArray(1, 2, 9, points, 4), 10) << "far beyond the end";
}

TEST(CombinePolys, UnitesAnyNumberOfSetsAndLeavesASingleOneAsItIs)
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
    TestPolygon crossed { { { 0, 0 }, { 10, 10 }, { 10, 0 }, { 0, 10 } } };
    gpc_polygon* sets[] = { &crossed.set() };
    EXPECT_EQ(text(*_combinePolys(sets, 1)), "[0,0 10,10 10,0 0,10]");
}

} // namespace
} // namespace vxr::testing
