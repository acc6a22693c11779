#include <vxr/platform/graphics/path/PathVector.h>

#include <array>

namespace vxr {

namespace {

/// Counts how often a path runs around a point: the signed crossings of the ray from it to the right.
///
/// A line crosses when it goes from at or below the point's height to above it or back, so a vertex at that
/// height counts for one of its two lines only.
class WindingCounter {
public:
    explicit WindingCounter(Vec2 p)
        : mPoint(p)
    {
    }

    /// The winding number once all pieces went through the counter.
    int finished()
    {
        closeOpen();
        return mWinding;
    }

    void move(Vec2 p)
    {
        closeOpen();
        mStart = mPen = p;
    }

    void line(Vec2 from, Vec2 to)
    {
        mPen = to;
        if ((from.y <= mPoint.y) == (to.y <= mPoint.y))
            return;
        const double side = cross(to - from, mPoint - from);
        if (to.y > from.y)
            mWinding += side > 0;
        else
            mWinding -= side < 0;
    }

    void curve(const Cubic& curve);
    void close(Vec2 from, Vec2 start) { line(from, start); }

private:
    void closeOpen() { line(mPen, mStart); }
    static std::pair<Vec2, Vec2> hull(const Cubic& c);

    Vec2 mPoint;
    Vec2 mStart, mPen;
    int mWinding = 0;
};

std::pair<Vec2, Vec2> WindingCounter::hull(const Cubic& c)
{
    const auto [leastX, mostX] = std::minmax({ c.start.x, c.control1.x, c.control2.x, c.end.x });
    const auto [leastY, mostY] = std::minmax({ c.start.y, c.control1.y, c.control2.y, c.end.y });
    return { { leastX, leastY }, { mostX, mostY } };
}

/// Halves the curve only where its hull holds the point. A piece whose hull lies to one side crosses the ray
/// as its chord does or not at all, so the answer is as exact as the doubles are, whatever the flatness.
void WindingCounter::curve(const Cubic& whole)
{
    constexpr int mostDepth = 40;
    constexpr int mostPieces = 2000; // a bound, should rounding let many hold the point
    struct Pending {
        Cubic curve;
        int depth;
    };
    std::array<Pending, mostDepth + 1> stack;
    std::size_t pending = 0;
    int pieces = 0;
    stack[pending++] = { whole, 0 };
    while (pending > 0) {
        const Pending top = stack[--pending];
        const auto [least, most] = hull(top.curve);
        const bool holdsPoint = least.y <= mPoint.y && mPoint.y <= most.y && least.x <= mPoint.x
            && mPoint.x <= most.x && !(least == most);
        if (!holdsPoint || top.depth == mostDepth || ++pieces > mostPieces) {
            line(top.curve.start, top.curve.end);
            continue;
        }
        const auto [first, second] = top.curve.halves();
        stack[pending++] = { second, top.depth + 1 };
        stack[pending++] = { first, top.depth + 1 };
    }
}

} // namespace

bool Path::containsPoint(Point p) const
{
    bounds(); // brings mLeast and mMost up to date
    if (!(p.x >= mLeast.x && p.x <= mMost.x && p.y >= mLeast.y && p.y <= mMost.y))
        return false;
    WindingCounter counter(p);
    walkFinite(*this, counter);
    const int winding = counter.finished();
    return mWindingRule == WindingRule::EvenOdd ? (winding & 1) != 0 : winding != 0;
}

} // namespace vxr
