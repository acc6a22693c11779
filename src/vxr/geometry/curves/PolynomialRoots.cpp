#include <vxr/geometry/curves/PolynomialRoots.h>

#include <algorithm>
#include <cmath>

namespace vxr {

namespace {

double valueAt(std::span<const double> a, double t)
{
    double value = 0;
    for (std::size_t i = a.size(); i-- > 0;)
        value = value * t + a[i];
    return value;
}

/// The one root between `low` and `high`, at which the values have different signs: Newton's steps, and
/// halving where a step leaves the bracket.
double rootBetween(
    std::span<const double> a, std::span<const double> slope, double low, double high, double valueAtLow)
{
    double t = (low + high) * 0.5;
    for (int i = 0; i < 60; ++i) {
        const double value = valueAt(a, t);
        (value < 0) == (valueAtLow < 0) ? low = t : high = t;
        const double step = value / valueAt(slope, t);
        double next = t - step;
        if (!(next > low && next < high))
            next = (low + high) * 0.5;
        if (std::fabs(next - t) < 1e-15 * (1 + std::fabs(t)))
            return next;
        t = next;
    }
    return t;
}

} // namespace

void PolynomialRoots::add(double root)
{
    if (root >= 0 && root <= 1 && mCount < mRoots.size() && !(mCount > 0 && root <= mRoots[mCount - 1]))
        mRoots[mCount++] = root;
}

PolynomialRoots::PolynomialRoots(std::span<const double> a)
{
    double most = 0;
    for (const double c : a)
        most = std::max(most, std::isfinite(c) ? std::fabs(c) : INFINITY);
    if (!(most > 0) || !std::isfinite(most))
        return;
    while (a.size() > 1 && std::fabs(a.back()) <= 1e-15 * most)
        a = a.first(a.size() - 1);
    const std::size_t degree = a.size() - 1;
    if (degree == 0)
        return;
    if (degree == 1) {
        add(-a[0] / a[1]);
        return;
    }
    if (degree == 2) {
        const double discriminant = a[1] * a[1] - 4 * a[2] * a[0];
        if (discriminant < -1e-14 * (a[1] * a[1] + std::fabs(4 * a[2] * a[0])))
            return;
        const double q = -0.5 * (a[1] + std::copysign(std::sqrt(std::max(discriminant, 0.0)), a[1]));
        const double first = q / a[2], second = q != 0 ? a[0] / q : first;
        add(std::min(first, second));
        add(std::max(first, second));
        return;
    }

    // Between the roots of the derivative the polynomial is monotonic.
    std::array<double, mostDegree> slope {};
    for (std::size_t i = 1; i <= degree; ++i)
        slope[i - 1] = static_cast<double>(i) * a[i];
    const std::span<const double> derivative(slope.data(), degree);
    const PolynomialRoots turns(derivative);
    const double negligible = 1e-13 * most;
    double low = 0, valueAtLow = a[0];
    const auto advance = [&](double high) {
        const double value = valueAt(a, high);
        if (valueAtLow == 0)
            add(low);
        else if ((value < 0) != (valueAtLow < 0) && value != 0)
            add(rootBetween(a, derivative, low, high, valueAtLow));
        else if (std::fabs(value) <= negligible && high < 1)
            add(high); // touches the axis
        low = high;
        valueAtLow = value;
    };
    for (const double turn : turns)
        advance(turn);
    advance(1);
    if (valueAtLow == 0)
        add(1);
}

} // namespace vxr
