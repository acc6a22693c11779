#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/CubicSegment.h>

// Arc lengths by Gauss-Legendre quadrature.

namespace vxr {

namespace {

struct Node {
    double place, weight; ///< of the pair at +place and -place on [-1, 1]
};

constexpr Node eight[]
    = { { 0.1834346424956498, 0.3626837833783620 }, { 0.5255324099163290, 0.3137066458778873 },
          { 0.7966664774136267, 0.2223810344533745 }, { 0.9602898564975363, 0.1012285362903763 } };

constexpr Node sixteen[]
    = { { 0.0950125098376374, 0.1894506104550685 }, { 0.2816035507792589, 0.1826034150449236 },
          { 0.4580167776572274, 0.1691565193950025 }, { 0.6178762444026438, 0.1495959888165767 },
          { 0.7554044083550030, 0.1246289712555339 }, { 0.8656312023878318, 0.0951585116824928 },
          { 0.9445750230732326, 0.0622535239386479 }, { 0.9894009349916499, 0.0271524594117541 } };

class SpeedIntegral {
public:
    explicit SpeedIntegral(const Cubic& curve)
        : mCurve(curve)
    {
    }

    double between(double from, double to, double tolerance, int depth) const
    {
        double slowest = INFINITY, fastest = 0;
        const double rough = quadrature(eight, from, to, slowest, fastest);
        const double fine = quadrature(sixteen, from, to, slowest, fastest);
        // While the speed stays well away from zero the error of the finer order is about the square of
        // their difference, both relative to the length.
        const double difference = std::abs(fine - rough);
        const bool settled = difference * difference <= tolerance * fine * 0.01 && slowest > 0.05 * fastest;
        if (settled || difference <= tolerance || depth == 0)
            return fine;
        const double middle = (from + to) * 0.5;
        return between(from, middle, tolerance * 0.5, depth - 1)
            + between(middle, to, tolerance * 0.5, depth - 1);
    }

private:
    template <std::size_t count>
    double quadrature(
        const Node (&nodes)[count], double from, double to, double& slowest, double& fastest) const
    {
        const double middle = (from + to) * 0.5, half = (to - from) * 0.5;
        double sum = 0;
        for (const Node& node : nodes) {
            const double a = mCurve.derivative(middle - half * node.place).length(),
                         b = mCurve.derivative(middle + half * node.place).length();
            slowest = std::min({ slowest, a, b });
            fastest = std::max({ fastest, a, b });
            sum += node.weight * (a + b);
        }
        return sum * half;
    }

    CubicPolynomial mCurve;
};

constexpr int mostHalvings = 14;

/// The polygon of the control points: no shorter than the curve.
double controlLength(const Cubic& c)
{
    return (c.control1 - c.start).length() + (c.control2 - c.control1).length()
        + (c.end - c.control2).length();
}

double clampedLength(const Cubic& c, double from, double to)
{
    return SpeedIntegral(c).between(from, to, controlLength(c) * lengthPrecision * 0.1, mostHalvings);
}

} // namespace

double lengthOf(const Cubic& c) { return isFinite(c) ? clampedLength(c, 0, 1) : 0; }

double lengthBetween(const Cubic& c, double from, double to)
{
    if (!isFinite(c) || !std::isfinite(from) || !std::isfinite(to))
        return 0;
    return from <= to ? clampedLength(c, from, to) : -clampedLength(c, to, from);
}

double parameterAtLength(const Cubic& c, double length)
{
    if (!isFinite(c) || !(length > 0))
        return 0;
    const double whole = lengthOf(c);
    if (!(length < whole))
        return 1;
    double low = 0, high = 1, reached = 0, at = 0, t = length / whole;
    for (int i = 0; i < 64; ++i) {
        // From the last place: the steps get shorter, and with them the integrals.
        reached += lengthBetween(c, at, t);
        at = t;
        const double missing = length - reached;
        if (std::abs(missing) <= whole * lengthPrecision)
            break;
        (missing > 0 ? low : high) = t;
        t += missing / derivativeAt(c, t).length();
        if (!(t > low && t < high))
            t = (low + high) * 0.5;
    }
    return at;
}

} // namespace vxr
