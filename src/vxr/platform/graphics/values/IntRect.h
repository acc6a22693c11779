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

/// How far the rounding of single precision may move an integer coordinate, in pixels.
inline constexpr double wholeSlack = 1.0 / 512;

/// Whether `v` is an integer up to the rounding of single precision.
inline bool isNearlyWhole(double v) { return std::abs(v - std::round(v)) < wholeSlack; }

/// That integer; any other value is unchanged.
inline double wholeIfNearly(double v) { return isNearlyWhole(v) ? std::round(v) : v; }

/// The pixels touched by a box in device space, nearly whole coordinates taken as whole. NaN gives 0.
inline IntRect touchedPixels(double x0, double y0, double x1, double y1)
{
    return { pixelCoordinate(std::floor(wholeIfNearly(x0))), pixelCoordinate(std::floor(wholeIfNearly(y0))),
        pixelCoordinate(std::ceil(wholeIfNearly(x1))), pixelCoordinate(std::ceil(wholeIfNearly(y1))) };
}

} // namespace vxr
