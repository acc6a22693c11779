#include <bench/Compare.h>

#include <vxr/geometry/curves/CubicOffset.h>
#include <vxr/geometry/curves/CubicSegment.h>
#include <vxr/geometry/tracing/VXRImageTracer.h>
#include <vxr/platform/graphics/path/Path.h>

#include <benchmark/benchmark.h>

#include <cstring>
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

/// A ring with waves along its outer edge, the baseline reading eight bytes at a time.
Pair traceAgainstReading()
{
    constexpr int side = 4000;
    const auto mask = std::make_shared<std::vector<std::uint8_t>>(std::size_t(side) * side);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const double r = std::hypot(x - 2000, y - 2000), angle = std::atan2(y - 2000, x - 2000);
            (*mask)[std::size_t(y) * side + std::size_t(x)]
                = r < 1400 + 300 * std::cos(7 * angle) && r > 500 ? 255 : 0;
        }
    return { [mask] {
                VXRImageTracer::traceMask({ mask->data(), side, side, side });
            },
        [mask] {
            std::uint64_t sum = 0, word = 0;
            for (std::size_t i = 0; i + 8 <= mask->size(); i += 8) {
                std::memcpy(&word, mask->data() + i, 8);
                sum += word;
            }
            benchmark::DoNotOptimize(sum);
        } };
}

/// Four times the noise in at most four times the time.
Pair noiseBySize()
{
    const auto noise = [](int side) {
        std::mt19937 engine(3);
        const auto mask = std::make_shared<std::vector<std::uint8_t>>(std::size_t(side) * std::size_t(side));
        for (std::uint8_t& byte : *mask)
            byte = static_cast<std::uint8_t>(engine());
        return [mask, side] {
            VXRTraceOptions all;
            all.outlines.mostOutlines = 1 << 24;
            VXRImageTracer::traceMask({ mask->data(), side, side, std::size_t(side) }, all);
        };
    };
    return { noise(800), noise(400) };
}

const int registered[] = {
    compare("CURVES/length-to-1000-pieces", atLeast(20), lengthAgainstPieces),
    compare("CURVES/nearest-to-1000-pieces", atLeast(20), nearestAgainstPieces),
    measure("CURVES/offset-error-in-tolerances", atMost(1), offsetError),
    compare("CURVES/trace-to-reading-the-mask", atMost(5), traceAgainstReading),
    compare("CURVES/noise-four-times-as-large", atMost(5), noiseBySize),
};

} // namespace

} // namespace vxr::bench
