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

/// Hands pieces, each with its start, to a sink; for `walkFinite`.
template <class Sink> class PieceFeeder {
public:
    explicit PieceFeeder(Sink& sink)
        : mSink(sink)
    {
    }

    /// What follows a close goes on from the start of the sub-path before it.
    void resume() { mSink.move(mStart); }

    void moveTo(Point p) { mSink.move(mStart = mPen = p); }
    void lineTo(Point p)
    {
        mSink.line(mPen, p);
        mPen = p;
    }
    void curveTo(Point control1, Point control2, Point end)
    {
        mSink.curve(Cubic { mPen, control1, control2, end });
        mPen = end;
    }
    void close()
    {
        mSink.close(mPen, mStart);
        mPen = mStart;
    }

private:
    Sink& mSink;
    Vec2 mStart, mPen;
};

/// Hands a path's finite geometry to `sink` piece by piece: `move(p)`, `line(from, to)`, `curve(cubic)`,
/// `close(from, start)`. What follows a close is preceded by a move to the start. A sub-path with a
/// coordinate that is not finite is left out, with all that goes on from it up to the next move.
template <class Sink> void walkFinite(const Path& path, Sink&& sink)
{
    PieceFeeder feeder(sink);
    const auto kinds = path.kinds();
    const Point* first = path.points().data();
    bool finite = false;
    for (std::size_t i = 0, end = 0; i < kinds.size(); i = end) {
        const Point* last = first;
        do
            last += pathPointCount(kinds[end++]);
        while (end < kinds.size() && kinds[end] != PathElementKind::MoveTo
            && kinds[end - 1] != PathElementKind::Close);
        const bool goesOn = kinds[i] != PathElementKind::MoveTo;
        finite = (finite || !goesOn) && std::all_of(first, last, isFinite);
        if (finite) {
            if (goesOn)
                feeder.resume();
            visitElements(kinds.subspan(i, end - i), first, feeder);
        }
        first = last;
    }
}

} // namespace vxr
