#include <vxr/geometry/curves/CubicSegment.h>

#include <vxr/geometry/curves/CubicPolynomial.h>
#include <vxr/geometry/curves/PolynomialRoots.h>

namespace vxr {

bool isFinite(const Cubic& c)
{
    const double sum = c.start.x * 0 + c.start.y * 0 + c.control1.x * 0 + c.control1.y * 0 + c.control2.x * 0
        + c.control2.y * 0 + c.end.x * 0 + c.end.y * 0;
    return sum == 0;
}

// Points and parts.

Vec2 pointAt(const Cubic& c, double t)
{
    const double s = 1 - t;
    return c.start * (s * s * s) + c.control1 * (3 * s * s * t) + c.control2 * (3 * s * t * t)
        + c.end * (t * t * t);
}

Vec2 derivativeAt(const Cubic& c, double t)
{
    const double s = 1 - t;
    return (c.control1 - c.start) * (3 * s * s) + (c.control2 - c.control1) * (6 * s * t)
        + (c.end - c.control2) * (3 * t * t);
}

Vec2 secondDerivativeAt(const Cubic& c, double t)
{
    return (c.control2 - c.control1 * 2 + c.start) * (6 * (1 - t))
        + (c.end - c.control2 * 2 + c.control1) * (6 * t);
}

namespace {

Vec2 unitOrZero(Vec2 v)
{
    const double length = v.length();
    return length > 0 ? v * (1 / length) : Vec2();
}

/// What rounding makes of a zero derivative.
double negligibleDerivative(const Cubic& c)
{
    double most = 0;
    for (const Vec2& p : { c.control1 - c.start, c.control2 - c.start, c.end - c.start })
        most = std::max({ most, std::abs(p.x), std::abs(p.y) });
    return most * 1e-9;
}

} // namespace

Vec2 directionAt(const Cubic& c, double t)
{
    const Vec2 d = derivativeAt(c, t);
    if (d.length() > negligibleDerivative(c))
        return unitOrZero(d);
    // Beside a cusp the second derivative leads, and where that vanishes too, the chord.
    const Vec2 second = secondDerivativeAt(c, t) * (t < 0.5 ? 1 : -1);
    return second.length() > negligibleDerivative(c) ? unitOrZero(second) : unitOrZero(c.end - c.start);
}

double curvatureAt(const Cubic& c, double t)
{
    const Vec2 d = derivativeAt(c, t);
    const double speed = d.length();
    return cross(d, secondDerivativeAt(c, t)) / (speed * speed * speed);
}

std::pair<Cubic, Cubic> splitAt(const Cubic& c, double t)
{
    const auto mix = [t](Vec2 a, Vec2 b) { return a + (b - a) * t; };
    const Vec2 ab = mix(c.start, c.control1), bc = mix(c.control1, c.control2), cd = mix(c.control2, c.end);
    const Vec2 abc = mix(ab, bc), bcd = mix(bc, cd), middle = mix(abc, bcd);
    return { { c.start, ab, abc, middle }, { middle, bcd, cd, c.end } };
}

Cubic partBetween(const Cubic& c, double from, double to)
{
    const double third = (to - from) / 3;
    const Vec2 start = from == 0 ? c.start : pointAt(c, from), end = to == 1 ? c.end : pointAt(c, to);
    return { start, start + derivativeAt(c, from) * third, end - derivativeAt(c, to) * third, end };
}

Cubic reversed(const Cubic& c) { return { c.end, c.control2, c.control1, c.start }; }

Cubic cubicFromLine(Vec2 start, Vec2 end)
{
    const Vec2 third = (end - start) * (1.0 / 3);
    return { start, start + third, end - third, end };
}

bool isStraight(const Cubic& c, double tolerance)
{
    const Vec2 chord = c.end - c.start;
    const double length = chord.length();
    const Vec2 a = c.control1 - c.start, b = c.control2 - c.start;
    if (!(length > tolerance))
        return std::max({ length, a.length(), b.length() }) <= tolerance;
    const double slack = tolerance * length, most = length * length + slack;
    const double alongA = dot(a, chord), alongB = dot(b, chord);
    // No point is further from the chord than 3/4 of the control points are.
    return std::max(std::abs(cross(a, chord)), std::abs(cross(b, chord))) * 0.75 <= slack && alongA >= -slack
        && alongB >= -slack && alongA <= most && alongB <= most;
}

// Places.

Extent extentOf(const Cubic& curve)
{
    if (!isFinite(curve))
        return {};
    Extent extent { curve.start, curve.start };
    const auto add = [&](Vec2 p) {
        extent.least = { std::min(extent.least.x, p.x), std::min(extent.least.y, p.y) };
        extent.most = { std::max(extent.most.x, p.x), std::max(extent.most.y, p.y) };
    };
    add(curve.end);
    const CubicPolynomial q(curve);
    const double slopeX[] = { q.b.x, 2 * q.c.x, 3 * q.d.x }, slopeY[] = { q.b.y, 2 * q.c.y, 3 * q.d.y };
    for (const double t : PolynomialRoots(slopeX))
        add({ q.at(t).x, curve.start.y });
    for (const double t : PolynomialRoots(slopeY))
        add({ curve.start.x, q.at(t).y });
    return extent;
}

std::vector<double> inflectionsOf(const Cubic& curve)
{
    const CubicPolynomial q(curve);
    const double bending[] = { cross(q.b, q.c), 3 * cross(q.b, q.d), 3 * cross(q.c, q.d) };
    // A double root is a cusp: the curve goes on bending the same way.
    const double discriminant = bending[1] * bending[1] - 4 * bending[0] * bending[2];
    std::vector<double> found;
    // What rounding leaves of a straight segment bends nowhere.
    double most = 0;
    for (const double b : bending)
        most = std::max(most, std::abs(b));
    const double scale = std::max({ dot(q.b, q.b), dot(q.c, q.c), dot(q.d, q.d) });
    if (!(most > 1e-12 * scale) || !(discriminant > 1e-12 * most * most))
        return found;
    for (const double t : PolynomialRoots(bending))
        if (t > 1e-9 && t < 1 - 1e-9)
            found.push_back(t);
    return found;
}

std::vector<double> cuspsOf(const Cubic& curve)
{
    std::vector<double> found;
    if (!isFinite(curve))
        return found;
    // The speed is least where B' . B'' = 0.
    const CubicPolynomial q(curve);
    const double negligible = negligibleDerivative(curve) * 100;
    const auto consider = [&](double t) {
        if (negligible > 0 && derivativeAt(curve, t).length() <= negligible && found.size() < 2
            && (found.empty() || t - found.back() > 1e-6))
            found.push_back(t);
    };
    consider(0);
    for (const double t : PolynomialRoots(q.speedSlope()))
        consider(t);
    consider(1);
    return found;
}

} // namespace vxr
