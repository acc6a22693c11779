#include "CurveSamples.h"
#include "SchneiderFit.h"

#include <tests/support/PathBuilder.h>
#include <vxr/geometry/curves/CurveFit.h>
#include <vxr/geometry/curves/PathSimplification.h>

#include <gtest/gtest.h>

#include <functional>
#include <numbers>

using namespace vxr;
using namespace vxr::test;

namespace {

constexpr double pi = std::numbers::pi;

std::vector<Vec2> sampled(int count, const std::function<Vec2(double)>& at)
{
    std::vector<Vec2> points;
    for (int i = 0; i < count; ++i)
        points.push_back(at(double(i) / (count - 1)));
    return points;
}

/// Drawn lines of several kinds, as a pen would deliver them.
std::vector<std::vector<Vec2>> drawnLines()
{
    std::mt19937 engine(5);
    const auto noise = [&] { return (static_cast<double>(engine() >> 8) * 0x1p-24 - 0.5); };
    std::vector<std::vector<Vec2>> lines {
        sampled(200, [](double t) { return Vec2(300 * t, 60 * std::sin(12 * t)); }),
        sampled(300, [](double t) { return Vec2(std::cos(9 * t), std::sin(9 * t)) * (10 + 90 * t); }),
        sampled(150, [](double t) { return Vec2(200 * t, std::abs(t - 0.5) * 200); }),
        sampled(40, [](double t) { return Vec2(std::cos(2 * pi * t), std::sin(2 * pi * t)) * 80; }),
        sampled(400, [&](double t) { return Vec2(300 * t + noise(), 80 * std::cos(10 * t) + noise()); }),
        sampled(120, [](double t) { return Vec2(100 * t, 0); }),
    };
    for (const Cubic& c : sampleCubics(12, 8))
        lines.push_back(sampled(80, [&](double t) { return pointAt(c, t); }));
    return lines;
}

/// The distance of the furthest of many places of `from` from `to`.
double furthest(const std::vector<Cubic>& from, const std::vector<Cubic>& to)
{
    double most = 0;
    for (const Cubic& c : from)
        for (int i = 0; i <= 10; ++i)
            most = std::max(most, distanceToCurves(pointAt(c, i / 10.0), to));
    return most;
}

} // namespace

TEST(CurveFit, KeepsTheToleranceWithNoMoreSegmentsThanSchneidersMethod)
{
    std::size_t ours = 0, theirs = 0;
    const auto lines = drawnLines();
    for (std::size_t k = 0; k < lines.size(); ++k) {
        for (const double tolerance : { 0.2, 1.0, 4.0 }) {
            const auto curves = fitCurves(lines[k], { .tolerance = tolerance });
            ASSERT_FALSE(curves.empty());
            for (const Vec2& p : lines[k])
                ASSERT_LE(distanceToCurves(p, curves), tolerance * (1 + 1e-9));
            for (std::size_t i = 1; i < curves.size(); ++i)
                ASSERT_EQ(curves[i].start, curves[i - 1].end);
            EXPECT_EQ(curves.front().start, lines[k].front());
            EXPECT_EQ(curves.back().end, lines[k].back());
            const std::size_t reference = schneiderFit(lines[k], tolerance).size();
            EXPECT_LE(curves.size(), reference) << "line " << k << ", tolerance " << tolerance;
            ours += curves.size();
            theirs += reference;
        }
    }
    std::cout << ours << " segments, " << theirs << " by the reference\n";
}

TEST(CurveFit, CornersStayCornersAndTheRestIsSmooth)
{
    // A square with points every unit, one side of it a half circle.
    std::vector<Vec2> points;
    for (int i = 0; i < 40; ++i)
        points.emplace_back(i, 0);
    for (int i = 0; i <= 60; ++i)
        points.push_back(Vec2(40, 20) + Vec2(std::sin(pi * i / 60), -std::cos(pi * i / 60)) * 20);
    for (int i = 39; i >= 0; --i)
        points.emplace_back(i, 40);
    for (int i = 39; i > 0; --i)
        points.emplace_back(0, i);
    const auto curves = fitCurves(points, { .tolerance = 0.25, .closed = true });
    EXPECT_EQ(curves.back().end, curves.front().start);
    int corners = 0;
    for (std::size_t i = 0; i < curves.size(); ++i) {
        const double cosine = dot(directionAt(curves[i], 1), directionAt(curves[(i + 1) % curves.size()], 0));
        const Vec2 p = curves[i].end;
        if (cosine < 0.9) {
            ++corners;
            EXPECT_TRUE(p == Vec2(0, 0) || p == Vec2(0, 40)) << p.x << " " << p.y;
        } else {
            EXPECT_GT(cosine, 0.99) << p.x << " " << p.y;
        }
    }
    EXPECT_EQ(corners, 2);
    EXPECT_LE(curves.size(), 8u);
}

TEST(CurveFit, HostilePointsGiveAClearResult)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Vec2> some { { 0, 0 }, { nan, 3 }, { 0, 0 }, { 10, 0 }, { 10, 0 }, { INFINITY, 1 },
        { 10, 10 } };
    EXPECT_TRUE(fitCurves(std::vector<Vec2> {}, {}).empty());
    EXPECT_TRUE(fitCurves(std::vector<Vec2> { { 5, 5 }, { 5, 5 } }, {}).empty());
    for (const double tolerance : { 0.0, nan, -3.0 }) {
        const auto curves = fitCurves(some, { .tolerance = tolerance });
        ASSERT_EQ(curves.size(), 2u) << "the line through the points";
        EXPECT_TRUE(isStraight(curves[0], 1e-9) && isStraight(curves[1], 1e-9));
    }
    EXPECT_EQ(fitCurves(some, { .tolerance = INFINITY }).size(), 1u);
    // Noise without a line in it, and as many points on one spot but for the last places.
    std::mt19937 engine(1);
    std::vector<Vec2> noise;
    for (int i = 0; i < 200000; ++i)
        noise.emplace_back(engine() % 1000, engine() % 1000);
    EXPECT_LE(fitCurves(noise, { .tolerance = 0.5, .closed = true }).size(), noise.size());
    for (Vec2& p : noise)
        p = Vec2(7, 7) + p * 1e-13;
    EXPECT_GE(fitCurves(noise, { .tolerance = 0.5 }).size(), 1u);
}

TEST(PathSimplification, BothOutlinesStayWithinTheToleranceOfEachOther)
{
    std::vector<std::shared_ptr<Path>> paths { Path::pathWithOvalInRect({ 0, 0, 200, 120 }),
        newPathOf("M 0 0 L 100 0 L 100 50 L 40 50 L 40 90 Z"),
        newPathOf("M 0 0 C 40 0 60 80 100 80 C 140 80 160 0 200 0 L 200 100 M 5 5 L 9 5") };
    for (const auto& line : drawnLines()) {
        auto path = Path::path();
        path->moveTo(line[0].point());
        for (std::size_t i = 1; i < line.size(); ++i)
            path->lineTo(line[i].point());
        paths.push_back(path);
        paths.push_back(path->copy());
        paths.back()->close();
    }
    for (std::size_t k = 0; k < paths.size(); ++k) {
        for (const double tolerance : { 0.1, 1.0, 5.0 }) {
            const auto simple = simplifiedPath(*paths[k], tolerance);
            const auto before = segmentsOf(*paths[k]), after = segmentsOf(*simple);
            EXPECT_LE(simple->elementCount(), paths[k]->elementCount());
            EXPECT_LE(furthest(before, after), tolerance) << k << ", " << tolerance;
            EXPECT_LE(furthest(after, before), tolerance) << k << ", " << tolerance;
        }
    }
    EXPECT_LE(simplifiedPath(*paths[3], 0.5)->elementCount(), 14u) << "a sine of two periods in 200 lines";
}

TEST(PathSimplification, KeepsWhatCannotBeSimpler)
{
    const Path plain = pathOf("M 0 0 L 100 0 L 100 50 Z M 7 7 L 9 9 C 9 20 30 20 30 30 M nan 0 L 1 1");
    const auto kept = segmentsOf(plain);
    for (const double tolerance : { 0.0, 1e-3, std::nan(""), double(INFINITY) }) {
        const auto same = segmentsOf(*simplifiedPath(plain, tolerance));
        ASSERT_EQ(same.size(), kept.size()) << tolerance;
        for (std::size_t i = 0; i < kept.size(); ++i)
            EXPECT_EQ(same[i].end, kept[i].end);
    }
    const auto lines = pathWithStraightCurvesAsLines(pathOf("M 0 0 C 3 0.1 6 0.1 9 0 C 9 9 0 9 0 20"), 0.2);
    EXPECT_EQ(lines->kinds()[1], PathElementKind::LineTo);
    EXPECT_EQ(lines->kinds()[2], PathElementKind::CurveTo);
}
