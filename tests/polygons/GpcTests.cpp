#include <tests/support/EvenOddArea.h>
#include <tests/support/PolygonBuilder.h>
#include <vxr/platform/base/Exceptions.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace vxr::testing {
namespace {

using Contour = TestPolygon::Contour;

constexpr gpc_op allOperations[] = { GPC_DIFF, GPC_INT, GPC_XOR, GPC_UNION };

const Contour bowTie { { 0, 0 }, { 10, 10 }, { 10, 0 }, { 0, 10 } };
const Contour spiked { { 0, 0 }, { 10, 0 }, { 10, 5 }, { 15, 5 }, { 10, 5 }, { 10, 10 }, { 0, 10 } };

struct AreaCase {
    const char* name;
    std::vector<Contour> a, b;
    double areas[4]; // by operation number: difference, intersection, exclusive-or, union
    int contours[4];
};
const AreaCase areaCases[] = {
    { "Overlapping", { square(0, 0, 10) }, { square(5, 5, 10) }, { 75, 25, 150, 175 }, { 1, 1, 2, 1 } },
    { "SharedEdge", { square(0, 0, 10) }, { square(10, 0, 10) }, { 100, 0, 200, 200 }, { 1, 0, 1, 1 } },
    { "SharedCorner", { square(0, 0, 10) }, { square(10, 10, 5) }, { 100, 0, 125, 125 }, { 1, 0, 2, 2 } },
    { "Apart", { square(0, 0, 10) }, { square(20, 0, 10) }, { 100, 0, 200, 200 }, { 1, 0, 2, 2 } },
    { "Equal", { square(0, 0, 10) }, { square(0, 0, 10) }, { 0, 100, 0, 100 }, { 0, 1, 0, 1 } },
    { "Inside", { square(0, 0, 10) }, { square(2, 3, 4) }, { 84, 16, 84, 100 }, { 2, 1, 2, 1 } },
    { "TwiceIsNothing", { square(0, 0, 10), square(0, 0, 10) }, { square(5, 5, 10) }, { 0, 0, 100, 100 },
        { 0, 0, 1, 1 } },
    { "BowTie", { bowTie }, { square(0, 0, 5) }, { 37.5, 12.5, 50, 62.5 }, { 2, 1, 3, 2 } },
    { "SpikeHasNoArea", { spiked }, { square(8, 0, 10) }, { 80, 20, 160, 180 }, { 1, 1, 2, 1 } },
    { "EmptyOperand", { square(0, 0, 10) }, {}, { 100, 0, 100, 100 }, { 1, 0, 1, 1 } },
    { "EmptySubject", {}, { square(0, 0, 10) }, { 0, 0, 100, 100 }, { 0, 0, 1, 1 } },
    { "BothEmpty", {}, {}, { 0, 0, 0, 0 }, { 0, 0, 0, 0 } },
    { "LinesAndPoints", { { { 0, 0 }, { 9, 9 } }, { { 4, 4 } }, {}, { { 0, 5 }, { 20, 5 }, { 0, 5 } } },
        { square(0, 0, 10) }, { 0, 0, 100, 100 }, { 0, 0, 1, 1 } },
};

TEST(Gpc, AreasAndContoursOfSimpleOperands)
{
    for (const AreaCase& c : areaCases) {
        for (const gpc_op operation : allOperations) {
            const TestPolygon result = clip(operation, TestPolygon(c.a), TestPolygon(c.b));
            EXPECT_DOUBLE_EQ(evenOddArea(result.set()), c.areas[operation]) << c.name << operation;
            // Xor outlines may be cut apart at the points where they touch.
            EXPECT_TRUE(operation == GPC_XOR || result.count() == c.contours[operation])
                << c.name << operation << " has " << result.count();
        }
    }
}

enum class Family { Star, Tangle, Lattice, TinyFarAway };

Contour randomContour(Family family, std::mt19937& random)
{
    std::uniform_real_distribution<double> unit(0, 1);
    const auto whole = [&](int n) { return int(random() % unsigned(n)); };
    Contour contour;
    const int count = 3 + whole(family == Family::Lattice ? 8 : 30);
    const double size = family == Family::TinyFarAway ? 1e-3 : 80;
    const double centre = family == Family::TinyFarAway ? 1e6 : 100;
    const double cx = centre + unit(random) * size, cy = centre + unit(random) * size;
    for (int i = 0; i < count; ++i) {
        if (family == Family::Lattice) {
            contour.push_back({ double(whole(6)), double(whole(6)) });
        } else if (family == Family::Tangle) {
            contour.push_back({ unit(random) * 200, unit(random) * 200 });
        } else {
            const double angle = 2 * M_PI * i / count, r = size * (0.5 + unit(random) / 2);
            contour.push_back({ cx + r * std::cos(angle), cy + r * std::sin(angle) });
        }
    }
    return contour;
}

TestPolygon randomPolygon(Family family, std::mt19937& random)
{
    TestPolygon polygon;
    for (auto contours = 1 + random() % 2; contours > 0; --contours)
        polygon.add(randomContour(family, random));
    return polygon;
}

TEST(Gpc, AreasAgreeWithASweepInTrapezoids)
{
    std::mt19937 random(7);
    for (const Family family : { Family::Star, Family::Tangle, Family::Lattice, Family::TinyFarAway })
        for (int i = 0; i < 60; ++i) {
            const TestPolygon a = randomPolygon(family, random), b = randomPolygon(family, random);
            const double sum = evenOddArea(a.set()) + evenOddArea(b.set());
            for (const gpc_op operation : allOperations)
                EXPECT_NEAR(evenOddArea(clip(operation, a, b).set()),
                    areaOfOperation(operation, a.set(), b.set()), 1e-6 * sum)
                    << "family " << int(family) << " case " << i << " operation " << operation;
        }
}

TEST(Gpc, CoordinatesOnTheGridComeBackExactlyAndCollinearOnesStay)
{
    const double far = 1 << 20;
    const TestPolygon a { { { -3.25, far }, { 512, far }, { 1024.5, far }, { 7, far + 300 } } };
    const TestPolygon b { square(-2000, -2000, 3) };
    const TestPolygon both = clip(GPC_UNION, a, b);
    ASSERT_EQ(both.count(), 2);
    for (const TestPolygon* operand : { &a, &b })
        for (const gpc_vertex& v : operand->contour(0)) {
            int found = 0;
            for (int i = 0; i < 2; ++i)
                found += std::ranges::count_if(
                    both.contour(i), [&](const gpc_vertex& r) { return r.x == v.x && r.y == v.y; });
            EXPECT_EQ(found, 1) << v.x << ", " << v.y;
        }
}

TEST(Gpc, ExtremeSizesKeepTheirAreas)
{
    for (const double scale : { 1e-290, 1e-30, 1e30, 1e140 }) {
        const TestPolygon a { square(0, 0, 2 * scale) }, b { square(scale, scale, 2 * scale) };
        const TestPolygon common = clip(GPC_INT, a, b);
        ASSERT_EQ(common.count(), 1) << scale;
        for (const gpc_vertex& v : common.contour(0)) {
            EXPECT_NEAR(std::min(v.x / scale - 1, 2 - v.x / scale), 0, 1e-12) << scale;
            EXPECT_NEAR(std::min(v.y / scale - 1, 2 - v.y / scale), 0, 1e-12) << scale;
        }
    }
    const double largest = std::numeric_limits<double>::max();
    const TestPolygon whole { { { -largest, -largest }, { largest, -largest }, { 0, largest } } };
    EXPECT_EQ(clip(GPC_UNION, whole, { square(0, 0, 1) }).count(), 1);
}

TEST(Gpc, CoordinatesThatAreNotFiniteGiveTheEmptySet)
{
    const TestPolygon good { square(0, 0, 10) };
    for (const double bad : { double(NAN), double(INFINITY), -double(INFINITY) }) {
        for (const bool inX : { true, false }) {
            Contour contour = square(5, 5, 10);
            (inX ? contour[2].x : contour[2].y) = bad;
            const TestPolygon other { contour };
            for (const gpc_op operation : allOperations) {
                EXPECT_EQ(clip(operation, good, other).count(), 0);
                EXPECT_EQ(clip(operation, other, good).count(), 0);
            }
        }
    }
}

/// Inside `contour` by the even-odd rule: 1 or 0, or -1 within 1e-9 of its outline.
int pointInside(std::span<const gpc_vertex> contour, double x, double y)
{
    bool inside = false;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const gpc_vertex u = contour[i], v = contour[(i + 1) % contour.size()];
        const double dx = v.x - u.x, dy = v.y - u.y, square = dx * dx + dy * dy;
        const double t = std::clamp(((x - u.x) * dx + (y - u.y) * dy) / square, 0.0, 1.0);
        if (std::hypot(u.x + t * dx - x, u.y + t * dy - y) < 1e-9)
            return -1;
        if ((u.y <= y) != (v.y <= y) && u.x + (y - u.y) / dy * dx > x)
            inside = !inside;
    }
    return inside;
}

TEST(Gpc, HoleFlagsAreTheParityOfTheContoursAround)
{
    // Rings within rings: each contour's flag follows from its depth alone.
    TestPolygon rings;
    for (int depth = 0; depth < 40; ++depth)
        rings.add(square(depth, depth, 200 - 2 * depth));
    const TestPolygon separate = clip(GPC_UNION, rings, { square(500, 0, 10) });
    ASSERT_EQ(separate.count(), 41);
    for (int i = 0; i < separate.count(); ++i) {
        const double left = std::ranges::min(separate.contour(i), {}, &gpc_vertex::x).x;
        EXPECT_EQ(separate.set().hole[i], left == 500 ? 0 : int(left) % 2);
    }

    // Lattice tangles touch themselves in many places: compare with counting around an edge's middle.
    std::mt19937 random(11);
    int judged = 0, holes = 0;
    for (int i = 0; i < 300; ++i) {
        const TestPolygon a = randomPolygon(Family::Lattice, random);
        const TestPolygon result = clip(GPC_XOR, a, randomPolygon(Family::Lattice, random));
        for (int k = 0; k < result.count(); ++k) {
            const gpc_vertex u = result.contour(k)[0], v = result.contour(k)[1];
            int around = 0;
            for (int other = 0; other < result.count() && around >= 0; ++other) {
                const int inside
                    = other == k ? 0 : pointInside(result.contour(other), (u.x + v.x) / 2, (u.y + v.y) / 2);
                around = inside < 0 ? -1 : around + inside;
            }
            if (around < 0)
                continue; // touches another
            EXPECT_EQ(result.set().hole[k], around % 2) << "case " << i << " contour " << k;
            ++judged;
            holes += around % 2;
        }
    }
    EXPECT_GT(judged, 300);
    EXPECT_GT(holes, 10);
}

TEST(Gpc, TheResultMayBeAnOperandWhoseContentsAreTheCallersToFree)
{
    TestPolygon a { square(0, 0, 10) };
    gpc_polygon before = a.set();
    gpc_polygon_clip(GPC_DIFF, &a.set(), &a.set(), &a.set());
    gpc_free_polygon(&before);
    EXPECT_EQ(a.count(), 0);
    EXPECT_EQ(before.contour, nullptr);
}

/// Of contours none of which lies within another.
double areaOfContours(const TestPolygon& polygon)
{
    double area = 0;
    for (int i = 0; i < polygon.count(); ++i) {
        const auto contour = polygon.contour(i);
        double twice = 0;
        gpc_vertex from = contour.back();
        for (const gpc_vertex& to : contour) {
            twice += from.x * to.y - to.x * from.y;
            from = to;
        }
        area += std::abs(twice) / 2;
    }
    return area;
}

TEST(Gpc, ContoursThatLieApartCostWhatEachCostsAlone)
{
    // Taken together, so many edges lie beside each other along either axis that the clip would be refused.
    TestPolygon grid, bars;
    for (int i = 0; i < 90000; ++i)
        grid.add(square(i % 300 * 10, i / 300 * 10 + 0.01 * (i % 7), 8));
    double barArea = 0;
    for (int i = 0; i < 20000; ++i) {
        const double x = 2.0 * i, foot = i % 9;
        bars.add({ { x, foot }, { x + 1, foot }, { x + 1, 1000 }, { x, 1000 } });
        barArea += 1000 - foot;
    }
    const Contour across { { -1, 500 }, { 50000, 500 }, { 50000, 600 }, { -1, 600 } };
    const struct {
        const char* name;
        gpc_op operation;
        const TestPolygon& a;
        Contour b;
        int contours;
        double area;
    } cases[] = {
        { "Grid", GPC_UNION, grid, square(5, 5, 10), 89997, 90000 * 64 + 100 - 8 * 8 },
        { "Bars", GPC_UNION, bars, square(0, 0, 1), 20000, barArea },
        { "CutBars", GPC_DIFF, bars, across, 40000, barArea - 20000 * 100 },
    };
    for (const auto& c : cases) {
        const TestPolygon result = clip(c.operation, c.a, { c.b });
        EXPECT_EQ(result.count(), c.contours) << c.name;
        EXPECT_EQ(std::count(result.set().hole, result.set().hole + result.count(), 1), 0) << c.name;
        EXPECT_NEAR(areaOfContours(result), c.area, 1) << c.name;
    }
}

TEST(Gpc, LargeOutlinesCostWhatTheirCrossingsCost)
{
    // Every edge shares its heights with every other, and few cross.
    constexpr int teeth = 20000;
    Contour comb { { teeth, -1 }, { 0, -1 } }, circle;
    for (int i = 0; i < teeth; ++i) {
        comb.push_back({ double(i), 0 });
        comb.push_back({ i + 0.5, 100 });
    }
    comb.push_back({ teeth, 0 });
    EXPECT_NEAR(areaOfContours(clip(GPC_UNION, { comb }, {})), teeth * 51.0, 1e-2);
    // The tips, half as wide and half as tall as the teeth, stand out of a bar over their feet.
    const TestPolygon tips
        = clip(GPC_DIFF, { comb }, { { { -1, -2 }, { teeth + 1, -2 }, { teeth + 1, 50 }, { -1, 50 } } });
    EXPECT_EQ(tips.count(), teeth);
    EXPECT_NEAR(areaOfContours(tips), teeth * 12.5, 1e-2);

    constexpr int vertices = 200000;
    for (int i = 0; i < vertices; ++i) {
        const double angle = 2 * M_PI * i / vertices;
        circle.push_back({ 100 * std::cos(angle), 100 * std::sin(angle) });
    }
    const TestPolygon half = clip(GPC_INT, { circle }, { square(-200, 0, 400) });
    ASSERT_EQ(half.count(), 1);
    EXPECT_GT(half.contour(0).size(), 100000u);
}

} // namespace
} // namespace vxr::testing
