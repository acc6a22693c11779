#include <tests/support/EvenOddArea.h>
#include <tests/support/PolygonBuilder.h>
#include <vxr/platform/polygons/AreaSweep.h>

#include <gtest/gtest.h>

#include <random>

namespace vxr::testing {
namespace {

struct GridPolygon {
    std::vector<std::vector<GridPoint>> contours;

    TestPolygon polygon() const
    {
        TestPolygon polygon;
        for (const auto& contour : contours) {
            TestPolygon::Contour vertices;
            for (const GridPoint& p : contour)
                vertices.push_back({ double(p.x), double(p.y) });
            polygon.add(vertices);
        }
        return polygon;
    }
};

struct Outline {
    TestPolygon polygon;
    double signedArea = 0; ///< holes run clockwise and count below 0
    int wrongHoles = 0;
};

Outline swept(const GridPolygon& a, const GridPolygon& b, AreaSweep::Rule rule)
{
    AreaSweep sweep;
    for (const auto& contour : a.contours)
        sweep.addContour(contour, 0);
    for (const auto& contour : b.contours)
        sweep.addContour(contour, 1);
    OutlineLinks links;
    sweep.run(rule, 1e9, links);
    Outline outline;
    links.visitContours([&](std::span<const gpc_vertex> contour, bool isHole) {
        outline.polygon.add({ contour.begin(), contour.end() });
        double area = 0;
        for (std::size_t i = 0; i < contour.size(); ++i) {
            const gpc_vertex u = contour[i], v = contour[(i + 1) % contour.size()];
            area += (u.x * v.y - u.y * v.x) / 2;
        }
        outline.signedArea += area;
        outline.wrongHoles += isHole != (area < 0);
    });
    return outline;
}

struct Family {
    const char* name;
    int side; ///< of the square that the vertices are drawn from
    int step, vertices;
};
const Family families[] = {
    { "Tangle", 1 << 29, 1, 24 },
    { "Lattice", 6, 1, 40 }, // edges on edges, vertices on edges, many crossings in one point
    { "WideLattice", 6, 1 << 26, 40 },
    { "Narrow", 40, 1, 24 },
};

TEST(AreaSweep, AreasHolesAndDirectionsAgreeWithTrapezoids)
{
    const struct {
        gpc_op operation;
        AreaSweep::Rule rule;
    } operations[] = {
        { GPC_DIFF, [](int a, int b) { return a % 2 && !(b % 2); } },
        { GPC_INT, [](int a, int b) { return a % 2 && b % 2; } },
        { GPC_XOR, [](int a, int b) { return (a + b) % 2 != 0; } },
        { GPC_UNION, [](int a, int b) { return a % 2 || b % 2; } },
    };
    std::mt19937 random(5);
    for (const Family& family : families)
        for (int i = 0; i < 80; ++i) {
            const auto drawn = [&] {
                const auto coordinate = [&] { return int(random() % unsigned(family.side)) * family.step; };
                GridPolygon polygon;
                for (int left = 3 + int(random() % unsigned(family.vertices)); left > 0; left -= 12) {
                    auto& contour = polygon.contours.emplace_back();
                    for (int k = 0; k < std::min(left + 2, 12); ++k) {
                        const int x = coordinate();
                        contour.push_back({ x, coordinate() });
                    }
                }
                return polygon;
            };
            const GridPolygon a = drawn(), b = drawn();
            const TestPolygon pa = a.polygon(), pb = b.polygon();
            const double square = double(family.side) * family.step * family.side * family.step;
            for (const auto& [operation, rule] : operations) {
                const Outline outline = swept(a, b, rule);
                const double expected = areaOfOperation(operation, pa.set(), pb.set());
                EXPECT_NEAR(evenOddArea(outline.polygon.set()), expected, square * 1e-9)
                    << family.name << " " << i << " operation " << operation;
                EXPECT_NEAR(outline.signedArea, expected, square * 1e-9) << family.name << " " << i;
                EXPECT_EQ(outline.wrongHoles, 0) << family.name << " " << i;
            }
        }
}

TEST(AreaSweep, WindingNumbersAddUpWhereContoursOverlap)
{
    const std::vector<GridPoint> outer { { 0, 0 }, { 90, 0 }, { 90, 90 }, { 0, 90 } };
    std::vector<GridPoint> same { { 30, 30 }, { 60, 30 }, { 60, 60 }, { 30, 60 } }, opposite = same;
    std::reverse(opposite.begin(), opposite.end());
    const auto nonzero = [](int a, int) { return a != 0; };
    EXPECT_EQ(swept({ { outer, same } }, {}, nonzero).signedArea, 8100);
    EXPECT_EQ(swept({ { outer, opposite } }, {}, nonzero).signedArea, 8100 - 900);
    EXPECT_EQ(swept({ { same, opposite } }, {}, nonzero).polygon.count(), 0);
}

} // namespace
} // namespace vxr::testing
