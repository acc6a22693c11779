#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vxr {

/// Point, offset or direction in double precision, for work inside a path operation.
struct Vec2 {
    double x = 0;
    double y = 0;

    constexpr Vec2() = default;
    constexpr Vec2(double px, double py)
        : x(px)
        , y(py)
    {
    }
    constexpr Vec2(Point p)
        : x(p.x)
        , y(p.y)
    {
    }

    /// Narrowed; what single precision can't hold becomes its largest value.
    Point point() const
    {
        constexpr double most = 3.4e38;
        return { static_cast<float>(std::clamp(x, -most, most)),
            static_cast<float>(std::clamp(y, -most, most)) };
    }
    double length() const
    {
        return std::sqrt(x * x + y * y);
    } ///< finite input of single precision can't overflow

    friend constexpr bool operator==(const Vec2&, const Vec2&) = default;
    friend constexpr Vec2 operator+(Vec2 a, Vec2 b) { return { a.x + b.x, a.y + b.y }; }
    friend constexpr Vec2 operator-(Vec2 a, Vec2 b) { return { a.x - b.x, a.y - b.y }; }
    friend constexpr Vec2 operator-(Vec2 a) { return { -a.x, -a.y }; }
    friend constexpr Vec2 operator*(Vec2 a, double k) { return { a.x * k, a.y * k }; }
};

constexpr double dot(Vec2 a, Vec2 b) { return a.x * b.x + a.y * b.y; }
/// Positive when `b` lies counter-clockwise of `a`, y up.
constexpr double cross(Vec2 a, Vec2 b) { return a.x * b.y - a.y * b.x; }
constexpr Vec2 midpoint(Vec2 a, Vec2 b) { return { (a.x + b.x) * 0.5, (a.y + b.y) * 0.5 }; }
constexpr Vec2 leftNormal(Vec2 direction) { return { -direction.y, direction.x }; }

inline bool isFinite(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

/// How many points an element has.
constexpr std::size_t pathPointCount(PathElementKind kind)
{
    constexpr std::size_t counts[] = { 1, 1, 3, 0 };
    return counts[static_cast<std::size_t>(kind)];
}

struct Cubic {
    Vec2 start, control1, control2, end;

    /// Both halves at t = 1/2.
    std::pair<Cubic, Cubic> halves() const
    {
        const Vec2 ab = midpoint(start, control1), bc = midpoint(control1, control2),
                   cd = midpoint(control2, end);
        const Vec2 abc = midpoint(ab, bc), bcd = midpoint(bc, cd), middle = midpoint(abc, bcd);
        return { { start, ab, abc, middle }, { middle, bcd, cd, end } };
    }
};

/// Hands a path's finite geometry to `sink` piece by piece: `move(p)`, `line(from, to)`, `curve(cubic)`,
/// `close(from, start)`. What follows a close is preceded by a move to the start. A sub-path with a
/// coordinate that is not finite is left out, with all that goes on from it up to the next move.
template <class Sink> void walkFinite(const Path& path, Sink&& sink)
{
    const auto kinds = path.kinds();
    const Point* p = path.points().data();
    const auto endOfSubpath = [&](std::size_t i) {
        while (++i < kinds.size() && kinds[i] != PathElementKind::MoveTo)
            if (kinds[i - 1] == PathElementKind::Close)
                break;
        return i;
    };
    Vec2 start, pen;
    bool finite = false;
    for (std::size_t i = 0, end = 0; i < kinds.size(); i = end) {
        end = endOfSubpath(i);
        const Point* last = p;
        for (std::size_t j = i; j < end; ++j)
            last += pathPointCount(kinds[j]);
        finite = (finite || kinds[i] == PathElementKind::MoveTo) && std::all_of(p, last, isFinite);
        if (!finite) {
            p = last;
            continue;
        }
        if (kinds[i] != PathElementKind::MoveTo)
            sink.move(start);
        for (; i < end; p += pathPointCount(kinds[i++])) {
            switch (kinds[i]) {
            case PathElementKind::MoveTo:
                sink.move(start = pen = *p);
                break;
            case PathElementKind::LineTo:
                sink.line(pen, *p);
                pen = *p;
                break;
            case PathElementKind::CurveTo:
                sink.curve(Cubic { pen, p[0], p[1], p[2] });
                pen = p[2];
                break;
            case PathElementKind::Close:
                sink.close(pen, start);
                pen = start;
                break;
            }
        }
    }
}

} // namespace vxr
