#include <vxr/geometry/VXRGeometry.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

namespace vxr {

void VXROriginRotate(float radius, float angle, Point* out)
{
    const double a = angle;
    *out = { static_cast<float>(std::cos(a) * radius), static_cast<float>(radius * std::sin(a)) };
}

float VXRNormalizeAngleInDegrees(float a)
{
    const float r = static_cast<float>(std::fmod(static_cast<double>(a), 360.0));
    return r < 0 ? r + 360 : r;
}

float VXRNormalizeAngleInRadians(float a)
{
    const float r = static_cast<float>(std::fmod(static_cast<double>(a), VXR_2PI));
    return r < 0 ? static_cast<float>(VXR_2PI + r) : r;
}

namespace {

// The two are not exact negatives of each other; angles that were stored depend on it.
constexpr float straightUp = 1.5707963705f, straightDown = -1.5707962513f;
static_assert(std::bit_cast<std::uint32_t>(straightUp) == 0x3FC90FDB);
static_assert(std::bit_cast<std::uint32_t>(straightDown) == 0xBFC90FDA);

constexpr float negligibleSquare = 9.99999997e-07f;

} // namespace

float VXRAngleFromDelta(float dx, float dy)
{
    if (dx * dx < negligibleSquare)
        return dy < 0 ? straightDown : straightUp;
    if (dy * dy < negligibleSquare)
        return dx < 0 ? 3.14159274f : 0.0f;
    const double length = std::sqrt(static_cast<double>(dx * dx + dy * dy));
    const float cosine = static_cast<float>(dx / length);
    // So close to the x axis that the cosine has lost the angle. The arc sine brings its own sign, and a
    // negative dy turns it once more: a hair below the axis reads as a hair above it.
    const float angle = cosine == 1.0f ? static_cast<float>(std::asin(dy / length)) : std::acos(cosine);
    return dy < 0 ? -angle : angle;
}

Point VXRShiftConstrainDelta(Point delta)
{
    const auto [dx, dy] = delta;
    float a = static_cast<float>(VXRAngleFromDelta(dx, dy) * 57.29577951308232);
    if (a < 0)
        a += 360;
    const float larger = std::max(std::fabs(dx), std::fabs(dy));
    if (a >= 330 || a < 30)
        return { dx, 0 };
    if (a < 60) {
        const float m = std::max(dx, dy);
        return { m, m };
    }
    if (a < 120)
        return { 0, dy };
    if (a < 150)
        return { -larger, larger };
    if (a < 210)
        return { dx, 0 };
    if (a < 240) {
        const float m = std::min(dx, dy);
        return { m, m };
    }
    if (a < 300)
        return { 0, dy };
    if (a < 330)
        return { larger, -larger };
    return delta;
}

int _compute_outcode(float x, float y, const Rect& r)
{
    int code = 0;
    if (y > r.maxY())
        code |= 1;
    else if (r.minY() > y)
        code |= 2;
    if (x > r.maxX())
        code |= 4;
    else if (r.minX() > x)
        code |= 8;
    return code;
}

bool VXRLineIntersectsRect(Point a, Point b, const Rect& r)
{
    int codeA = _compute_outcode(a.x, a.y, r), codeB = _compute_outcode(b.x, b.y, r);
    if (codeA == 0 || codeB == 0)
        return true;
    // Bisection. Beyond an edge lies a half-plane: when the middle is outside, it shares a bit with an end,
    // and only the other half is left. Single precision has about 300 halvings.
    constexpr int mostHalvings = 300;
    for (int i = 0; i < mostHalvings && !(codeA & codeB); ++i) {
        const Point middle = VXRAveragePoints(a, b);
        const int code = _compute_outcode(middle.x, middle.y, r);
        if (code == 0)
            return true;
        // Neighbouring numbers can pass a corner without a number in between that shows it.
        if (middle == a || middle == b)
            return false;
        if (code & codeA) {
            a = middle;
            codeA = code;
        } else {
            b = middle;
            codeB = code;
        }
    }
    return false;
}

} // namespace vxr
