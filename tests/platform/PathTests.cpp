#include <vxr/platform/graphics/GraphicsContext.h>

#include <tests/platform/PathTestSupport.h>
#include <tests/support/RecordingContext.h>

#include <gtest/gtest.h>

#include <limits>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// The elements read one after the other without the index.
std::vector<PathElement> walked(const Path& path)
{
    std::vector<PathElement> all;
    const Point* p = path.points().data();
    for (PathElementKind kind : path.kinds()) {
        PathElement element { kind, {} };
        const int count = kind == PathElementKind::Close ? 0 : kind == PathElementKind::CurveTo ? 3 : 1;
        for (int i = 0; i < count; ++i)
            element.points[static_cast<std::size_t>(i)] = *p++;
        all.push_back(element);
    }
    return all;
}

void expectIndexAgreesWithWalk(const Path& path)
{
    const auto all = walked(path);
    ASSERT_EQ(all.size(), path.elementCount());
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(path.elementAtIndex(i).kind, all[i].kind) << i;
        EXPECT_EQ(path.elementAtIndex(i).points, all[i].points) << i;
    }
}

} // namespace

TEST(Path, BuildingStartsSubPathsWhereThePenIs)
{
    Path line;
    line.lineTo({ 1, 2 });
    line.lineTo({ 3, 4 });
    EXPECT_EQ(line.description(), "Path [M1 2 L3 4]");

    Path curve;
    curve.close();
    curve.curveTo({ 1, 2 }, { 3, 4 }, { 5, 6 });
    EXPECT_EQ(curve.description(), "Path [M1 2 C1 2 3 4 5 6]");
    EXPECT_EQ(curve.currentPoint(), (Point { 5, 6 }));
    curve.moveTo({ 7, 8 });
    curve.lineTo({ 9, 9 });
    curve.close();
    EXPECT_EQ(curve.currentPoint(), (Point { 7, 8 }));

    Path both = line;
    both.appendPath(curve);
    EXPECT_EQ(both.description(), "Path [M1 2 L3 4 M1 2 C1 2 3 4 5 6 M7 8 L9 9 Z]");
    EXPECT_EQ(both.currentPoint(), (Point { 7, 8 }));

    Path shapes;
    shapes.appendRect({ 1, 2, 3, 4 });
    shapes.appendOvalInRect({ 0, 0, 2, 4 });
    EXPECT_EQ(shapes.elementAtIndex(3).endPoint(), (Point { 1, 6 }));
    EXPECT_EQ(shapes.elementAtIndex(5).endPoint(), (Point { 2, 2 }));
    EXPECT_EQ(shapes.elementAtIndex(6).endPoint(), (Point { 1, 4 }));
    EXPECT_EQ(shapes.elementCount(), 11u);
}

TEST(Path, ElementsByIndexAreThoseOfAWalk)
{
    PathSource source(1);
    Path path;
    for (int i = 0; i < 77; ++i)
        source.appendElement(path, -5, 5);
    expectIndexAgreesWithWalk(path);
    path.appendPath(path);
    expectIndexAgreesWithWalk(path);
    path.removeAllPoints();
    source.appendElement(path, -5, 5);
    path.lineTo({ 1, 1 });
    expectIndexAgreesWithWalk(path);
}

TEST(Path, BoundsKeptWhileAppendingAreThoseOfTheWholePath)
{
    PathSource source(2);
    Path path;
    EXPECT_EQ(path.bounds(), Rect());
    for (int i = 0; i < 200; ++i) {
        source.appendElement(path, -float(i), float(i));
        if (i % 3 == 0) {
            Path again;
            again.appendPath(path);
            EXPECT_EQ(path.bounds(), again.bounds());
        }
    }
    path.transformUsingAffineTransform(AffineTransform::makeScale(-2, 4));
    Path again;
    again.appendPath(path);
    EXPECT_EQ(path.bounds(), again.bounds());

    EXPECT_EQ(pathFrom("M0 0 C5 -7 1 9 2 0").bounds(), Rect(0, -7, 5, 16));
    Path odd = pathFrom("M1 1 L3 2");
    odd.lineTo({ NaN, 50 });
    odd.lineTo({ 50, infinity });
    EXPECT_EQ(odd.bounds(), Rect(1, 1, 2, 1));
}

TEST(Path, FlatteningStaysWithinTheFlatness)
{
    PathSource source(3);
    for (int round = 0; round < 60; ++round) {
        const float flatness = std::pow(10.0f, source.uniform(-3, 1));
        const Point a = source.point(0, 200), b = source.point(0, 200), c = source.point(0, 200),
                    d = round % 4 ? source.point(0, 200) : a;
        Path path;
        path.moveTo(a);
        path.curveTo(b, c, d);
        path.setFlatness(flatness);
        const auto flat = path.bezierPathByFlatteningPath();
        const auto points = flat->points();
        EXPECT_EQ(points.back(), d);
        double worst = 0;
        for (int i = 0; i <= 500; ++i) {
            double least = 1e9;
            for (std::size_t j = 1; j < points.size(); ++j)
                least = std::min(
                    least, distanceToSegment(pointOnCurve(a, b, c, d, i / 500.0), points[j - 1], points[j]));
            worst = std::max(worst, least);
        }
        EXPECT_LE(worst, flatness + 2e-5) << round;
    }
}

TEST(Path, FlatteningSpendsLinesOnlyWhereTheCurveBends)
{
    EXPECT_EQ(pathFrom("M0 0 C1 1 2 2 3 3 L9 0 Z").bezierPathByFlatteningPath()->description(),
        "Path [M0 0 L3 3 L9 0 Z]");
    // A quarter circle of radius r needs (pi / 2) / (2 acos(1 - f / r)) lines: 8 for r = 100 and f = 0.6
    // would be 7.2 rounded up; halving finds a power of two.
    auto circle = Path::pathWithOvalInRect({ 0, 0, 200, 200 });
    EXPECT_EQ(circle->bezierPathByFlatteningPath()->elementCount(), 4u * 8 + 2);
    // Straight for most of its length, then a hook. Steps even in t would be sqrt(3/4 1000 / 0.01) = 274.
    Path hook = pathFrom("M0 0 C1000 0 1000 0 1000 10");
    hook.setFlatness(0.01f);
    EXPECT_LT(hook.bezierPathByFlatteningPath()->elementCount(), 274u / 4);
}

struct HitCase {
    const char* name;
    const char* path;
    WindingRule rule;
    Point p;
    bool inside;
};

const HitCase hitCases[] = {
    { "OpenSubPathIsClosed", "M0 0 L10 0 L10 10", WindingRule::NonZero, { 6, 3 }, true },
    { "OutsideTheClosingLine", "M0 0 L10 0 L10 10", WindingRule::NonZero, { 3, 6 }, false },
    { "SameTurnTwiceNonZero", "M0 0 L9 0 L9 9 L0 9 Z M3 3 L6 3 L6 6 L3 6 Z", WindingRule::NonZero, { 4, 5 },
        true },
    { "SameTurnTwiceEvenOdd", "M0 0 L9 0 L9 9 L0 9 Z M3 3 L6 3 L6 6 L3 6 Z", WindingRule::EvenOdd, { 4, 5 },
        false },
    { "OppositeTurnNonZero", "M0 0 L9 0 L9 9 L0 9 Z M3 3 L3 6 L6 6 L6 3 Z", WindingRule::NonZero, { 4, 5 },
        false },
    { "LineAfterCloseStartsAtTheStart", "M0 0 L9 0 L9 9 Z L0 9 L9 9", WindingRule::NonZero, { 2, 8 }, true },
    { "LevelWithAVertex", "M0 5 L5 0 L10 5 L5 10 Z", WindingRule::NonZero, { 2, 5 }, true },
    { "LeftOfAVertexAtItsHeight", "M0 5 L5 0 L10 5 L5 10 Z", WindingRule::NonZero, { -1, 5 }, false },
    { "UnderTheArch", "M0 0 C0 40 30 40 30 0", WindingRule::NonZero, { 15, 29.99f }, true }, // top at 30
    { "OverTheArch", "M0 0 C0 40 30 40 30 0", WindingRule::NonZero, { 15, 30.01f }, false },
    { "NotANumber", "M0 0 L9 0 L9 9 L0 9 Z", WindingRule::NonZero, { NaN, 5 }, false },
    { "InfinitelyHigh", "M0 0 L9 0 L9 9 L0 9 Z", WindingRule::NonZero, { 5, infinity }, false },
    { "Empty", "", WindingRule::NonZero, { 0, 0 }, false },
};

TEST(Path, ContainsFollowsTheWindingRule)
{
    for (const HitCase& c : hitCases) {
        Path path = pathFrom(c.path);
        path.setWindingRule(c.rule);
        EXPECT_EQ(path.containsPoint(c.p), c.inside) << c.name;
    }
}

TEST(Path, AdjoiningTrianglesShareNoPointAndMissNone)
{
    // A fan over whole-number corners, tried at every lattice point: most lie on corners and edges' heights.
    const Point corners[] = { { 0, 0 }, { 8, 0 }, { 12, 4 }, { 12, 12 }, { 4, 12 }, { 0, 8 } };
    for (float hubX : { 4.0f, 6.0f }) {
        const Point hub { hubX, 6 };
        for (float y = 0; y <= 12; ++y)
            for (float x = 0; x <= 12; ++x) {
                int holders = 0;
                Path whole;
                for (std::size_t i = 0; i < 6; ++i) {
                    Path triangle;
                    triangle.moveTo(hub);
                    triangle.lineTo(corners[i]);
                    triangle.lineTo(corners[(i + 1) % 6]);
                    holders += triangle.containsPoint({ x, y });
                    whole.lineTo(corners[i]);
                }
                EXPECT_EQ(holders, whole.containsPoint({ x, y }) ? 1 : 0) << x << ' ' << y;
            }
    }
}

TEST(Path, CurvesHoldWhatTheirFineFlatteningHolds)
{
    PathSource source(4);
    int inside = 0;
    for (int round = 0; round < 40; ++round) {
        Path path;
        for (int i = 0; i < 8; ++i)
            source.appendElement(path, 0, 100);
        path.setWindingRule(round % 2 ? WindingRule::EvenOdd : WindingRule::NonZero);
        path.setFlatness(1e-5f);
        const auto flat = path.bezierPathByFlatteningPath();
        for (int i = 0; i < 100; ++i) {
            const Point p = source.point(0, 100);
            inside += flat->containsPoint(p);
            EXPECT_EQ(path.containsPoint(p), flat->containsPoint(p)) << path.description() << p;
        }
    }
    EXPECT_GT(inside, 400);
}

TEST(Path, OddCoordinatesLeaveTheRestUsable)
{
    for (float odd : { NaN, infinity, -infinity, 3e38f, -3e38f }) {
        Path path = pathFrom("M0 0 L9 0 L9 9 L0 9 Z");
        path.moveTo({ odd, 3 });
        path.lineTo({ 1, 1 });
        path.curveTo({ 3, odd }, { odd, odd }, { 5, 5 });
        path.curveTo({ 3, 4 }, { 1, odd }, { odd, 5 });
        path.lineTo({ 2, odd });
        path.close();
        path.setFlatness(0);
        const auto flat = path.bezierPathByFlatteningPath();
        EXPECT_LT(flat->elementCount(), 20000u);
        if (!(std::abs(odd) < infinity)) {
            EXPECT_EQ(path.bounds(), Rect(0, 0, 9, 9));
            EXPECT_TRUE(path.containsPoint({ 5, 5 }));
            path.lineTo({ 9, 0 }); // goes on from what is left out
            path.lineTo({ 20, 9 });
            EXPECT_FALSE(path.containsPoint({ 8.9f, 9 }));
            EXPECT_FALSE(path.containsPoint({ 9, 5 }));
            path.moveTo({ 9, 0 });
            path.lineTo({ 20, 9 });
            path.lineTo({ 9, 9 });
            EXPECT_TRUE(path.containsPoint({ 10, 5 }));
        }
    }
    // Curves drawn together in one point or along one line, asked about that very point.
    EXPECT_FALSE(pathFrom("M2 2 C2 2 2 2 2 2").containsPoint({ 2, 2 }));
    pathFrom("M0 0 C9 0 -5 0 4 0").containsPoint({ 2, 0 });
}

TEST(Path, DrawsInItsOwnStyleAndLeavesTheContextsAsItWas)
{
    RecordingContext context;
    CurrentContextScope current(context, true, false);
    Path path = pathFrom("M0 0 L10 0 L10 5 Z");
    path.setWindingRule(WindingRule::EvenOdd);
    path.setLineWidth(3);
    path.fill();
    path.stroke();
    path.setFlatness(0.1f);
    path.addClip();
    EXPECT_EQ(context.recorded(), R"(fill even-odd [M0 0 L10 0 L10 5 Z]
stroke width=3 [M0 0 L10 0 L10 5 Z]
set-flatness 0.1
clip even-odd [M0 0 L10 0 L10 5 Z]
set-flatness 0.6
)");
}

TEST(Path, AMillionElementsAreWalkedInLinearTime)
{
    constexpr int count = 1'000'000;
    Path path;
    path.reserve(count);
    path.moveTo({ 0, 0 });
    for (int i = 1; i < count; ++i) {
        const float x = static_cast<float>(i % 1000), y = static_cast<float>(i / 1000);
        if (i % 2)
            path.curveTo({ x, y + 3 }, { x + 1, y - 3 }, { x + 1, y });
        else
            path.lineTo({ x, y });
    }
    EXPECT_EQ(path.bounds(), Rect(0, -3, 1000, 1005));
    EXPECT_EQ(path.elementAtIndex(count - 1).endPoint(), (Point { 1000, 999 }));
    EXPECT_FALSE(path.containsPoint({ 500, -2.9f }));
    EXPECT_EQ(path.bezierPathByFlatteningPath()->currentPoint(), (Point { 1000, 999 }));

    // Hostile: each curve alone would deserve thousands of lines.
    path.transformUsingAffineTransform(AffineTransform::makeScale(1e30f, 1e30f));
    EXPECT_LE(path.bezierPathByFlatteningPath()->elementCount(), (std::size_t(1) << 24) + 8 * count);
}

TEST(Path, ACloseBeforeAnyPointDrawsNothingAndStandsAlone)
{
    Path path;
    path.close();
    path.close();
    EXPECT_EQ(path.description(), "Path [Z]");
    EXPECT_FALSE(path.hasCurrentPoint());
    EXPECT_EQ(path.currentPoint(), Point());
    EXPECT_EQ(path.bounds(), Rect());
    EXPECT_FALSE(path.containsPoint({ 0, 0 }));
    EXPECT_TRUE(path.strokedOutline(LineStyle {}, 0.1f)->isEmpty());

    Path longer;
    longer.moveTo({ 5, 6 });
    longer.appendPath(path);
    EXPECT_EQ(longer.description(), "Path [M5 6]");
    path.appendPath(longer);
    EXPECT_EQ(path.description(), "Path [M5 6]");
}
