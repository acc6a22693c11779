#pragma once

#include <vxr/platform/graphics/path/PathVector.h>

#include <array>

namespace vxr {

/// A segment as a + b t + c t^2 + d t^3.
struct CubicPolynomial {
    explicit CubicPolynomial(const Cubic& curve)
        : a(curve.start)
        , b((curve.control1 - curve.start) * 3)
        , c((curve.control2 - curve.control1 * 2 + curve.start) * 3)
        , d(curve.end - curve.start + (curve.control1 - curve.control2) * 3)
    {
    }

    Vec2 at(double t) const { return ((d * t + c) * t + b) * t + a; }
    Vec2 derivative(double t) const { return (d * (3 * t) + c * 2) * t + b; }
    Vec2 secondDerivative(double t) const { return d * (6 * t) + c * 2; }

    /// Coefficients of half the derivative of the squared speed, the constant one first.
    std::array<double, 4> speedSlope() const
    {
        return { 2 * dot(b, c), 4 * dot(c, c) + 6 * dot(b, d), 18 * dot(c, d), 18 * dot(d, d) };
    }

    Vec2 a, b, c, d;
};

} // namespace vxr
