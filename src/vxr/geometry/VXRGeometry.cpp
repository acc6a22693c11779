#include <vxr/geometry/VXRGeometry.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vxr {

// Rounding.

float VXRRound(float x)
{
    const float below = std::floor(x);
    return x - below >= 0.5f ? std::ceil(x) : below;
}

Point VXRIntegralPoint(Point p) { return { VXRRound(p.x), VXRRound(p.y) }; }

Size VXRIntegralSize(Size s) { return { VXRRound(s.width), VXRRound(s.height) }; }

Rect VXRIntegralRect(const Rect& r) { return { VXRIntegralPoint(r.origin), VXRIntegralSize(r.size) }; }

Rect VXRIntegralRectFor50PercentCoverage(const Rect& r)
{
    const float x = VXRRoundedMinX(r), y = VXRRoundedMinY(r);
    return { x, y, VXRRoundedMaxX(r) - x, VXRRoundedMaxY(r) - y };
}

float VXRRoundedMinX(const Rect& r) { return VXRRound(r.minX()); }

float VXRRoundedMidX(const Rect& r) { return VXRRound((VXRRoundedMinX(r) + VXRRoundedMaxX(r)) * 0.5f); }

float VXRRoundedMaxX(const Rect& r) { return VXRRound(r.maxX()); }

float VXRRoundedMinY(const Rect& r) { return VXRRound(r.minY()); }

float VXRRoundedMidY(const Rect& r) { return VXRRound((VXRRoundedMinY(r) + VXRRoundedMaxY(r)) * 0.5f); }

float VXRRoundedMaxY(const Rect& r) { return VXRRound(r.maxY()); }

float VXRFractionalPart(float x) { return x > 0 ? x - std::floor(x) : -(-x - std::floor(-x)); }

// Points and sizes.

float VXRClamp(float value, float min, float max) { return min > value ? min : max < value ? max : value; }

float VXRDistance(Point a, Point b)
{
    const float dx = a.x - b.x, dy = a.y - b.y;
    return std::sqrt(dx * dx + dy * dy);
}

namespace {

/// Compares with the double 0.01, which is slightly less than the nearest float.
bool isWithinTolerance(float difference) { return static_cast<double>(std::fabs(difference)) < 0.01; }

} // namespace

bool VXRNearlyEqualPoints(Point a, Point b)
{
    return isWithinTolerance(a.x - b.x) && isWithinTolerance(a.y - b.y);
}

bool VXRNearlyEqualSizes(Size a, Size b)
{
    return isWithinTolerance(a.width - b.width) && isWithinTolerance(a.height - b.height);
}

Point VXRAddPoints(Point a, Point b) { return { a.x + b.x, a.y + b.y }; }

Point VXRAddPointToPoint(Point a, Point b) { return VXRAddPoints(a, b); }

Point VXRSubtractPoints(Point a, Point b) { return { a.x - b.x, a.y - b.y }; }

Point VXRAveragePoints(Point a, Point b) { return { (a.x + b.x) * 0.5f, (a.y + b.y) * 0.5f }; }

Point VXRMultiplyPointScalar(Point p, float s) { return { p.x * s, p.y * s }; }

Size VXRMultiplySizeScalar(Size size, float s) { return { size.width * s, size.height * s }; }

Size VXRScaleSizeWithinSize(Size s, Size box)
{
    const float a = s.width / s.height, b = box.width / box.height;
    if (a > b)
        return { box.width, box.width / s.width * s.height };
    if (b > a)
        return { box.height / s.height * s.width, box.height };
    return box;
}

Size VXRSizeWithAspectRatio(Size s, Size ratio)
{
    if (s == ratio || ratio.width == 0 || ratio.height == 0)
        return s;
    const float width = s.height * ratio.width / ratio.height;
    if (ratio.width == s.width)
        return { width, s.height };
    if (ratio.height != s.height && width > s.width)
        return { width, s.height };
    return { s.width, ratio.height * s.width / ratio.width };
}

// Rectangles.

Rect VXRMultiplyRectScalar(const Rect& r, float s)
{
    return { VXRMultiplyPointScalar(r.origin, s), VXRMultiplySizeScalar(r.size, s) };
}

Point VXRCenterOfRect(const Rect& r)
{
    return { static_cast<float>(r.origin.x + static_cast<double>(r.size.width) * 0.5),
        static_cast<float>(r.origin.y + static_cast<double>(r.size.height) * 0.5) };
}

Rect VXRCenterRectOverRect(const Rect& r, const Rect& over)
{
    const Point offset = VXRSubtractPoints(VXRCenterOfRect(over), VXRCenterOfRect(r));
    return { VXRAddPoints(r.origin, offset), r.size };
}

Rect VXRRectWithPoints(Point a, Point b)
{
    const float x = std::min(a.x, b.x), y = std::min(a.y, b.y);
    return { x, y, std::max(a.x, b.x) - x, std::fabs(a.y - b.y) };
}

Rect VXRGrowRectToPoint(const Rect& r, Point p)
{
    const float x = std::min(r.origin.x, p.x), y = std::min(r.origin.y, p.y);
    return { x, y, std::max(p.x, r.maxX()) - x, std::max(p.y, r.maxY()) - y };
}

Rect VXRFlipRect(const Rect& r, const Rect& bounds)
{
    const float y = (bounds.maxY() - (r.maxY() - bounds.origin.y)) - bounds.origin.y;
    return { r.origin.x, y, r.size.width, r.size.height };
}

bool VXRContainsOrMatchesRect(const Rect& outer, const Rect& inner)
{
    return outer.size.width > 0 && outer.size.height > 0 && inner.size.width > 0 && inner.size.height > 0
        && outer.minX() < inner.minX() && outer.minY() < inner.minY() && inner.maxX() < outer.maxX()
        && inner.maxY() < outer.maxY();
}

float VXRRandom()
{
    // The 64 largest values would round to one.
    constexpr float largest = 1 - 0x1p-24f;
    return std::min(static_cast<float>(static_cast<double>(random()) * 0x1p-31), largest);
}

} // namespace vxr
