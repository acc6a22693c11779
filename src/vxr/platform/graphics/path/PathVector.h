#pragma once

#include <vxr/platform/graphics/path/Path.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace vxr {

/// Point, offset or direction in double precision, for use inside path operations.
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

    /// Narrowed to single precision; values out of range become the largest finite value.
    Point point() const
    {
        constexpr double most = 3.4e38;
        return { static_cast<float>(std::clamp(x, -most, most)),
            static_cast<float>(std::clamp(y, -most, most)) };
    }
    double length() const
    {
        return std::sqrt(x * x + y * y);
    } ///< finite single-precision input cannot overflow

    friend constexpr bool operator==(const Vec2&, const Vec2&) = default;
    friend constexpr Vec2 operator+(Vec2 a, Vec2 b) { return { a.x + b.x, a.y + b.y }; }
    friend constexpr Vec2 operator-(Vec2 a, Vec2 b) { return { a.x - b.x, a.y - b.y }; }
    friend constexpr Vec2 operator-(Vec2 a) { return { -a.x, -a.y }; }
    friend constexpr Vec2 operator*(Vec2 a, double k) { return { a.x * k, a.y * k }; }
};

constexpr double dot(Vec2 a, Vec2 b) { return a.x * b.x + a.y * b.y; }
/// Positive if `b` lies counter-clockwise of `a`, y up.
constexpr double cross(Vec2 a, Vec2 b) { return a.x * b.y - a.y * b.x; }
constexpr Vec2 midpoint(Vec2 a, Vec2 b) { return { (a.x + b.x) * 0.5, (a.y + b.y) * 0.5 }; }
constexpr Vec2 leftNormal(Vec2 direction) { return { -direction.y, direction.x }; }

inline bool isFinite(Point p) { return std::isfinite(p.x) && std::isfinite(p.y); }

struct Cubic {
    Vec2 start, control1, control2, end;

    /// Splits the curve at t = 1/2.
    std::pair<Cubic, Cubic> halves() const
    {
        const Vec2 ab = midpoint(start, control1), bc = midpoint(control1, control2),
                   cd = midpoint(control2, end);
        const Vec2 abc = midpoint(ab, bc), bcd = midpoint(bc, cd), middle = midpoint(abc, bcd);
        return { { start, ab, abc, middle }, { middle, bcd, cd, end } };
    }
};

/// Passes pieces to a sink, each with its start point; used by `walkFinite`.
template <class Sink> class PieceFeeder {
public:
    explicit PieceFeeder(Sink& sink)
        : mSink(sink)
    {
    }

    /// After a close, drawing continues from the start of the closed sub-path.
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

/// Passes a path's finite geometry to `sink` piece by piece: `move(p)`, `line(from, to)`, `curve(cubic)`,
/// `close(from, start)`. A piece after a close is preceded by a move to the start. A sub-path with a
/// non-finite coordinate is skipped, with everything that continues from it up to the next move.
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
