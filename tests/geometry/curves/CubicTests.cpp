#include "CurveSamples.h"

#include <vxr/geometry/curves/CubicIntersections.h>
#include <vxr/geometry/curves/CubicOffset.h>

#include <gtest/gtest.h>

#include <limits>

using namespace vxr;
using namespace vxr::test;

namespace {

/// Of many chords, with the error of their sum taken off by comparing with half as many.
double lengthByChords(const Cubic& c, double from = 0, double to = 1)
{
    const auto chords = [&](int count) {
        double sum = 0;
        for (int i = 0; i < count; ++i)
            sum += (pointAt(c, from + (to - from) * (i + 1) / count)
                - pointAt(c, from + (to - from) * i / count))
                       .length();
        return sum;
    };
    const double rough = chords(10000), fine = chords(20000);
    return fine + (fine - rough) / 3;
}

} // namespace

TEST(CubicSegment, LengthsAgreeWithChordsAndTheirInverseLeadsBack)
{
    for (const Cubic& c : sampleCubics(60)) {
        const double length = lengthOf(c);
        EXPECT_NEAR(length, lengthByChords(c), 1e-7 * length);
        EXPECT_NEAR(
            lengthBetween(c, 0, 0.3) + lengthBetween(c, 0.3, 1), length, 2 * lengthPrecision * length);
        EXPECT_DOUBLE_EQ(lengthBetween(c, 0.7, 0.2), -lengthBetween(c, 0.2, 0.7));
        for (const double part : { 0.01, 0.25, 0.5, 0.9 })
            EXPECT_NEAR(
                lengthByChords(c, 0, parameterAtLength(c, part * length)), part * length, 2e-7 * length);
    }
    EXPECT_EQ(parameterAtLength(sampleCubics(0)[0], 1e9), 1);
}

TEST(CubicSegment, NoPointIsNearerThanTheNearest)
{
    std::mt19937 engine(9);
    for (const Cubic& c : sampleCubics(60)) {
        const Vec2 p(engine() % 200 - 50.0, engine() % 200 - 50.0);
        const NearestPoint found = nearestPoint(c, p);
        EXPECT_NEAR((pointAt(c, found.t) - p).length(), found.distance, 1e-9);
        for (int i = 0; i <= 2000; ++i)
            ASSERT_LE(found.distance, (pointAt(c, i / 2000.0) - p).length() + 1e-9);
        EXPECT_NEAR(nearestPoint(c, pointAt(c, 0.37)).distance, 0, 1e-7);
    }
}

TEST(CubicSegment, TheExtentIsTheLeastThatHoldsTheCurve)
{
    for (const Cubic& c : sampleCubics(60)) {
        const Extent e = extentOf(c);
        Extent seen { c.start, c.start };
        for (int i = 0; i <= 4000; ++i) {
            const Vec2 p = pointAt(c, i / 4000.0);
            seen.least = { std::min(seen.least.x, p.x), std::min(seen.least.y, p.y) };
            seen.most = { std::max(seen.most.x, p.x), std::max(seen.most.y, p.y) };
        }
        for (const auto& [ours, theirs] : { std::pair(e.least, seen.least), std::pair(e.most, seen.most) }) {
            EXPECT_NEAR(ours.x, theirs.x, 1e-3);
            EXPECT_NEAR(ours.y, theirs.y, 1e-3);
        }
    }
}

TEST(CubicSegment, PartsInflectionsAndCuspsAreThoseOfTheCurve)
{
    for (const Cubic& c : sampleCubics(60)) {
        const auto [first, second] = splitAt(c, 0.3);
        const Cubic part = partBetween(c, 0.3, 1);
        for (const double t : { 0.0, 0.2, 0.8, 1.0 }) {
            EXPECT_LT((pointAt(first, t) - pointAt(c, 0.3 * t)).length(), 1e-10);
            EXPECT_LT((pointAt(second, t) - pointAt(part, t)).length(), 1e-10);
            EXPECT_LT((pointAt(reversed(c), t) - pointAt(c, 1 - t)).length(), 1e-10);
        }
        for (const double t : inflectionsOf(c))
            EXPECT_LT(curvatureAt(c, t - 1e-3) * curvatureAt(c, t + 1e-3), 0);
        for (const double t : cuspsOf(c))
            EXPECT_LT(derivativeAt(c, t).length(), 1e-4);
    }
    const auto samples = sampleCubics(0);
    const std::vector<std::vector<double>> cusps { { 0.5 }, {}, { 0, 1 }, {}, { 0 }, {}, { 0.5 } };
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto found = cuspsOf(samples[i]);
        ASSERT_EQ(found.size(), cusps[i].size()) << i;
        for (std::size_t k = 0; k < found.size(); ++k)
            EXPECT_NEAR(found[k], cusps[i][k], 1e-5);
    }
    EXPECT_EQ(inflectionsOf({ { 0, 0 }, { 50, 100 }, { 50, -100 }, { 100, 0 } }).size(), 1u);
    EXPECT_TRUE(inflectionsOf(samples[5]).empty());
}

TEST(CubicSegment, StraightMeansNoFurtherFromTheChordThanTheTolerance)
{
    struct {
        Cubic curve;
        double tolerance;
        bool straight;
    } const cases[] = {
        { { { 0, 0 }, { 3, 0 }, { 6, 0 }, { 9, 0 } }, 0, true },
        { { { 0, 0 }, { 30, 0 }, { 60, 0 }, { 9, 0 } }, 1, false }, // runs past its end
        { { { 0, 0 }, { 30, 1 }, { 60, 1 }, { 90, 0 } }, 0.76, true }, // 0.75 high
        { { { 0, 0 }, { 30, 1 }, { 60, 1 }, { 90, 0 } }, 0.74, false },
        { { { 5, 5 }, { 5, 5 }, { 5, 5 }, { 5, 5 } }, 0, true },
    };
    for (const auto& c : cases)
        EXPECT_EQ(isStraight(c.curve, c.tolerance), c.straight) << c.curve.control1.x << " " << c.tolerance;
}

TEST(CubicCrossings, LinesMeetCurvesWhereTheSideChanges)
{
    const Vec2 a(-20, 31), b(130, 57);
    for (const Cubic& c : sampleCubics(80)) {
        const auto found = crossingsWithLine(c, a, b);
        for (const auto& [t, along] : found)
            EXPECT_LT((pointAt(c, t) - (a + (b - a) * along)).length(), 1e-7);
        std::size_t changes = 0;
        const auto isLeft = [&](int i) { return cross(b - a, pointAt(c, i / 5000.0) - a) > 0; };
        for (int i = 0; i < 5000; ++i)
            changes += isLeft(i) != isLeft(i + 1);
        EXPECT_EQ(found.size(), changes);
    }
    EXPECT_TRUE(crossingsWithLine(sampleCubics(0)[3], { -5, 0 }, { 200, 0 }).empty()) << "along the line";
    EXPECT_TRUE(crossingsWithLine(sampleCubics(0)[1], { 5, 5 }, { 5, 5 }).empty());
}

TEST(CubicCrossings, CurvesMeetAsOftenAsTheirChordsDo)
{
    const auto curves = sampleCubics(120, 17);
    constexpr int chords = 400;
    const auto properlyCross = [](Vec2 a, Vec2 b, Vec2 c, Vec2 d) {
        return (cross(b - a, c - a) > 0) != (cross(b - a, d - a) > 0)
            && (cross(d - c, a - c) > 0) != (cross(d - c, b - c) > 0);
    };
    for (std::size_t i = 8; i + 1 < curves.size(); i += 2) {
        const auto [found, overlap] = crossingsOf(curves[i], curves[i + 1]);
        EXPECT_FALSE(overlap);
        for (const auto& [t1, t2] : found)
            EXPECT_LT((pointAt(curves[i], t1) - pointAt(curves[i + 1], t2)).length(), 1e-6);
        std::size_t expected = 0;
        for (int u = 0; u < chords; ++u)
            for (int v = 0; v < chords; ++v)
                expected += properlyCross(pointAt(curves[i], double(u) / chords),
                    pointAt(curves[i], double(u + 1) / chords), pointAt(curves[i + 1], double(v) / chords),
                    pointAt(curves[i + 1], double(v + 1) / chords));
        EXPECT_EQ(found.size(), expected) << i;
    }
    const Cubic wave { { 0, 0 }, { 200, 100 }, { -100, 100 }, { 100, 0 } };
    const Cubic across { { 0, 0 }, { 100, 150 }, { 100, -100 }, { 0, 100 } };
    EXPECT_FALSE(crossingsOf(wave, across).crossings.empty());
    EXPECT_TRUE(crossingsOf(wave, wave).overlap) << "a curve runs along itself";
    EXPECT_TRUE(crossingsOf(wave, { { 300, 0 }, { 300, 9 }, { 310, 9 }, { 310, 0 } }).crossings.empty());
}

TEST(CubicOffset, PiecesStayWithinTheToleranceOfTheTrueOffset)
{
    for (const Cubic& c : sampleCubics(60)) {
        for (const double distance : { 3.0, -20.0, 60.0 }) {
            constexpr double tolerance = 0.01;
            const auto pieces = offsetCurves(c, distance, tolerance);
            ASSERT_FALSE(pieces.empty());
            EXPECT_LE(pieces.size(), 256u);
            for (std::size_t i = 1; i < pieces.size(); ++i)
                ASSERT_LT((pieces[i].start - pieces[i - 1].end).length(), 1e-3);
            for (int i = 0; i <= 1000; ++i) {
                const double t = i / 1000.0;
                if (derivativeAt(c, t).length() < 1e-3)
                    continue; // any direction is as good
                const Vec2 direction = directionAt(c, t);
                const Vec2 exact = pointAt(c, t) + leftNormal(direction) * distance;
                ASSERT_LT(distanceToCurves(exact, pieces), tolerance)
                    << "at " << t << " of " << c.control1.x << ", by " << distance;
            }
        }
    }
}

TEST(CubicSegment, HostileNumbersGiveClearAnswers)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN(), inf = INFINITY;
    const Cubic point { { 7, 7 }, { 7, 7 }, { 7, 7 }, { 7, 7 } }, plain = sampleCubics(0)[1];
    for (const Cubic& bad : { Cubic { { nan, 0 }, { 1, 1 }, { 2, 2 }, { 3, 3 } },
             Cubic { { 0, 0 }, { 1, inf }, { 2, 2 }, { 3, 3 } } }) {
        EXPECT_EQ(lengthOf(bad), 0);
        EXPECT_EQ(nearestPoint(bad, { 0, 0 }).distance, inf);
        EXPECT_TRUE(crossingsOf(bad, plain).crossings.empty());
        EXPECT_TRUE(crossingsWithLine(bad, { 0, 0 }, { 1, 5 }).empty());
        EXPECT_TRUE(inflectionsOf(bad).empty() && cuspsOf(bad).empty());
        EXPECT_TRUE(offsetCurves(bad, 1, 0.1).empty());
    }
    EXPECT_EQ(lengthOf(point), 0);
    EXPECT_EQ(parameterAtLength(point, 1), 1);
    EXPECT_DOUBLE_EQ(nearestPoint(point, { 10, 11 }).distance, 5);
    EXPECT_TRUE(offsetCurves(point, 5, 0.1).empty());
    EXPECT_TRUE(offsetCurves(plain, nan, 0.1).empty());
    for (const double tolerance : { 0.0, nan, -1.0, inf })
        EXPECT_LE(offsetCurves(plain, 5, tolerance).size(), 256u);
    const Cubic huge { { -3e38, 0 }, { 3e38, 3e38 }, { -3e38, -3e38 }, { 3e38, 0 } };
    EXPECT_TRUE(std::isfinite(lengthOf(huge)));
    EXPECT_TRUE(std::isfinite(nearestPoint(huge, { 1, 2 }).distance));
}
