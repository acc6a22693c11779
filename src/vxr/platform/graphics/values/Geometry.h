#pragma once

#include <vxr/platform/base/Export.h>

#include <iosfwd>

namespace vxr {

/// Position or offset in user space.
struct Point {
    float x = 0;
    float y = 0;

    friend constexpr bool operator==(const Point&, const Point&) = default;
};

/// Extent in user space. May be negative: nothing here normalises it.
struct Size {
    float width = 0;
    float height = 0;

    friend constexpr bool operator==(const Size&, const Size&) = default;
};

/// Axis-aligned rectangle in user space. Nothing here normalises negative sizes.
/// Empty if either side is not positive (NaN included).
struct Rect {
    Point origin;
    Size size;

    constexpr Rect() = default;
    constexpr Rect(Point o, Size s)
        : origin(o)
        , size(s)
    {
    }
    constexpr Rect(float x, float y, float width, float height)
        : origin { x, y }
        , size { width, height }
    {
    }

    constexpr float minX() const { return origin.x; }
    constexpr float minY() const { return origin.y; }
    constexpr float maxX() const { return origin.x + size.width; }
    constexpr float maxY() const { return origin.y + size.height; }
    constexpr float midX() const { return origin.x + size.width * 0.5f; }
    constexpr float midY() const { return origin.y + size.height * 0.5f; }
    constexpr bool isEmpty() const { return !(size.width > 0 && size.height > 0); }

    friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

/// The smallest rectangle with integer edges around `r`; the zero rectangle if `r` is empty.
VXR_EXPORT Rect integralRect(const Rect& r);

/// The smallest rectangle around both. An empty operand contributes nothing; two empty operands give the
/// zero rectangle.
constexpr Rect unionRect(const Rect& a, const Rect& b)
{
    if (a.isEmpty())
        return b.isEmpty() ? Rect {} : b;
    if (b.isEmpty())
        return a;
    const float x = b.minX() < a.minX() ? b.minX() : a.minX();
    const float y = b.minY() < a.minY() ? b.minY() : a.minY();
    return { x, y, (a.maxX() < b.maxX() ? b.maxX() : a.maxX()) - x,
        (a.maxY() < b.maxY() ? b.maxY() : a.maxY()) - y };
}

/// The intersection; the zero rectangle if the two do not overlap with positive area.
VXR_EXPORT Rect intersectionRect(const Rect& a, const Rect& b);

/// Moves each edge inwards by `dx` and `dy`; negative values grow the rectangle.
constexpr Rect insetRect(const Rect& r, float dx, float dy)
{
    return { r.origin.x + dx, r.origin.y + dy, r.size.width - 2 * dx, r.size.height - 2 * dy };
}

constexpr Rect offsetRect(const Rect& r, float dx, float dy)
{
    return { r.origin.x + dx, r.origin.y + dy, r.size.width, r.size.height };
}

/// Whether both are non-empty and overlap with positive area.
constexpr bool rectsIntersect(const Rect& a, const Rect& b)
{
    return !a.isEmpty() && !b.isEmpty() && a.minX() < b.maxX() && b.minX() < a.maxX() && a.minY() < b.maxY()
        && b.minY() < a.maxY();
}

/// Whether `inner` is not empty and lies within `outer`, edges included.
constexpr bool rectContainsRect(const Rect& outer, const Rect& inner)
{
    return !inner.isEmpty() && outer.minX() <= inner.minX() && outer.minY() <= inner.minY()
        && outer.maxX() >= inner.maxX() && outer.maxY() >= inner.maxY();
}

/// Prints `{x, y}`, `{w, h}` and `{{x, y}, {w, h}}`, for logs and test failures.
VXR_EXPORT std::ostream& operator<<(std::ostream&, const Point&);
VXR_EXPORT std::ostream& operator<<(std::ostream&, const Size&);
VXR_EXPORT std::ostream& operator<<(std::ostream&, const Rect&);

} // namespace vxr
