#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace vxr {

/// Roots of a polynomial within [0, 1], ascending. Up to degree 5.
class PolynomialRoots {
public:
    static constexpr int mostDegree = 5;

    /// Of `coefficients`, the constant one first. A polynomial that is zero throughout, or has a coefficient
    /// that is not finite, has none here. A double root that rounding has lifted off the axis counts.
    explicit PolynomialRoots(std::span<const double> coefficients);

    const double* begin() const { return mRoots.data(); }
    const double* end() const { return mRoots.data() + mCount; }
    std::size_t size() const { return mCount; }

private:
    void add(double root);

    std::array<double, mostDegree> mRoots {};
    std::size_t mCount = 0;
};

} // namespace vxr
