#include <vxr/platform/graphics/GraphicsContext.h>

#include <tests/platform/PathTestSupport.h>
#include <tests/support/RecordingContext.h>

#include <gtest/gtest.h>

#include <limits>
#include <random>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

/// Whether the elements found by their index, as contexts read them, are those of a walk.
void expectIndexAgreesWithWalk(const Path& path)
{
    RecordingContext context;
    context.addPath(path);
    context.fillPath(WindingRule::NonZero);
    EXPECT_EQ(context.recorded(), "fill " + text(path) + '\n');
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
    curve.appendRect({ 7, 8, 2, 3 });
    EXPECT_EQ(curve.currentPoint(), (Point { 7, 8 }));

    line.appendPath(curve);
    EXPECT_EQ(line.description(), "Path [M1 2 L3 4 M1 2 C1 2 3 4 5 6 M7 8 L9 8 L9 11 L7 11 Z]");
    EXPECT_EQ(line.currentPoint(), (Point { 7, 8 }));
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

/// Memory grows, shrinks, is copied and shared out anew; what stands in it stays.
TEST(Path, ElementsSurviveWhateverHappensToTheirMemory)
{
    std::mt19937 random(6);
    PathSource source(3);
    Path path, other;
    std::string expected = text(path);
    for (int step = 0; step < 400; ++step) {
        switch (random() % 8) {
        case 0:
            path.fit();
            break;
        case 1:
            path.reserve(random() % 100);
            break;
        case 2:
            other = path;
            path = other;
            break;
        case 3:
            path = *path.copy();
            break;
        case 4:
            if (path.elementCount() < 100) {
                Path both = path;
                both.appendPath(path);
                path.appendPath(path);
                expected = text(both);
            }
            break;
        case 5:
            if (random() % 4 == 0) {
                path.removeAllPoints();
                expected = text(path);
            }
            break;
        default:
            source.appendElement(path, -5, 5);
            expected = text(path);
        }
        ASSERT_EQ(text(path), expected) << step;
        expectIndexAgreesWithWalk(path);
        EXPECT_EQ(path.hasCurrentPoint(), !path.points().empty());
    }
}

TEST(Path, BoundsKeptWhileAppendingAreThoseOfTheWholePath)
{
    PathSource source(2);
    Path path;
    const auto expectSameWhole = [&] {
        Path whole;
        whole.appendPath(path);
        EXPECT_EQ(path.bounds(), whole.bounds());
    };
    for (int i = 0; i < 200; ++i) {
        source.appendElement(path, -float(i), float(i));
        if (i % 3 == 0)
            expectSameWhole();
    }
    path.transformUsingAffineTransform(AffineTransform::makeScale(-2, 4));
    expectSameWhole();
    EXPECT_EQ(pathOf("M0 0 C5 -7 1 9 2 0 Lnan 50 L50 inf").bounds(), Rect(0, -7, 5, 16));
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
        for (int i = 0; i <= 500; ++i) {
            const Point p = pointOnCurve(a, b, c, d, i / 500.0);
            double distance = 1e9;
            for (std::size_t j = 1; j < points.size(); ++j)
                distance = std::min(distance, distanceToSegment(p, points[j - 1], points[j]));
            ASSERT_LE(distance, flatness + 2e-5) << round;
        }
    }
}

TEST(Path, FlatteningSpendsLinesOnlyWhereTheCurveBends)
{
    EXPECT_EQ(pathOf("M0 0 C1 1 2 2 3 3 L9 0 Z").bezierPathByFlatteningPath()->description(),
        "Path [M0 0 L3 3 L9 0 Z]");
    // A quarter circle of radius r needs (pi / 2) / (2 acos(1 - f / r)) lines: 8 for r = 100 and f = 0.6
    // would be 7.2 rounded up; halving finds a power of two.
    auto circle = Path::pathWithOvalInRect({ 0, 0, 200, 200 });
    EXPECT_EQ(circle->bezierPathByFlatteningPath()->elementCount(), 4u * 8 + 2);
    // Straight for most of its length, then a hook. Steps even in t would be sqrt(3/4 1000 / 0.01) = 274.
    Path hook = pathOf("M0 0 C1000 0 1000 0 1000 10");
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
    { "OnTheLeftSide", "M0 0 L9 0 L9 9 L0 9 Z", WindingRule::NonZero, { 0, 5 }, true }, // half open
    { "OnTheRightSide", "M0 0 L9 0 L9 9 L0 9 Z", WindingRule::NonZero, { 9, 5 }, false },
    { "NotANumber", "M0 0 L9 0 L9 9 L0 9 Z", WindingRule::NonZero, { NaN, 5 }, false },
    { "InfinitelyHigh", "M0 0 L9 0 L9 9 L0 9 Z", WindingRule::NonZero, { 5, infinity }, false },
    { "Empty", "", WindingRule::NonZero, { 0, 0 }, false },
};

TEST(Path, ContainsFollowsTheWindingRule)
{
    for (const HitCase& c : hitCases) {
        Path path = pathOf(c.path);
        path.setWindingRule(c.rule);
        EXPECT_EQ(path.containsPoint(c.p), c.inside) << c.name;
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
        Path path = pathOf("M0 0 L9 0 L9 9 L0 9 Z");
        path.moveTo({ odd, 3 });
        path.lineTo({ 1, 1 });
        path.curveTo({ 3, odd }, { odd, odd }, { 5, 5 });
        path.curveTo({ 3, 4 }, { 1, odd }, { odd, 5 });
        path.lineTo({ 2, odd });
        path.close();
        path.setFlatness(0);
        EXPECT_LT(path.bezierPathByFlatteningPath()->elementCount(), 20000u);
        if (std::abs(odd) < infinity)
            continue;
        EXPECT_EQ(path.bounds(), Rect(0, 0, 9, 9));
        EXPECT_TRUE(path.containsPoint({ 5, 5 }));
        path.lineTo({ 9, 0 }); // goes on from what is left out
        path.lineTo({ 20, 9 });
        EXPECT_FALSE(path.containsPoint({ 8.9f, 9 }));
        EXPECT_FALSE(path.containsPoint({ 9, 5 }));
        path.appendPath(pathOf("M9 0 L20 9 L9 9"));
        EXPECT_TRUE(path.containsPoint({ 10, 5 }));
    }
    // Curves drawn together in one point or along one line, asked about that very point.
    EXPECT_FALSE(pathOf("M2 2 C2 2 2 2 2 2").containsPoint({ 2, 2 }));
    pathOf("M0 0 C9 0 -5 0 4 0").containsPoint({ 2, 0 });
}

TEST(Path, DrawsInItsOwnStyleAndLeavesTheContextsAsItWas)
{
    RecordingContext context;
    CurrentContextScope current(context, true, false);
    Path path = pathOf("M0 0 L10 0 L10 5 Z");
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

TEST(Path, AMillionHugeCurvesFlattenToABoundedNumberOfLines)
{
    constexpr int count = 1'000'000;
    Path path;
    for (int i = 0; i < count; ++i) {
        const float x = 1e30f * static_cast<float>(i % 1000), y = 1e30f * static_cast<float>(i / 1000);
        path.curveTo({ x, y + 3e30f }, { x + 1e30f, y - 3e30f }, { x + 1e30f, y });
    }
    // Each alone would deserve thousands.
    EXPECT_LE(path.bezierPathByFlatteningPath()->elementCount(), (std::size_t(1) << 24) + 8 * count);
}

TEST(Path, ACloseBeforeAnyPointDrawsNothingAndStandsAlone)
{
    Path path;
    path.close();
    path.close();
    EXPECT_EQ(path.description(), "Path [Z]");
    EXPECT_EQ(path.currentPoint(), Point());
    EXPECT_EQ(path.bounds(), Rect());
    EXPECT_FALSE(path.containsPoint({ 0, 0 }));
    EXPECT_TRUE(path.strokedOutline(LineStyle {}, 0.1f)->isEmpty());

    Path point = pathOf("M5 6");
    point.appendPath(path);
    EXPECT_EQ(point.description(), "Path [M5 6]");
    path.appendPath(point);
    EXPECT_EQ(path.description(), "Path [M5 6]");
}
