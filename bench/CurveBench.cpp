#include <bench/Compare.h>

#include <vxr/geometry/curves/CubicOffset.h>
#include <vxr/geometry/curves/CubicSegment.h>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>

namespace vxr::bench {

namespace {

std::vector<Cubic> randomCubics(int count)
{
    std::mt19937 engine(11);
    const auto point = [&] {
        const double x = static_cast<double>(engine() >> 8) * 0x1p-24 * 256;
        return Vec2(x, static_cast<double>(engine() >> 8) * 0x1p-24 * 256);
    };
    std::vector<Cubic> curves;
    for (int i = 0; i < count; ++i) {
        const Vec2 a = point(), b = point(), c = point();
        curves.push_back({ a, b, c, point() });
    }
    return curves;
}

/// Calls `each` with the ends of each of a thousand pieces.
template <class Each> void inPieces(const Cubic& c, Each each)
{
    constexpr int pieces = 1000;
    Vec2 from = c.start;
    for (int i = 1; i <= pieces; ++i) {
        const Vec2 to = pointAt(c, double(i) / pieces);
        each(from, to);
        from = to;
    }
}

Pair lengthAgainstPieces()
{
    const auto curves = std::make_shared<std::vector<Cubic>>(randomCubics(100));
    return { [curves] {
                double sum = 0;
                for (const Cubic& c : *curves)
                    sum += lengthOf(c);
                benchmark::DoNotOptimize(sum);
            },
        [curves] {
            double sum = 0;
            for (const Cubic& c : *curves)
                inPieces(c, [&](Vec2 a, Vec2 b) { sum += (b - a).length(); });
            benchmark::DoNotOptimize(sum);
        } };
}

Pair nearestAgainstPieces()
{
    const auto curves = std::make_shared<std::vector<Cubic>>(randomCubics(100));
    const Vec2 p(100, 150);
    return { [curves, p] {
                double sum = 0;
                for (const Cubic& c : *curves)
                    sum += nearestPoint(c, p).distance;
                benchmark::DoNotOptimize(sum);
            },
        [curves, p] {
            double sum = 0;
            for (const Cubic& c : *curves) {
                double least = INFINITY;
                inPieces(c, [&](Vec2 a, Vec2 b) {
                    const Vec2 line = b - a, w = p - a;
                    const double squared = dot(line, line);
                    const double t = squared > 0 ? std::clamp(dot(w, line) / squared, 0.0, 1.0) : 0;
                    const Vec2 off = w - line * t;
                    least = std::min(least, dot(off, off));
                });
                sum += std::sqrt(least);
            }
            benchmark::DoNotOptimize(sum);
        } };
}

/// The worst of a thousand places of the true offset of each curve, in tolerances.
double offsetError()
{
    constexpr double tolerance = 0.05, distance = 7;
    double worst = 0;
    for (const Cubic& c : randomCubics(100)) {
        const auto pieces = offsetCurves(c, distance, tolerance);
        for (int i = 0; i < 1000; ++i) {
            const double t = i / 999.0;
            const Vec2 exact = pointAt(c, t) + leftNormal(directionAt(c, t)) * distance;
            double least = INFINITY;
            for (const Cubic& piece : pieces)
                least = std::min(least, nearestPoint(piece, exact).distance);
            worst = std::max(worst, least / tolerance);
        }
    }
    return worst;
}

const int registered[] = {
    compare("CURVES/length-to-1000-pieces", atLeast(20), lengthAgainstPieces),
    compare("CURVES/nearest-to-1000-pieces", atLeast(20), nearestAgainstPieces),
    measure("CURVES/offset-error-in-tolerances", atMost(1), offsetError),
};

} // namespace

} // namespace vxr::bench
