#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/CubicSegment.h>

#include <array>

// Arc lengths by Gauss-Legendre quadrature.
//
// Taken as a complex number, the derivative of a segment is a quadratic polynomial c (t - a) (t - b), so that
// the speed is |c| |t - a| |t - b|: smooth but for its two zeros a and b. How many nodes an interval needs
// follows from where they lie: with n the error shrinks like rho^-2n, where rho + 1 / rho is the sum of a
// zero's distances from both ends, in half intervals.

namespace vxr {

namespace {

struct Node {
    double place, weight; ///< of the pair at +place and -place on [-1, 1]
};

constexpr std::array<Node, 4> eight { { { 0.1834346424956498, 0.3626837833783620 },
    { 0.5255324099163290, 0.3137066458778873 }, { 0.7966664774136267, 0.2223810344533745 },
    { 0.9602898564975363, 0.1012285362903763 } } };

constexpr std::array<Node, 8> sixteen { { { 0.0950125098376374, 0.1894506104550685 },
    { 0.2816035507792589, 0.1826034150449236 }, { 0.4580167776572274, 0.1691565193950025 },
    { 0.6178762444026438, 0.1495959888165767 }, { 0.7554044083550030, 0.1246289712555339 },
    { 0.8656312023878318, 0.0951585116824928 }, { 0.9445750230732326, 0.0622535239386479 },
    { 0.9894009349916499, 0.0271524594117541 } } };

// Products and quotients of complex numbers.
Vec2 times(Vec2 a, Vec2 b) { return { a.x * b.x - a.y * b.y, a.x * b.y + a.y * b.x }; }
Vec2 over(Vec2 a, Vec2 b) { return Vec2(dot(a, b), cross(b, a)) * (1 / dot(b, b)); }

Vec2 squareRoot(Vec2 z)
{
    const double size = std::sqrt(0.5 * (z.length() + std::abs(z.x)));
    if (!(size > 0))
        return {};
    const double other = z.y / (2 * size);
    return z.x >= 0 ? Vec2(size, other) : Vec2(std::abs(other), std::copysign(size, z.y));
}

class SpeedIntegral {
public:
    explicit SpeedIntegral(const Cubic& curve)
    {
        const CubicPolynomial q(curve);
        mConstant = q.b;
        mLinear = q.c * 2;
        mSquare = q.d * 3;
        // Of the two roots with the same discriminant, the sum that doesn't cancel. A zero that doesn't exist
        // comes out infinite or not a number.
        Vec2 root = squareRoot(times(mLinear, mLinear) - times(mSquare, mConstant) * 4);
        if (dot(root, mLinear) < 0)
            root = -root;
        const Vec2 sum = (mLinear + root) * -0.5;
        mZeros = { over(sum, mSquare), over(mConstant, sum) };
    }

    double between(double from, double to, int mostCuts = 24) const
    {
        // For a relative error below 1e-8.
        constexpr double leastForEight = 3, leastForSixteen = 2.25, harmless = 1e-5;
        const double length = to - from;
        double nearest = INFINITY; // the sum of rho and 1 / rho
        Vec2 zero;
        for (const Vec2& z : mZeros) {
            const double fromStart = (z - Vec2(from, 0)).length(), fromEnd = (z - Vec2(to, 0)).length();
            const double sum = 2 * (fromStart + fromEnd) / length;
            // Of a zero at the end itself only the smooth side is seen.
            if (sum < nearest && std::min(fromStart, fromEnd) > harmless * length) {
                nearest = sum;
                zero = z;
            }
        }
        if (nearest > leastForEight)
            return quadrature(eight, from, to);
        if (nearest > leastForSixteen || mostCuts == 0)
            return quadrature(sixteen, from, to);
        const double at = cut(from, to, zero, leastForSixteen - 2);
        return between(from, at, mostCuts - 1) + between(at, to, mostCuts - 1);
    }

private:
    /// Beside the zero, or where the piece between it and an end is as long as 16 nodes suffice for.
    static double cut(double from, double to, Vec2 zero, double slack)
    {
        const double length = to - from, margin = 0.02 * length;
        if (zero.x > from + margin && zero.x < to - margin)
            return zero.x;
        const bool atStart = zero.x < (from + to) * 0.5;
        const double end = atStart ? from : to;
        const double beyond = std::max(atStart ? from - zero.x : zero.x - to, 0.0);
        const double piece = 2 / slack * ((zero - Vec2(end, 0)).length() + beyond);
        return atStart ? from + std::min(piece, length * 0.5) : to - std::min(piece, length * 0.5);
    }

    template <std::size_t count>
    double quadrature(const std::array<Node, count>& nodes, double from, double to) const
    {
        const double middle = (from + to) * 0.5, half = (to - from) * 0.5;
        double sum = 0;
        for (const Node& node : nodes)
            sum += node.weight * (speedAt(middle - half * node.place) + speedAt(middle + half * node.place));
        return sum * half;
    }

    double speedAt(double t) const { return ((mSquare * t + mLinear) * t + mConstant).length(); }

    Vec2 mConstant, mLinear, mSquare;
    std::array<Vec2, 2> mZeros;
};

} // namespace

double lengthOf(const Cubic& c) { return isFinite(c) ? SpeedIntegral(c).between(0, 1) : 0; }

double lengthBetween(const Cubic& c, double from, double to)
{
    if (!isFinite(c) || !std::isfinite(from) || !std::isfinite(to))
        return 0;
    const SpeedIntegral speed(c);
    return from <= to ? speed.between(from, to) : -speed.between(to, from);
}

double parameterAtLength(const Cubic& c, double length)
{
    if (!isFinite(c) || !(length > 0))
        return 0;
    const SpeedIntegral speed(c);
    const double whole = speed.between(0, 1);
    if (!(length < whole))
        return 1;
    double low = 0, high = 1, reached = 0, at = 0, t = length / whole;
    for (int i = 0; i < 64; ++i) {
        // From the last place: the steps get shorter, and with them the integrals.
        reached += at <= t ? speed.between(at, t) : -speed.between(t, at);
        at = t;
        const double missing = length - reached;
        if (std::abs(missing) <= whole * lengthPrecision * 0.01)
            break;
        (missing > 0 ? low : high) = t;
        t += missing / derivativeAt(c, t).length();
        if (!(t > low && t < high))
            t = (low + high) * 0.5;
    }
    return at;
}

} // namespace vxr
