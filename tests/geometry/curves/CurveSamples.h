#pragma once

#include <vxr/geometry/curves/CubicSegment.h>

#include <random>
#include <vector>

namespace vxr::test {

/// Random and awkward segments about 100 in size.
inline std::vector<Cubic> sampleCubics(int random, unsigned seed = 3)
{
    std::vector<Cubic> all {
        { { 0, 0 }, { 100, 100 }, { 0, 100 }, { 100, 0 } }, // a cusp at the middle
        { { 0, 0 }, { 120, 90 }, { -20, 90 }, { 100, 0 } }, // a loop
        { { 0, 0 }, { 0, 0 }, { 100, 100 }, { 100, 100 } }, // straight, without arms
        { { 0, 0 }, { 80, 0 }, { 20, 0 }, { 100, 0 } }, // straight, run through unevenly
        { { 0, 0 }, { 0, 0 }, { 50, 90 }, { 100, 0 } }, // stops at its start
        { { 0, 0 }, { 55.2285, 0 }, { 100, 44.7715 }, { 100, 100 } }, // a quarter circle
        { { 0, 0 }, { 100, 1e-4 }, { 0, 1e-4 }, { 100, 0 } }, // turns back and on again at one point
    };
    std::mt19937 engine(seed);
    const auto coordinate = [&] { return static_cast<double>(engine() >> 8) * 0x1p-24 * 100; };
    const auto point = [&] {
        const double x = coordinate();
        return Vec2(x, coordinate());
    };
    for (int i = 0; i < random; ++i) {
        const Vec2 a = point(), b = point(), c = point();
        all.push_back({ a, b, c, point() });
    }
    return all;
}

inline double distanceToSegment(Vec2 p, Vec2 a, Vec2 b)
{
    const Vec2 line = b - a, w = p - a;
    const double squared = dot(line, line);
    const double along = squared > 0 ? std::clamp(dot(w, line) / squared, 0.0, 1.0) : 0;
    return (w - line * along).length();
}

inline double distanceToCurves(Vec2 p, const std::vector<Cubic>& curves)
{
    double least = INFINITY;
    for (const Cubic& c : curves)
        least = std::min(least, nearestPoint(c, p).distance);
    return least;
}

/// The segments of a path that has nothing but finite points.
inline std::vector<Cubic> segmentsOf(const Path& path)
{
    struct Collector {
        std::vector<Cubic> all;
        void move(Vec2) { }
        void line(Vec2 from, Vec2 to) { all.push_back(cubicFromLine(from, to)); }
        void curve(const Cubic& c) { all.push_back(c); }
        void close(Vec2 from, Vec2 start) { line(from, start); }
    } collector;
    walkFinite(path, collector);
    return collector.all;
}

} // namespace vxr::test
