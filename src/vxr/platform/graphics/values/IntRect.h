#pragma once

#include <vxr/platform/graphics/values/Geometry.h>

#include <algorithm>
#include <cmath>

namespace vxr {

/// A half-open rectangle of pixels, top row first.
struct IntRect {
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    constexpr bool isEmpty() const { return x0 >= x1 || y0 >= y1; }
    constexpr int width() const { return x1 - x0; }
    constexpr int height() const { return y1 - y0; }
    constexpr double area() const { return isEmpty() ? 0 : double(width()) * double(height()); }
    constexpr IntRect grown(int by) const { return { x0 - by, y0 - by, x1 + by, y1 + by }; }
    constexpr IntRect moved(int dx, int dy) const { return { x0 + dx, y0 + dy, x1 + dx, y1 + dy }; }
    constexpr Rect rect() const { return { float(x0), float(y0), float(width()), float(height()) }; }
    friend constexpr bool operator==(const IntRect&, const IntRect&) = default;
};

constexpr IntRect intersection(const IntRect& a, const IntRect& b)
{
    return { std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1) };
}

/// The smallest rectangle around both; an empty operand contributes nothing.
constexpr IntRect unionOf(const IntRect& a, const IntRect& b)
{
    if (a.isEmpty() || b.isEmpty())
        return a.isEmpty() ? b : a;
    return { std::min(a.x0, b.x0), std::min(a.y0, b.y0), std::max(a.x1, b.x1), std::max(a.y1, b.y1) };
}

/// Converts to an integer, clamped to a range in which sums and products of a few values cannot overflow.
inline int pixelCoordinate(double v)
{
    constexpr double farthest = 1 << 24;
    return std::isnan(v) ? 0 : int(std::clamp(v, -farthest, farthest));
}

/// Whether `value` is an integer up to the rounding of single precision.
inline bool isNearlyWhole(float v) { return std::abs(v - std::round(v)) < 1e-3f; }

} // namespace vxr
